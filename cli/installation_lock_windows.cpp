#include <windows.h>

#include <system_error>

#include "installation_lock_platform.h"
#include "refusal.h"

namespace voxa::cli {

std::unique_ptr<InstallationLock::Handle> InstallationLock::Handle::tryLock(const char* fileName) {
  // Not shared: opening it a second time fails as long as it is open.
  HANDLE file = ::CreateFileA(fileName, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) return std::make_unique<Handle>(reinterpret_cast<std::intptr_t>(file));
  const DWORD error = ::GetLastError();
  if (error == ERROR_SHARING_VIOLATION) return nullptr;
  throw Refusal(std::string("the installation cannot be locked (") + fileName +
                "): " + std::system_category().message(static_cast<int>(error)));
}

InstallationLock::Handle::~Handle() {
  (void)::CloseHandle(reinterpret_cast<HANDLE>(file));
}

}  // namespace voxa::cli
