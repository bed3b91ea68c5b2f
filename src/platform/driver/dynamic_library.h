#pragma once

#include <cstdint>
#include <string>

namespace voxa {

/// A driver library loaded by name. It stays loaded until the process ends: a driver may hold lines open and
/// need not survive being unloaded.
class DynamicLibrary {
 public:
  /// An export, to be called through this class only.
  using Entry = void (*)();

  struct Result {
    std::int16_t value = 0;
    int lastError = 0;  ///< the operating system's last-error value behind the call, 0 when it set none
  };

  /// Loads the library. `err::fileNotFound` when there is none, saying where it was looked for, when it would
  /// not load, with the loader's own message, or, on Linux, when the one in the working folder is another
  /// user's or can be written by others.
  explicit DynamicLibrary(const std::string& name);

  /// The export of that name, or nullptr.
  [[nodiscard]] Entry find(const std::string& name) const;
  /// Calls an export that takes 16-bit integers by value and returns one.
  static Result call(Entry entry, std::int16_t argument);
  static Result call(Entry entry, std::int16_t first, std::int16_t second);

 private:
  void* handle_ = nullptr;
};

}  // namespace voxa
