#pragma once

#include <sys/resource.h>

#include <csignal>

namespace voxa::test {

/// While it lives, no file of this process can grow beyond a number of bytes, as on a full disk.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes = 1) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small{.rlim_cur = bytes, .rlim_max = before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

}  // namespace voxa::test
