// VOXAserver.exe: a process for the objects of programs that cannot load VOXA.dll, which is a 32-bit library.
// The system starts it.

#include <windows.h>

#include <objbase.h>

#include <cstring>
#include <cwchar>

namespace {

/// VOXA.dll beside this program, and no other.
HMODULE loadLibrary() {
  wchar_t path[32768] = {};
  const DWORD length = ::GetModuleFileNameW(nullptr, path, 32768 - 16);
  wchar_t* const separator = length == 0 ? nullptr : std::wcsrchr(path, L'\\');
  if (separator == nullptr) return nullptr;
  std::wcscpy(separator + 1, L"VOXA.dll");
  return ::LoadLibraryW(path);
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR arguments, int) {
  if (std::strstr(arguments, "Embedding") == nullptr) {
    ::MessageBoxW(nullptr,
                  L"Windows starts this program when a 64-bit program uses KORVA. Register VOXA.dll: "
                  L"automation.md tells how.",
                  L"VOXAserver", MB_ICONINFORMATION);
    return 1;
  }
  if (FAILED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  const HMODULE library = loadLibrary();
  const FARPROC serve = library == nullptr ? nullptr : ::GetProcAddress(library, "ServeOtherProcesses");
  if (serve == nullptr) return 1;
  reinterpret_cast<void(WINAPI*)()>(reinterpret_cast<void*>(serve))();
  ::CoUninitialize();
  return 0;
}
