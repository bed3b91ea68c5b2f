#include "support/peak_memory.h"

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <iostream>

#include "platform/error.h"
#include "support/harness.h"

namespace voxa::bench {

namespace {

bool succeeds(const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const Error& error) {
    std::cerr << error.number() << " " << error.description() << '\n';
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
  }
  return false;
}

}  // namespace

double peakMemory(const std::function<void()>& work) {
  // Memory that this process has freed but still holds would hide what the work takes.
  (void)malloc_trim(0);
  const pid_t child = fork();
  require(child >= 0, "Cannot fork");
  if (child == 0) _exit(succeeds(work) ? 0 : 1);
  int status = 0;
  rusage usage{};
  while (wait4(child, &status, 0, &usage) < 0) require(errno == EINTR, "Lost the forked process");
  require(status == 0, "The work whose memory is measured fails");
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

}  // namespace voxa::bench
