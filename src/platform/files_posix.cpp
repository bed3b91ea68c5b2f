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
#include "platform/files_posix.h"
#include "platform/text.h"

namespace voxa::files {
namespace {

bool present(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0;
}

/// The name in `folder` that equals `name` but for case; of several, the first in byte order. "" when there
/// is none.
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

/// How much of the front of a path exists as it is written, its backslashes being part of the names.
std::size_t literalFront(const std::string& path) {
  const std::size_t first = path.find('\\');
  for (std::size_t end = path.find_last_of("\\/"); end > first; end = path.find_last_of("\\/", end - 1)) {
    if (present(path.substr(0, end))) return end;
  }
  return 0;
}

/// What the administrator creates in another account's folder is given to that account.
void giveToOwnerOfFolder(int descriptor, const struct stat& file, const std::string& path) {
  if (::geteuid() != 0 || file.st_uid != 0 || file.st_nlink != 1) return;
  const auto slash = path.find_last_of('/');
  const std::string above = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
  struct stat folder {};
  if (::stat(above.c_str(), &folder) != 0 || folder.st_uid == 0 || (folder.st_mode & S_ISVTX) != 0) return;
  (void)::fchown(descriptor, folder.st_uid, folder.st_gid);
}

}  // namespace

std::string native(std::string_view path) {
  std::string given(path);
  if (given.find('\\') != std::string::npos) {
    // A backslash can be part of a name. A file or folder of exactly this name wins over one in a subfolder.
    if (present(given)) return given;
    std::replace(given.begin() + static_cast<std::ptrdiff_t>(literalFront(given)), given.end(), '\\', '/');
  }
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

std::uint64_t identity(const std::string& path) {
  struct stat found = {};
  return ::stat(native(path).c_str(), &found) == 0 ? found.st_ino : 0;
}

std::string currentFolder() {
  std::error_code error;
  std::string folder = std::filesystem::current_path(error).string();
  if (error) throw fileError(error.value(), ".");
  return folder;
}

std::string folderFault(std::string_view folder, bool trustGroup) {
  std::error_code failure;
  std::filesystem::path path = std::filesystem::canonical(native(folder), failure);
  struct stat own {};
  if (failure || ::stat(path.c_str(), &own) != 0)
    return "the folder " + std::string(folder) + " cannot be looked at";
  const uid_t user = ::geteuid();
  if (own.st_uid != user && user != 0) {
    return "the folder " + path.string() +
           " belongs to another account, which could change what is in it: work in one of "
           "your own";
  }
  for (bool above = false;; above = true) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return "the folder " + path.string() + " cannot be looked at";
    if (info.st_uid != 0 && info.st_uid != user && info.st_uid != own.st_uid) {
      return "the folder " + path.string() +
             " belongs to another account, which could put another in the place of what is "
             "below it";
    }
    // In a folder with the sticky bit nobody can rename what belongs to somebody else.
    const bool sticky = above && (info.st_mode & S_ISVTX) != 0;
    if (!sticky && (info.st_mode & S_IWOTH) != 0) {
      return "everybody can write the folder " + path.string() + ": take that away with chmod o-w";
    }
    if (!sticky && (info.st_mode & S_IWGRP) != 0 && !trustGroup) {
      return "the group can write the folder " + path.string() +
             ": take that away with chmod g-w, or say with --trust-group that it is to be trusted";
    }
    if (path == path.parent_path()) return "";
    path = path.parent_path();
  }
}

int openDescriptor(const std::string& path, int flags, bool any, int& error) {
  flags |= O_CLOEXEC | (any ? 0 : O_NOFOLLOW | O_NONBLOCK);
  const int descriptor = ::open(path.c_str(), flags, S_IRUSR | S_IWUSR);
  if (descriptor < 0) {
    error = errno == ENXIO ? ELOOP : errno;  // the pipe has no reader
    return -1;
  }
  struct stat info {};
  error = 0;
  if (::fstat(descriptor, &info) != 0) {
    error = errno;
  } else if (S_ISDIR(info.st_mode)) {
    error = EISDIR;
  } else if (!any && !S_ISREG(info.st_mode)) {
    error = ELOOP;
  } else if (S_ISREG(info.st_mode) && (flags & O_CREAT) != 0) {
    giveToOwnerOfFolder(descriptor, info, path);
  }
  if (error == 0) return descriptor;
  ::close(descriptor);
  return -1;
}

std::FILE* openFile(const std::string& path, Open how, bool any, int& error) {
  int flags = 0;
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
  const int descriptor = openDescriptor(path, flags, any, error);
  if (descriptor < 0) return nullptr;
  std::FILE* file = ::fdopen(descriptor, mode);
  if (file == nullptr) {
    error = errno;
    ::close(descriptor);
  }
  return file;
}

std::FILE* openOwned(const std::string& path, int& error) {
  std::FILE* file = openFile(path, Open::createNew, false, error);
  if (file == nullptr) return nullptr;
  // Another process may have taken the file over between its creation and the lock. On a file system without
  // locks no process can do so.
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
  // The name may belong to another file by now: its owner renamed it, and the next process took the name.
  const bool owned = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ::fstat(descriptor, &locked) == 0 &&
                     ::lstat(path.c_str(), &named) == 0 && S_ISREG(named.st_mode) &&
                     locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
  std::FILE* file = owned ? ::fdopen(descriptor, "rb") : nullptr;
  if (file == nullptr) (void)::close(descriptor);
  return file;
}

int createFolder(const std::string& path) {
  if (::mkdir(path.c_str(), S_IRWXU) != 0) return errno;
  const int made = ::open(path.c_str(), O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  struct stat info {};
  if (made >= 0 && ::fstat(made, &info) == 0) {
    info.st_nlink = 1;  // a folder has more links by itself; only a file must have no further name
    giveToOwnerOfFolder(made, info, path);
  }
  if (made >= 0) (void)::close(made);
  return 0;
}

int flushToDevice(std::FILE* file) {
  return std::fflush(file) != 0 || ::fsync(::fileno(file)) != 0 ? errno : 0;
}

int renameNew(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // This file system cannot rename that way, so look first.
  if (present(to)) return EEXIST;
  return std::rename(from.c_str(), to.c_str()) != 0 ? errno : 0;
}

}  // namespace voxa::files
