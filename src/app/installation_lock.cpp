#include "installation_lock.h"

#include <string>

#include "files/line_span.h"
#include "platform/files.h"
#include "work/refusal.h"

namespace voxa {

InstallationLock::InstallationLock() : file_(files::currentFolder() + "/" + LineSpan::lockFileName) {
  constexpr std::chrono::seconds patience{10};
  const std::string cannot = "the installation cannot be locked: ";
  auto outcome = LockFile::Outcome::busy;
  try {
    outcome = file_.lock(patience);
  } catch (const Error& failure) {
    throw Refusal(cannot + failure.description());
  }
  if (outcome == LockFile::Outcome::noFile) throw Refusal(cannot + file_.failure().description());
  if (outcome == LockFile::Outcome::held) return;
  throw Refusal("this installation is in use by " + file_.holder() + ": try again when it has finished");
}

}  // namespace voxa
