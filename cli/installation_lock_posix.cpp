#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "installation_lock_platform.h"
#include "refusal.h"

namespace voxa::cli {

std::unique_ptr<InstallationLock::Handle> InstallationLock::Handle::tryLock(const char* fileName) {
  const int file = ::open(fileName, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0) {
    throw Refusal(std::string("the installation cannot be locked (") + fileName +
                  "): " + std::system_category().message(errno));
  }
  auto handle = std::make_unique<Handle>(file);
  if (::flock(file, LOCK_EX | LOCK_NB) != 0) handle.reset();
  return handle;
}

InstallationLock::Handle::~Handle() {
  (void)::close(static_cast<int>(file));
}

}  // namespace voxa::cli
