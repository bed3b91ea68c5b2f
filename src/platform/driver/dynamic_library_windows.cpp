#include <windows.h>

#include <filesystem>
#include <system_error>

#include "platform/driver/dynamic_library.h"
#include "platform/error.h"

namespace voxa {
namespace {

/// Calls by the convention of system libraries. Clears the last-error value before.
template <typename... Arguments>
DynamicLibrary::Result run(DynamicLibrary::Entry entry, Arguments... arguments) {
  const auto function = reinterpret_cast<std::int16_t(__stdcall*)(Arguments...)>(entry);
  ::SetLastError(0);
  const std::int16_t value = function(arguments...);
  return {value, static_cast<int>(::GetLastError())};
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::string& name) {
  const std::filesystem::path file(std::u8string(name.begin(), name.end()) + u8".dll");
  handle_ = ::LoadLibraryW(file.c_str());
  if (handle_ != nullptr) return;
  const auto code = static_cast<int>(::GetLastError());
  if (code == ERROR_MOD_NOT_FOUND) {
    throw Error(err::fileNotFound, "File not found: the driver library " + name +
                                       ".dll, or a library that it needs (looked for beside the program, in "
                                       "the system folders, in the working folder and on the path)");
  }
  throw Error(err::fileNotFound,
              "Cannot load the driver library " + name + ".dll: " + std::system_category().message(code));
}

DynamicLibrary::Entry DynamicLibrary::find(const std::string& name) const {
  return reinterpret_cast<Entry>(::GetProcAddress(static_cast<HMODULE>(handle_), name.c_str()));
}

DynamicLibrary::Result DynamicLibrary::call(Entry entry, std::int16_t argument) {
  return run(entry, argument);
}

DynamicLibrary::Result DynamicLibrary::call(Entry entry, std::int16_t first, std::int16_t second) {
  return run(entry, first, second);
}

}  // namespace voxa
