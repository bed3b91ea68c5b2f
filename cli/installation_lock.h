#pragma once

#include <memory>
#include <string>

namespace voxa::cli {

/// The right to use the lines of an installation. The driver reads the command file and the ini files from
/// its folder: a second command there at the same time would have its own lines sent in place of the first
/// one's. Ends with the object, or with the process.
class InstallationLock {
 public:
  /// Takes the lock of the current folder (file "voxa.lck"), waiting some seconds for whoever holds it; a
  /// Refusal when that is not enough or the file cannot be made.
  InstallationLock();
  ~InstallationLock();
  InstallationLock(const InstallationLock&) = delete;
  InstallationLock& operator=(const InstallationLock&) = delete;

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

}  // namespace voxa::cli
