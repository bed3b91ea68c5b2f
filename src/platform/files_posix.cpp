#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <memory>

#include "platform/error.h"
#include "platform/files.h"
#include "platform/files_platform.h"
#include "platform/text.h"

namespace voxa::files {
namespace {

bool present(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0;
}

/// The name in `folder` that equals `name` but for case, the first in byte order; "" when there is none.
std::string findName(const std::string& folder, const std::string& name) {
  struct Closer {
    void operator()(DIR* d) const { (void)::closedir(d); }
  };
  const std::unique_ptr<DIR, Closer> names(::opendir(folder.empty() ? "." : folder.c_str()));
  std::string found;
  if (!names) return found;
  while (const dirent* entry = ::readdir(names.get())) {
    if (equalNoCase(entry->d_name, name) && (found.empty() || found > entry->d_name)) found = entry->d_name;
  }
  return found;
}

}  // namespace

std::string native(std::string_view path) {
  std::string given(path);
  std::replace(given.begin(), given.end(), '\\', '/');
  if (given.empty() || present(given)) return given;

  std::string found;
  for (std::size_t start = 0; start < given.size();) {
    const std::size_t end = std::min(given.find('/', start), given.size());
    const std::string name = given.substr(start, end - start);
    if (!name.empty() && !present(found + name)) {
      const std::string spelled = findName(found, name);
      if (spelled.empty()) return found + given.substr(start);
      found += spelled;
    } else {
      found += name;
    }
    if (end < given.size()) found += '/';
    start = end + 1;
  }
  return found;
}

std::string currentFolder() {
  std::error_code error;
  std::string folder = std::filesystem::current_path(error).string();
  if (error) throw fileError(error.value(), ".");
  return folder;
}

std::FILE* openFile(const std::string& path, Open how, int& error) {
  int flags = O_CLOEXEC;
  const char* mode = "wb";
  switch (how) {
    case Open::read:
      flags |= O_RDONLY;
      mode = "rb";
      break;
    case Open::write:
      flags |= O_WRONLY | O_CREAT | O_TRUNC;
      break;
    case Open::append:
      flags |= O_WRONLY | O_CREAT | O_APPEND;
      mode = "ab";
      break;
    case Open::createNew:
      flags |= O_WRONLY | O_CREAT | O_EXCL;
      break;
  }
  const int descriptor = ::open(path.c_str(), flags, S_IRUSR | S_IWUSR);
  if (descriptor < 0) {
    error = errno;
    return nullptr;
  }
  struct stat info {};
  std::FILE* file = nullptr;
  if (::fstat(descriptor, &info) == 0 && S_ISDIR(info.st_mode)) {
    error = EISDIR;
  } else if ((file = ::fdopen(descriptor, mode)) == nullptr) {
    error = errno;
  }
  if (file == nullptr) ::close(descriptor);
  return file;
}

std::FILE* openOwned(const std::string& path, int& error) {
  std::FILE* file = openFile(path, Open::createNew, error);
  if (file == nullptr) return nullptr;
  // Between its creation and the lock another process may have taken it over. Where the file system has no
  // locks, none can.
  const bool taken = ::flock(::fileno(file), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  struct stat info {};
  if (!taken && ::fstat(::fileno(file), &info) == 0 && info.st_nlink > 0) return file;
  (void)std::fclose(file);
  error = EEXIST;
  return nullptr;
}

std::FILE* takeOver(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (descriptor < 0) return nullptr;
  struct stat locked {};
  struct stat named {};
  // The name may be another file's by now: its owner renamed it, and the next one took the name.
  const bool owned = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ::fstat(descriptor, &locked) == 0 &&
                     ::lstat(path.c_str(), &named) == 0 && S_ISREG(named.st_mode) &&
                     locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
  std::FILE* file = owned ? ::fdopen(descriptor, "rb") : nullptr;
  if (file == nullptr) (void)::close(descriptor);
  return file;
}

int createFolder(const std::string& path) {
  return ::mkdir(path.c_str(), S_IRWXU) != 0 ? errno : 0;
}

int flushToDevice(std::FILE* file) {
  return std::fflush(file) != 0 || ::fsync(::fileno(file)) != 0 ? errno : 0;
}

int renameNew(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // The file system knows no such rename: look first.
  if (present(to)) return EEXIST;
  return std::rename(from.c_str(), to.c_str()) != 0 ? errno : 0;
}

}  // namespace voxa::files
