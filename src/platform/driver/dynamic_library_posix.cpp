#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/driver/dynamic_library.h"
#include "platform/error.h"

namespace voxa {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void failLoad(const std::string& name, const std::string& loaderMessage) {
  throw Error(err::fileNotFound, "Cannot load the driver library " + name + ": " + loaderMessage);
}

void* load(const std::string& path) {
  return ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string loaderMessage() {
  const char* message = ::dlerror();
  return message == nullptr ? "unknown error" : message;
}

/// An open file or folder, which is closed at the end.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) (void)::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  [[nodiscard]] int get() const { return number_; }

 private:
  int number_;
};

/// Whether nobody but this user and the administrator can have put it there, or can change it.
bool isOwn(const Descriptor& opened, mode_t kind) {
  struct stat info {};
  if (::fstat(opened.get(), &info) != 0 || (info.st_mode & S_IFMT) != kind) return false;
  const bool ours = info.st_uid == 0 || info.st_uid == ::geteuid();
  return ours && (info.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

/// Loads a file, which then runs with this user's rights. So nobody but this user and the administrator may
/// have put it where it is. The file is opened once, checked, and loaded from that descriptor: whoever puts
/// another file under its name meanwhile changes nothing.
void* loadOwn(const std::string& name, const fs::path& path) {
  const Descriptor folder(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const Descriptor file(
      ::openat(folder.get(), path.filename().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!isOwn(folder, S_IFDIR) || !isOwn(file, S_IFREG)) {
    failLoad(name, path.string() +
                       " or its folder is somebody else's, a link, or others can write it: have both owned "
                       "and written by you alone (chmod go-w)");
  }
  // The loader reuses a library that it loaded under the same name. So each load gets a name of its own.
  static int loads = 0;
  std::string unique = "/proc/self/fd/";
  for (int i = 0; i < loads; ++i) unique += "./";
  ++loads;
  return load(unique + std::to_string(file.get()));
}

/// Clears errno, calls, and keeps what errno was set to.
template <typename... Arguments>
DynamicLibrary::Result run(DynamicLibrary::Entry entry, Arguments... arguments) {
  const auto function = reinterpret_cast<std::int16_t (*)(Arguments...)>(entry);
  errno = 0;
  const std::int16_t value = function(arguments...);
  return {value, errno};
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::string& name) {
  std::error_code ignored;
  if (const char* path = std::getenv("VOXA_DRIVER"); path != nullptr && *path != '\0') {
    // A relative path would name a file of the working folder, which may be a stranger's.
    if (!fs::path(path).is_absolute()) {
      throw Error(err::fileNotFound,
                  "VOXA_DRIVER names the driver library by its whole path, not " + std::string(path));
    }
    const fs::path found = fs::canonical(path, ignored);
    if (found.empty()) {
      throw Error(err::fileNotFound,
                  "File not found: the driver library " + std::string(path) + " named by VOXA_DRIVER");
    }
    handle_ = loadOwn(name, found);
    if (handle_ == nullptr) failLoad(name, loaderMessage());
    return;
  }

  const std::vector<std::string> fileNames = {"lib" + name + ".so", name};
  const fs::path programFolder = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  const fs::path workingFolder = fs::current_path(ignored);
  for (const fs::path& folder : {programFolder, workingFolder}) {
    for (const std::string& fileName : fileNames) {
      const fs::path path = folder / fileName;
      if (!fs::exists(fs::symlink_status(path, ignored))) continue;
      handle_ = folder == programFolder ? load(path) : loadOwn(name, path);
      if (handle_ == nullptr) failLoad(name, loaderMessage());
      return;
    }
  }
  for (const std::string& fileName : fileNames) {
    handle_ = load(fileName);
    if (handle_ != nullptr) return;
    // "<file>: cannot open ..." means that the loader found no such file. Any other message is about a file
    // that it did find.
    const std::string message = loaderMessage();
    if (!message.starts_with(fileName + ": cannot open")) failLoad(name, message);
  }
  throw Error(err::fileNotFound, "File not found: the driver library " + name + " (looked for " +
                                     fileNames[0] + " and " + fileNames[1] + " in " + programFolder.string() +
                                     ", in " + workingFolder.string() + " and on the loader's path)");
}

DynamicLibrary::Entry DynamicLibrary::find(const std::string& name) const {
  return reinterpret_cast<Entry>(::dlsym(handle_, name.c_str()));
}

DynamicLibrary::Result DynamicLibrary::call(Entry entry, std::int16_t argument) {
  return run(entry, argument);
}

DynamicLibrary::Result DynamicLibrary::call(Entry entry, std::int16_t first, std::int16_t second) {
  return run(entry, first, second);
}

}  // namespace voxa
