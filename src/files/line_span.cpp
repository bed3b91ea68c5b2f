#include "files/line_span.h"

#include "files/file_context.h"
#include "platform/files.h"

namespace voxa {

using SteadyClock = std::chrono::steady_clock;

std::optional<LockFile> LineLock::fileIn(const std::string& folder) {
  if (folder.empty()) return std::nullopt;
  const bool absolute = folder[0] == '/' || folder[0] == '\\' || folder.find(':') == 1;
  std::string whole = absolute ? folder : files::currentFolder() + "\\" + folder;
  if (!file_ || whole != folder_) {
    file_.emplace(whole + "\\" + LineSpan::lockFileName);
    folder_ = std::move(whole);
  }
  return file_;
}

LockFile::Outcome LineLock::lock(LockFile& file) {
  const bool waits = SteadyClock::now() >= noWaitBefore_;
  const LockFile::Outcome outcome = file.lock(waits ? patience : std::chrono::milliseconds{0});
  if (outcome != LockFile::Outcome::busy) {
    noWaitBefore_ = {};
  } else if (waits) {
    noWaitBefore_ = SteadyClock::now() + patience;
  }
  return outcome;
}

LineSpan::LineSpan(FileContext& context, Take take) : context_(context) {
  LineLock& lock = context_.lineLock();
  std::optional<LockFile> file = lock.fileIn(context_.paths().Chemin);
  auto outcome = LockFile::Outcome::noFile;
  if (file) outcome = take == Take::forAMoment ? file->lockForAMoment() : lock.lock(*file);
  if (outcome == LockFile::Outcome::busy) {
    refusal_ = "The lines are in use by " + file->holder() + ": try again when it has finished";
  }
  if (outcome == LockFile::Outcome::held) held_ = std::move(file);
  context_.prompts().hold();
}

LineSpan::~LineSpan() {
  if (held_) held_->unlock();
  context_.prompts().release();
}

void LineSpan::require() const {
  if (!refusal_.empty()) throw Error(err::permissionDenied, refusal_);
}

}  // namespace voxa
