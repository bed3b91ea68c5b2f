#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iostream>

#include "guard.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

volatile std::sig_atomic_t worker = 0;

/// Hands an interruption on to the process that works; its end wakes this one.
void handOn(int signal) {
  (void)::kill(static_cast<pid_t>(worker), signal);
}

}  // namespace

void deleteAfterThisProcess(const std::filesystem::path& folder) {
  std::cout.flush();
  constexpr int interruptions[] = {SIGINT, SIGTERM, SIGHUP};
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  for (const int signal : interruptions) sigaddset(&blocked, signal);
  (void)::sigprocmask(SIG_BLOCK, &blocked, &before);
  const pid_t child = ::fork();
  if (child < 0) throw Refusal("the demonstration cannot begin: no process can be made for it");
  if (child == 0) {
    (void)::sigprocmask(SIG_SETMASK, &before, nullptr);
    return;
  }
  worker = child;
  struct sigaction action {};
  action.sa_handler = handOn;
  for (const int signal : interruptions) (void)::sigaction(signal, &action, nullptr);
  (void)::sigprocmask(SIG_SETMASK, &before, nullptr);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  std::error_code left;
  std::filesystem::remove_all(folder, left);
  if (left) std::cerr << "voxa demo: " << folder.string() << " is left behind: " << left.message() << '\n';
  constexpr int signalled = 128;
  ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : signalled + WTERMSIG(status));
}

}  // namespace voxa::cli
