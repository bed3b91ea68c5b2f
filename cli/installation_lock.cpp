#include "installation_lock.h"

#include <chrono>
#include <thread>

#include "installation_lock_platform.h"
#include "refusal.h"

namespace voxa::cli {

InstallationLock::InstallationLock() {
  using namespace std::chrono_literals;
  constexpr auto patience = 10s;
  constexpr auto pause = 50ms;
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!(handle_ = Handle::tryLock("voxa.lck"))) {
    if (std::chrono::steady_clock::now() >= end) {
      throw Refusal("another voxa is working on this installation: try again later");
    }
    std::this_thread::sleep_for(pause);
  }
}

InstallationLock::~InstallationLock() = default;

}  // namespace voxa::cli
