#pragma once

#include <chrono>
#include <cstdio>
#include <string>

#include "platform/ui/console_prompts.h"

namespace voxa::cli {

/// "Sending 12 of 31" on a terminal, once the work has taken a second.
class Progress {
 public:
  Progress(std::string what, std::size_t total) : what_(std::move(what)), total_(total) {}
  ~Progress() {
    if (shown_) std::fputc('\n', stderr);
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  void step() {
    ++done_;
    if (!terminal_ || std::chrono::steady_clock::now() < next_) return;
    next_ = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
    // Past the filter of the terminal, which lets no carriage return through.
    std::fprintf(stderr, "\r%s %zu of %zu", what_.c_str(), done_, total_);
    shown_ = true;
  }

 private:
  std::string what_;
  std::size_t total_;
  std::size_t done_ = 0;
  bool terminal_ = ConsolePrompts::isTerminal();
  bool shown_ = false;
  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + std::chrono::seconds(1);
};

}  // namespace voxa::cli
