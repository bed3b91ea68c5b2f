#pragma once

#include "platform/lock_file.h"

namespace voxa {

/// The right to use the lines of an installation for a whole command, which the library's own spans
/// (comm/line_span.h) lie within: a second command there at the same time would have its own lines sent in
/// place of the first one's. Ends with the object, or with the process.
class InstallationLock {
 public:
  /// Takes the lock of the current folder, waiting some seconds for whoever holds it; a Refusal when that is
  /// not enough, which names him, or when the file cannot be made.
  InstallationLock();
  ~InstallationLock() { file_.unlock(); }
  InstallationLock(const InstallationLock&) = delete;
  InstallationLock& operator=(const InstallationLock&) = delete;

 private:
  LockFile file_;
};

}  // namespace voxa
