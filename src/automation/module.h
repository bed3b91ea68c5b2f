#pragma once

#include <windows.h>

#include <string>

namespace voxa::automation {

/// Counts what keeps the library loaded: objects that exist, and locks of the class factories.
class ModuleUse {
 public:
  ModuleUse();
  ~ModuleUse();
  ModuleUse(const ModuleUse&) = delete;
  ModuleUse& operator=(const ModuleUse&) = delete;
};

[[nodiscard]] bool isModuleUsed();
[[nodiscard]] long moduleUses();  ///< how many they are
void lockModule(bool lock);

/// The handle of the library itself, and its full path.
[[nodiscard]] HMODULE moduleHandle();
[[nodiscard]] std::wstring modulePath();

}  // namespace voxa::automation
