#include "comm/line_span.h"

#include "app/library.h"
#include "comm/com.h"
#include "platform/files.h"

namespace voxa {

std::optional<LockFile> Com::lockFile() {
  if (Chemin.empty()) return std::nullopt;
  const bool absolute = Chemin[0] == '/' || Chemin[0] == '\\' || Chemin.find(':') == 1;
  std::string folder = absolute ? Chemin : files::currentFolder() + "\\" + Chemin;
  if (!lockFile_ || folder != lockedFolder_) {
    lockFile_.emplace(folder + "\\" + LineSpan::lockFileName);
    lockedFolder_ = std::move(folder);
  }
  return lockFile_;
}

using SteadyClock = std::chrono::steady_clock;

LineSpan::LineSpan(Library& library, Take take) : library_(library) {
  Com& com = library_.Com();
  std::optional<LockFile> file = com.lockFile();
  auto outcome = LockFile::Outcome::noFile;
  if (file && take == Take::forAMoment) {
    outcome = file->lockForAMoment();
  } else if (file) {
    const bool waits = SteadyClock::now() >= com.noWaitBefore_;
    outcome = file->lock(waits ? com.linePatience : std::chrono::milliseconds{0});
    if (outcome != LockFile::Outcome::busy) {
      com.noWaitBefore_ = {};
    } else if (waits) {
      com.noWaitBefore_ = SteadyClock::now() + com.linePatience;
    }
  }
  if (outcome == LockFile::Outcome::busy) {
    refusal_ = "The lines are in use by " + file->holder() + ": try again when it has finished";
  }
  if (outcome == LockFile::Outcome::held) held_ = std::move(file);
  library_.prompts().hold();
}

LineSpan::~LineSpan() {
  if (held_) held_->unlock();
  library_.prompts().release();
}

void LineSpan::require() const {
  if (!refusal_.empty()) throw Error(err::permissionDenied, refusal_);
}

}  // namespace voxa
