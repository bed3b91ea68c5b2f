#include "crash/disk.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>

namespace voxa::crash {

namespace fs = std::filesystem;

namespace {

// The mode is that of an installation's folder. Without it everybody could write to a disk in memory.
constexpr const char* options = "size=8m,mode=0700";

bool mountPrivately(const fs::path& folder) {
  return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("voxa", folder.c_str(), "tmpfs", 0, options) == 0;
}

}  // namespace

Disk::Disk(fs::path folder)
    : folder_(std::move(folder)), filler_(folder_ / "filler"), mounted_(mountPrivately(folder_)) {}

Disk::~Disk() {
  if (mounted_) (void)::umount2(folder_.c_str(), MNT_DETACH);
}

void Disk::leaveFree(std::uintmax_t bytes) const {
  const std::uintmax_t available = fs::space(folder_).available;
  if (available <= bytes) return;
  std::ofstream(filler_) << std::string(available - bytes, ' ');
}

void Disk::giveBack() const {
  fs::remove(filler_);
}

bool Disk::canBeReadOnly() const {
  return mounted_ || ::geteuid() != 0;
}

void Disk::setReadOnly(bool on) const {
  if (mounted_) {
    if (::mount("voxa", folder_.c_str(), "tmpfs", MS_REMOUNT | (on ? MS_RDONLY : 0), options) != 0) {
      throw std::system_error(errno, std::generic_category(), "remount");
    }
    return;
  }
  const auto all = fs::perms::owner_all;
  fs::permissions(folder_, on ? all & ~fs::perms::owner_write : all);
}

}  // namespace voxa::crash
