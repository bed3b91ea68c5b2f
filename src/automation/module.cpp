#include "module.h"

#include <atomic>

#include "type_information.h"

namespace voxa::automation {

namespace {

std::atomic<long> uses = 0;  // atomic: any thread of the system may ask whether it can unload the library

}  // namespace

ModuleUse::ModuleUse() {
  ++uses;
}

ModuleUse::~ModuleUse() {
  if (--uses == 0) forgetTypeInformation();
}

bool isModuleUsed() {
  return uses != 0;
}

long moduleUses() {
  return uses;
}

void lockModule(bool lock) {
  uses += lock ? 1 : -1;
}

HMODULE moduleHandle() {
  HMODULE module = nullptr;
  (void)::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&isModuleUsed), &module);
  return module;
}

std::wstring modulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = ::GetModuleFileNameW(moduleHandle(), path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace voxa::automation
