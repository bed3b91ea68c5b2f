#include "platform/lock_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <thread>

#include "platform/files.h"
#include "platform/lock_file_platform.h"

namespace voxa {

namespace {

const std::string& ownText() {
  static const std::string text = std::to_string(lock::processId()) + " " + lock::programName() + "\n";
  return text;
}

bool saysNoFile(int error) {
  return error == ENOENT || error == ENOTDIR || error == EACCES || error == EPERM || error == EROFS;
}

}  // namespace

/// What all objects of this process share for one file.
struct LockFile::Shared {
  explicit Shared(std::string file) : path(std::move(file)) {}
  ~Shared() { close(); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  void close() {
    if (handle != lock::none) lock::close(handle);
    handle = lock::none;
  }
  /// Opens the file of that name unless it is open. False, with `error`, when it cannot be opened.
  bool open() {
    if (handle == lock::none) handle = lock::open(path, error);
    return handle != lock::none;
  }
  /// Closes a file that was deleted: its lock keeps nobody out any more.
  bool closeDeleted() {
    if (lock::isThere(handle)) return false;
    close();
    return true;
  }

  std::string path;
  lock::Handle handle = lock::none;
  int error = 0;
  int depth = 0;  // how many times it is held
};

std::shared_ptr<LockFile::Shared> LockFile::sharedOf(const std::string& path) {
  static std::map<std::string, std::weak_ptr<Shared>> files;
  std::error_code unresolved;  // the path as it is serves then
  const std::filesystem::path named = std::u8string(path.begin(), path.end());
  const auto folder = std::filesystem::weakly_canonical(named.parent_path(), unresolved);
  const std::u8string resolved = unresolved ? named.u8string() : (folder / named.filename()).u8string();
  const std::string key(resolved.begin(), resolved.end());
  std::erase_if(files, [](const auto& entry) { return entry.second.expired(); });
  if (const auto found = files.find(key); found != files.end()) return found->second.lock();
  auto shared = std::make_shared<Shared>(key);
  files[key] = shared;
  return shared;
}

LockFile::LockFile(const std::string& path) : shared_(sharedOf(files::native(path))) {}

LockFile::Outcome LockFile::tryLock(bool forAMoment) {
  Shared& file = *shared_;
  if (file.depth > 0) {
    ++file.depth;
    return Outcome::held;
  }
  for (;;) {
    if (!file.open()) {
      if (file.error == EBUSY) return Outcome::busy;
      const bool others = file.error != EROFS && files::exists(file.path);
      if (!others && saysNoFile(file.error)) return Outcome::noFile;
      throw failure();
    }
    const bool locked = lock::tryLock(file.handle);
    if (!forAMoment && file.closeDeleted()) continue;
    if (!locked) return Outcome::busy;
    if (!forAMoment && lock::read(file.handle) != ownText()) lock::write(file.handle, ownText());
    file.depth = 1;
    return Outcome::held;
  }
}

LockFile::Outcome LockFile::lock(std::chrono::milliseconds patience) {
  // The pause is short: a process that sends one file after another lets go only for moments.
  constexpr std::chrono::milliseconds pause{1};
  const auto end = std::chrono::steady_clock::now() + patience;
  for (;;) {
    const Outcome outcome = tryLock(false);
    if (outcome != Outcome::busy || std::chrono::steady_clock::now() >= end) return outcome;
    std::this_thread::sleep_for(pause);
  }
}

LockFile::Outcome LockFile::lockForAMoment() {
  return tryLock(true);
}

void LockFile::unlock() {
  if (--shared_->depth == 0) lock::unlock(shared_->handle);
}

std::string LockFile::holder() const {
  constexpr const char* unknown = "another program";
  if (shared_->handle == lock::none) return unknown;
  const std::string text = lock::read(shared_->handle);
  const std::size_t blank = text.find(' ');
  const std::size_t end = text.find('\n');
  if (blank == std::string::npos || end == std::string::npos || blank > end) return unknown;
  const std::string number = text.substr(0, blank);
  std::string program = text.substr(blank + 1, end - blank - 1);
  std::replace_if(
      program.begin(), program.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
  return program + " (process " + number + ")";
}

Error LockFile::failure() const {
  return fileError(shared_->error == ENOENT ? ENOTDIR : shared_->error, shared_->path);
}

}  // namespace voxa
