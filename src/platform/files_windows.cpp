#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <system_error>

#include "platform/error.h"
#include "platform/files.h"
#include "platform/files_platform.h"

namespace voxa::files {
namespace {

std::wstring wide(const std::string& path) {
  return std::filesystem::path(std::u8string(path.begin(), path.end())).wstring();
}

bool isFolder(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

int errnoOf(DWORD code) {
  return std::error_code(static_cast<int>(code), std::system_category()).default_error_condition().value();
}

/// Opens a file for writing. Fails when somebody has it open for writing, and keeps others from opening it
/// so.
std::FILE* openAlone(const std::string& path, DWORD disposition, const char* mode, int& error) {
  HANDLE file =
      ::CreateFileW(wide(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                    nullptr, disposition, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const DWORD code = ::GetLastError();
    error = code == ERROR_FILE_EXISTS ? EEXIST : errnoOf(code);
    return nullptr;
  }
  const int descriptor = ::_open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_BINARY | _O_NOINHERIT);
  std::FILE* stream = descriptor < 0 ? nullptr : ::_fdopen(descriptor, mode);
  if (stream != nullptr) return stream;
  error = errno;
  if (descriptor < 0) {
    (void)::CloseHandle(file);
  } else {
    ::_close(descriptor);
  }
  return nullptr;
}

}  // namespace

std::uint64_t identity(const std::string& /*path*/) {
  return 0;
}

std::string native(std::string_view path) {
  // The file system itself ignores case.
  std::string given(path);
  std::replace(given.begin(), given.end(), '/', '\\');
  return given;
}

std::string currentFolder() {
  std::error_code error;
  const std::u8string folder = std::filesystem::current_path(error).u8string();
  if (error) throw fileError(error.default_error_condition().value(), ".");
  return {folder.begin(), folder.end()};
}

std::string folderFault(std::string_view /*folder*/, bool /*trustGroup*/) {
  return "";  // on Windows a folder's rights are lists, which its owner sets
}

std::FILE* openFile(const std::string& path, Open how, bool /*any*/, int& error) {
  int flags = _O_BINARY | _O_NOINHERIT;
  const char* mode = "wb";
  switch (how) {
    case Open::read:
      flags |= _O_RDONLY;
      mode = "rb";
      break;
    case Open::write:
      flags |= _O_WRONLY | _O_CREAT | _O_TRUNC;
      break;
    case Open::append:
      flags |= _O_WRONLY | _O_CREAT | _O_APPEND;
      mode = "ab";
      break;
    case Open::createNew:
      flags |= _O_WRONLY | _O_CREAT | _O_EXCL;
      break;
  }
  const std::wstring name = wide(path);
  const int descriptor = ::_wsopen(name.c_str(), flags, _SH_DENYNO, _S_IREAD | _S_IWRITE);
  if (descriptor < 0) {
    error = errno == EACCES && isFolder(name) ? EISDIR : errno;
    return nullptr;
  }
  std::FILE* file = ::_fdopen(descriptor, mode);
  if (file == nullptr) {
    error = errno;
    ::_close(descriptor);
  }
  return file;
}

std::FILE* openOwned(const std::string& path, int& error) {
  return openAlone(path, CREATE_NEW, "wb", error);
}

std::FILE* takeOver(const std::string& path) {
  int error = 0;
  return openAlone(path, OPEN_EXISTING, "rb", error);
}

int createFolder(const std::string& path) {
  return ::_wmkdir(wide(path).c_str()) != 0 ? errno : 0;
}

int flushToDevice(std::FILE* file) {
  return std::fflush(file) != 0 || ::_commit(::_fileno(file)) != 0 ? errno : 0;
}

int renameNew(const std::string& from, const std::string& to) {
  if (::MoveFileExW(wide(from).c_str(), wide(to).c_str(), MOVEFILE_WRITE_THROUGH) != 0) return 0;
  const DWORD code = ::GetLastError();
  if (code == ERROR_ALREADY_EXISTS || code == ERROR_FILE_EXISTS) return EEXIST;
  if (code == ERROR_NOT_SAME_DEVICE) return EXDEV;
  return errnoOf(code);
}

}  // namespace voxa::files
