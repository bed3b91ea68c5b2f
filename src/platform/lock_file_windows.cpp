#include <windows.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/lock_file_platform.h"

namespace voxa::lock {

namespace {

HANDLE native(Handle handle) {
  return reinterpret_cast<HANDLE>(handle);
}

/// The byte that is locked: one far behind the text, so that the text can still be read.
OVERLAPPED lockedByte() {
  OVERLAPPED place{};
  place.Offset = 0x40000000;
  return place;
}

}  // namespace

Handle open(const std::string& path, int& error) {
  const std::wstring name = std::filesystem::path(std::u8string(path.begin(), path.end())).wstring();
  HANDLE file =
      ::CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (file != INVALID_HANDLE_VALUE) return reinterpret_cast<Handle>(file);
  const DWORD code = ::GetLastError();
  error =
      code == ERROR_SHARING_VIOLATION
          ? EBUSY
          : std::error_code(static_cast<int>(code), std::system_category()).default_error_condition().value();
  return none;
}

void close(Handle handle) {
  (void)::CloseHandle(native(handle));
}

bool isThere(Handle /*handle*/) {
  return true;  // nobody can delete it while it is open
}

bool tryLock(Handle handle) {
  OVERLAPPED place = lockedByte();
  const DWORD how = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
  if (::LockFileEx(native(handle), how, 0, 1, 0, &place) != 0) return true;
  const DWORD code = ::GetLastError();
  return code == ERROR_NOT_SUPPORTED || code == ERROR_INVALID_FUNCTION;
}

void unlock(Handle handle) {
  OVERLAPPED place = lockedByte();
  (void)::UnlockFileEx(native(handle), 0, 1, 0, &place);
}

std::string read(Handle handle) {
  std::array<char, 256> bytes{};
  OVERLAPPED place{};
  DWORD count = 0;
  if (::ReadFile(native(handle), bytes.data(), static_cast<DWORD>(bytes.size()), &count, &place) == 0)
    return {};
  return {bytes.data(), count};
}

void write(Handle handle, std::string_view text) {
  OVERLAPPED place{};
  DWORD count = 0;
  if (::WriteFile(native(handle), text.data(), static_cast<DWORD>(text.size()), &count, &place) == 0) return;
  if (::SetFilePointer(native(handle), static_cast<LONG>(count), nullptr, FILE_BEGIN) == count) {
    (void)::SetEndOfFile(native(handle));
  }
}

std::uint32_t processId() {
  return ::GetCurrentProcessId();
}

std::string programName() {
  std::array<wchar_t, 32768> path{};
  (void)::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  const std::u8string name = std::filesystem::path(path.data()).filename().u8string();
  return {name.begin(), name.end()};
}

}  // namespace voxa::lock
