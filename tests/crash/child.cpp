#include "crash/child.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>
#include <system_error>
#include <thread>

namespace voxa::crash {

namespace {

using Clock = std::chrono::steady_clock;

void require(bool good, const char* what) {
  if (!good) throw std::system_error(errno, std::generic_category(), what);
}

[[noreturn]] void live(const std::function<int()>& work, const Fate& fate,
                       const std::filesystem::path& output) {
  int status = 126;
  try {
    const int in = ::open("/dev/null", O_RDONLY);
    const int out = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    require(::dup2(in, 0) == 0 && ::dup2(out, 1) == 1 && ::dup2(out, 2) == 2, "dup2");
    if (fate.fileSize) {
      // A write beyond the limit then fails with an error, as on a full disk, and sends no signal.
      (void)std::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{*fate.fileSize, *fate.fileSize};
      require(::setrlimit(RLIMIT_FSIZE, &limit) == 0, "setrlimit");
    }
    status = work();
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << std::endl;
  }
  std::cout.flush();
  ::_exit(status);
}

}  // namespace

Ended run(const std::function<int()>& work, const Fate& fate, const std::filesystem::path& output) {
  std::cout.flush();
  const auto begin = Clock::now();
  const pid_t child = ::fork();
  require(child >= 0, "fork");
  if (child == 0) live(work, fate, output);
  if (fate.killAfter) {
    std::this_thread::sleep_until(begin + std::chrono::duration<double>(*fate.killAfter));
    require(::kill(child, SIGKILL) == 0, "kill");  // changes nothing for a process that has already ended
  }
  int status = 0;
  require(::waitpid(child, &status, 0) == child, "waitpid");
  Ended ended;
  ended.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
  ended.killed = fate.killAfter && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  ended.crashed = WIFSIGNALED(status) && !ended.killed;
  ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
  std::ostringstream text;
  text << std::ifstream(output).rdbuf();
  ended.said = text.str();
  return ended;
}

}  // namespace voxa::crash
