#include <dlfcn.h>
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

/// Whether only this user and the administrator can have put the file there. Asked of the working folder,
/// which may be anybody's: what is loaded runs with this user's rights.
bool isOwn(const fs::path& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return false;
  const bool ours = info.st_uid == 0 || info.st_uid == ::geteuid();
  // In a folder with the sticky bit nobody can replace the files of others.
  return ours && ((info.st_mode & S_IWOTH) == 0 || (S_ISDIR(info.st_mode) && (info.st_mode & S_ISVTX) != 0));
}

/// Calls with errno cleared, and keeps what it was set to.
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
    if (!fs::exists(path, ignored)) {
      throw Error(err::fileNotFound,
                  "File not found: the driver library " + std::string(path) + " named by VOXA_DRIVER");
    }
    handle_ = load(fs::absolute(path));
    if (handle_ == nullptr) failLoad(name, loaderMessage());
    return;
  }

  const std::vector<std::string> fileNames = {"lib" + name + ".so", name};
  const fs::path programFolder = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  const fs::path workingFolder = fs::current_path(ignored);
  for (const fs::path& folder : {programFolder, workingFolder}) {
    for (const std::string& fileName : fileNames) {
      const fs::path path = folder / fileName;
      if (!fs::is_regular_file(path, ignored)) continue;
      if (folder != programFolder && !(isOwn(path) && isOwn(folder))) {
        failLoad(name, path.string() + " is somebody else's, or others can write it or its folder");
      }
      handle_ = load(path);
      if (handle_ == nullptr) failLoad(name, loaderMessage());
      return;
    }
  }
  for (const std::string& fileName : fileNames) {
    handle_ = load(fileName);
    if (handle_ != nullptr) return;
    // Anything but "<file>: cannot open ..." is about a file that the loader did find.
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
