#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/files_posix.h"
#include "platform/lock_file_platform.h"

namespace voxa::lock {

namespace {

int descriptor(Handle handle) {
  return static_cast<int>(handle);
}

}  // namespace

Handle open(const std::string& path, int& error) {
  return files::openDescriptor(path, O_RDWR | O_CREAT, false, error);
}

void close(Handle handle) {
  (void)::close(descriptor(handle));
}

bool isThere(Handle handle) {
  struct stat info {};
  return ::fstat(descriptor(handle), &info) == 0 && info.st_nlink > 0;
}

bool tryLock(Handle handle) {
  return ::flock(descriptor(handle), LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR);
}

void unlock(Handle handle) {
  (void)::flock(descriptor(handle), LOCK_UN);
}

std::string read(Handle handle) {
  std::array<char, 256> bytes{};
  const ssize_t count = ::pread(descriptor(handle), bytes.data(), bytes.size(), 0);
  return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
}

void write(Handle handle, std::string_view text) {
  const ssize_t written = ::pwrite(descriptor(handle), text.data(), text.size(), 0);
  if (written >= 0) (void)!::ftruncate(descriptor(handle), written);
}

std::uint32_t processId() {
  return static_cast<std::uint32_t>(::getpid());
}

std::string programName() {
  return program_invocation_short_name;
}

}  // namespace voxa::lock
