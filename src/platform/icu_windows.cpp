#include <windows.h>

#include "platform/icu.h"

namespace voxa {

IcuFunction icuFunction(const char* name) {
  // A part of the system since Windows 10, 1903.
  static const HMODULE library = ::LoadLibraryExW(L"icu.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (library == nullptr) return nullptr;
  return reinterpret_cast<IcuFunction>(::GetProcAddress(library, name));
}

}  // namespace voxa
