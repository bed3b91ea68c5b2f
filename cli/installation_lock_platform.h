#pragma once

#include <cstdint>
#include <memory>

#include "installation_lock.h"

namespace voxa::cli {

/// What the platforms do differently for a lock; one source each.
struct InstallationLock::Handle {
  explicit Handle(std::intptr_t handle) : file(handle) {}
  ~Handle();
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  /// Empty while another process holds it; a Refusal when the file cannot be made.
  static std::unique_ptr<Handle> tryLock(const char* fileName);

  std::intptr_t file;
};

}  // namespace voxa::cli
