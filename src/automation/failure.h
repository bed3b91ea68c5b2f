#pragma once

#include <oaidl.h>

#include <exception>

namespace voxa::automation {

/// Reports the exception being handled as an automation error (call inside a catch block only). Sets the
/// thread's error object to its number and description, with the interface's name as the source, and returns
/// the HRESULT. A number up to 65535 becomes 0x800A0000 + number, the facility of the automation clients' own
/// run-time errors: then a script's error object shows the number. Any other number becomes E_FAIL, with the
/// number in the description.
[[nodiscard]] HRESULT reportCurrentException(REFIID interfaceId) noexcept;

/// Runs the body of a member. No exception leaves it.
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
