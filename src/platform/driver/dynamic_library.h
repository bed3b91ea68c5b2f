#pragma once

#include <cstdint>
#include <string>

namespace voxa {

/// A driver library, loaded by name. It stays loaded until the process ends: a driver may hold lines open and
/// may not survive being unloaded.
/// It is in dynamic_library_posix.cpp and dynamic_library_windows.cpp.
class DynamicLibrary {
 public:
  /// An export, to be called through this class only.
  using Entry = void (*)();

  struct Result {
    std::int16_t value = 0;
    int lastError = 0;  ///< the operating system's last-error value after the call; 0 when the call set none
  };

  /// Loads the library. Raises `err::fileNotFound` when there is none (the text says where it was looked for)
  /// and when it would not load (with the loader's own message). On Linux also when it is in the working
  /// folder and belongs to another user, or others can write to it.
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
