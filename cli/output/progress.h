#pragma once

#include <chrono>
#include <cstdio>

#include "platform/observer.h"
#include "platform/ui/console_prompts.h"

namespace voxa::cli {

/// "Sending 12 of 31" on a terminal, once the work has taken a second.
class Progress : public Observer {
 public:
  Progress() = default;
  ~Progress() override {
    if (shown_) std::fputc('\n', stderr);
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void progress(const char* what, std::size_t number, std::size_t total) override {
    if (!terminal_ || std::chrono::steady_clock::now() < next_) return;
    next_ = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
    // Past the filter of the terminal, which lets no carriage return through.
    std::fprintf(stderr, "\r%s %zu of %zu", what, number, total);
    shown_ = true;
  }

 private:
  bool terminal_ = ConsolePrompts::isTerminal();
  bool shown_ = false;
  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + std::chrono::seconds(1);
};

}  // namespace voxa::cli
