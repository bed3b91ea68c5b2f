#pragma once

#include <oaidl.h>

#include <exception>

namespace voxa::automation {

/// The exception being handled as an automation error (call inside a catch block only): sets the thread's
/// error object to its number and description, with the interface's name as source, and returns the HRESULT.
/// A number up to 65535 is the one that a script's error object shows (0x800A0000 + number, the facility of
/// the automation clients' own run-time errors); other numbers are E_FAIL, the number being in the
/// description.
[[nodiscard]] HRESULT reportCurrentException(REFIID interfaceId) noexcept;

/// Runs the body of a member; no exception leaves it.
template <typename Body>
[[nodiscard]] HRESULT guarded(REFIID interfaceId, Body&& body) noexcept {
  try {
    body();
    return S_OK;
  } catch (...) {
    return reportCurrentException(interfaceId);
  }
}

}  // namespace voxa::automation
