// The functions of the C library by which this process, and every library in it, changes files: they count.

#include "simulation/sudden.h"

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <csignal>

namespace voxa::simulation {

namespace {

std::atomic<int> left = 0;  // 0: nobody counts

void count() {
  if (left != 0 && --left == 0) (void)::kill(::getpid(), SIGKILL);
}

}  // namespace

void killBeforeChange(int n) {
  left = n;
}

}  // namespace voxa::simulation

// Declared by the C library, with names of its own for the arguments.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

ssize_t pwrite(int file, const void* bytes, size_t size, off_t at) {
  voxa::simulation::count();
  return ::syscall(SYS_pwrite64, file, bytes, size, at);
}
ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t at) {
  voxa::simulation::count();
  return ::syscall(SYS_pwrite64, file, bytes, size, at);
}
ssize_t write(int file, const void* bytes, size_t size) {
  voxa::simulation::count();
  return ::syscall(SYS_write, file, bytes, size);
}
int ftruncate(int file, off_t size) noexcept {
  voxa::simulation::count();
  return static_cast<int>(::syscall(SYS_ftruncate, file, size));
}
int ftruncate64(int file, off64_t size) noexcept {
  voxa::simulation::count();
  return static_cast<int>(::syscall(SYS_ftruncate, file, size));
}
int unlink(const char* path) noexcept {
  voxa::simulation::count();
  return static_cast<int>(::syscall(SYS_unlink, path));
}
int rename(const char* from, const char* to) noexcept {
  voxa::simulation::count();
  return static_cast<int>(::syscall(SYS_rename, from, to));
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
