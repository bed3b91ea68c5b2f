// Registers the server for all users of the machine, or only for the user who registers it.

#include <oaidl.h>

#include <string>

#include "classes.h"
#include "korva.h"
#include "module.h"

// The import library has this function, the compiler's headers do not.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* helpFolder);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID id, WORD major, WORD minor, LCID language, SYSKIND kind);
}

namespace voxa::automation {

namespace {

constexpr const wchar_t* classesKey = L"Software\\Classes\\";

std::wstring textOf(const GUID& id) {
  wchar_t text[40] = {};
  (void)::StringFromGUID2(id, text, 40);
  return text;
}

/// The program that loads the library for others. It lies beside the library.
std::wstring serverPath(const std::wstring& library) {
  return library.substr(0, library.find_last_of(L"\\/") + 1) + L"VOXAserver.exe";
}

/// The keys below Software\Classes of one user or of the machine.
class Registry {
 public:
  explicit Registry(bool forUser) : root_(forUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE) {}

  [[nodiscard]] bool has(const std::wstring& key) const {
    HKEY opened = nullptr;
    const LSTATUS result = ::RegOpenKeyExW(root_, (classesKey + key).c_str(), 0, KEY_READ, &opened);
    if (result == ERROR_SUCCESS) (void)::RegCloseKey(opened);
    return result != ERROR_FILE_NOT_FOUND;
  }
  void set(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    if (result_ != ERROR_SUCCESS) return;
    HKEY opened = nullptr;
    result_ = ::RegCreateKeyExW(root_, (classesKey + key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &opened,
                                nullptr);
    if (result_ != ERROR_SUCCESS) return;
    const auto* bytes = reinterpret_cast<const BYTE*>(value.c_str());
    result_ = ::RegSetValueExW(opened, name, 0, REG_SZ, bytes,
                               static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    (void)::RegCloseKey(opened);
  }
  void remove(const std::wstring& key) {
    const LSTATUS result = ::RegDeleteTreeW(root_, (classesKey + key).c_str());
    if (result != ERROR_SUCCESS && result != ERROR_FILE_NOT_FOUND) result_ = result;
  }
  [[nodiscard]] HRESULT result() const { return HRESULT_FROM_WIN32(static_cast<DWORD>(result_)); }

 private:
  HKEY root_;
  LSTATUS result_ = ERROR_SUCCESS;
};

HRESULT registerTypeLibrary(bool forUser, const std::wstring& path) {
  ITypeLib* library = nullptr;
  HRESULT result = ::LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library);
  if (FAILED(result)) return result;
  std::wstring writable = path;
  result = forUser ? ::RegisterTypeLibForUser(library, writable.data(), nullptr)
                   : ::RegisterTypeLib(library, writable.data(), nullptr);
  library->Release();
  return result;
}

HRESULT unregisterTypeLibrary(bool forUser) {
  return forUser ? ::UnRegisterTypeLibForUser(LIBID_KORVA, 1, 0, LOCALE_NEUTRAL, SYS_WIN32)
                 : ::UnRegisterTypeLib(LIBID_KORVA, 1, 0, LOCALE_NEUTRAL, SYS_WIN32);
}

HRESULT install(bool forUser) {
  const std::wstring path = modulePath();
  Registry registry(forUser);
  for (const CreatableClass& made : creatableClasses()) {
    const std::wstring name = std::wstring(L"KORVA.") + made.name;
    const std::wstring key = L"CLSID\\" + textOf(*made.id);
    registry.remove(key);  // an earlier version may have left a ThreadingModel in it
    registry.set(key, nullptr, name);
    // There is no ThreadingModel. So all objects live in the process's main apartment, where nothing needs a
    // lock, and the system carries calls from other threads there.
    registry.set(key + L"\\InprocServer32", nullptr, path);
    // For programs that cannot load the library.
    registry.set(key + L"\\LocalServer32", nullptr, L"\"" + serverPath(path) + L"\"");
    registry.set(key + L"\\ProgID", nullptr, name);
    registry.set(key + L"\\TypeLib", nullptr, textOf(LIBID_KORVA));
    registry.set(name, nullptr, name);
    registry.set(name + L"\\CLSID", nullptr, textOf(*made.id));
  }
  const HRESULT result = registry.result();
  return FAILED(result) ? result : registerTypeLibrary(forUser, path);
}

HRESULT uninstall(bool forUser) {
  Registry registry(forUser);
  for (const CreatableClass& made : creatableClasses()) {
    registry.remove(L"CLSID\\" + textOf(*made.id));
    registry.remove(std::wstring(L"KORVA.") + made.name);
  }
  const HRESULT result = registry.result();
  const HRESULT typeLibrary = unregisterTypeLibrary(forUser);
  if (FAILED(result)) return result;
  // For a type library that is not registered the system reports that it cannot get at the registry.
  return registry.has(L"TypeLib\\" + textOf(LIBID_KORVA) + L"\\1.0\\0\\win32") ? typeLibrary : S_OK;
}

/// Registers everything or nothing.
HRESULT installWholly(bool forUser) {
  const HRESULT result = install(forUser);
  if (FAILED(result)) (void)uninstall(forUser);
  return result;
}

}  // namespace

}  // namespace voxa::automation

STDAPI DllRegisterServer() {
  return voxa::automation::installWholly(false);
}

STDAPI DllUnregisterServer() {
  return voxa::automation::uninstall(false);
}

/// `regsvr32 /n /i:user VOXA.dll` registers for this user alone.
STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
  const bool forUser = commandLine != nullptr && std::wstring(commandLine) == L"user";
  return install != FALSE ? voxa::automation::installWholly(forUser) : voxa::automation::uninstall(forUser);
}
