#include "platform/error.h"

#include <cerrno>
#include <new>
#include <system_error>

namespace voxa {

ErrorInfo describeCurrentException() {
  try {
    throw;
  } catch (const Error& e) {
    return {e.number(), e.description()};
  } catch (const std::bad_alloc&) {
    return {err::outOfMemory, "Out of memory"};
  } catch (const std::exception& e) {
    return {err::internalError, std::string("Internal error: ") + e.what()};
  }
}

Error fileError(int errnoValue, const std::string& path) {
  const auto make = [&](int number, const char* text) {
    return Error(number, std::string(text) + ": " + path);
  };
  switch (errnoValue) {
    case ENOENT:
      return make(err::fileNotFound, "File not found");
    case EEXIST:
      return make(err::fileExists, "File already exists");
    case ENOSPC:
    case EFBIG:
#ifdef EDQUOT
    case EDQUOT:
#endif
      return make(err::diskFull, "Disk full");
    case EMFILE:
    case ENFILE:
      return make(err::tooManyFiles, "Too many files");
    case EACCES:
    case EPERM:
    case EROFS:
      return make(err::permissionDenied, "Permission denied");
    case ELOOP:
      return make(err::pathAccess,
                  "Path/file access error, a link, a pipe or a device in the place of a file");
    case EISDIR:
      return make(err::pathAccess, "Path/file access error");
    case ENOTDIR:
      return make(err::pathNotFound, "Path not found");
    default:
      return Error(err::deviceIo,
                   "Device I/O error (" + std::generic_category().message(errnoValue) + "): " + path);
  }
}

}  // namespace voxa
