#include "engines/jet_file/reader_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>

#include "platform/error.h"

namespace voxa::jet {

namespace {

constexpr const char* programName = "voxa-jet-reader";

std::string readerProgram(const JetFileOptions& options) {
  std::vector<std::string> places;
  if (options.reader.empty()) {
    std::error_code ignored;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", ignored);
    places = {self.parent_path() / programName, std::string(VOXA_LIBEXEC "/") + programName};
  } else {
    places = {options.reader};
  }
  for (const std::string& place : places) {
    if (::access(place.c_str(), X_OK) == 0) return place;
  }
  throw Error(err::dbCannotOpen,
              "The program that reads Jet files is missing: " + places.back() +
                  ". Install the packages mdbtools-dev and pkg-config and build this system anew");
}

/// What posix_spawn is to do in the child, with its end.
struct Actions {
  Actions() { (void)::posix_spawn_file_actions_init(&actions); }
  ~Actions() { (void)::posix_spawn_file_actions_destroy(&actions); }
  Actions(const Actions&) = delete;
  Actions& operator=(const Actions&) = delete;
  posix_spawn_file_actions_t actions{};
};
struct Attributes {
  Attributes() { (void)::posix_spawnattr_init(&attributes); }
  ~Attributes() { (void)::posix_spawnattr_destroy(&attributes); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  posix_spawnattr_t attributes{};
};

}  // namespace

ReaderProcess::ReaderProcess(const JetFileOptions& options, const std::string& file,
                             const std::vector<std::string>& work)
    : options_(options), file_(file) {
  std::vector<std::string> words{readerProgram(options), std::to_string(options.memoryBytes),
                                 std::to_string(options.processorSeconds), file};
  words.insert(words.end(), work.begin(), work.end());
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::array<char*, 1> environment{nullptr};

  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0)
    throw Error(err::dbCannotOpen,
                "The reader of Jet files cannot be started: " + std::generic_category().message(errno));
  output_ = ends[0];
  Actions actions;
  (void)::posix_spawn_file_actions_addopen(&actions.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  (void)::posix_spawn_file_actions_adddup2(&actions.actions, ends[1], STDOUT_FILENO);
  (void)::posix_spawn_file_actions_addopen(&actions.actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  (void)::posix_spawn_file_actions_addclosefrom_np(&actions.actions, STDERR_FILENO + 1);
  // The caller may have shut signals out; the child must die of them.
  Attributes attributes;
  sigset_t none;
  sigset_t all;
  (void)::sigemptyset(&none);
  (void)::sigfillset(&all);
  (void)::posix_spawnattr_setsigmask(&attributes.attributes, &none);
  (void)::posix_spawnattr_setsigdefault(&attributes.attributes, &all);
  (void)::posix_spawnattr_setflags(&attributes.attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  const int code = ::posix_spawn(&child_, arguments[0], &actions.actions, &attributes.attributes,
                                 arguments.data(), environment.data());
  (void)::close(ends[1]);
  if (code != 0) {
    child_ = -1;
    (void)::close(output_);
    throw Error(err::dbCannotOpen, "The reader of Jet files cannot be started: " + words[0] + ": " +
                                       std::generic_category().message(code));
  }
}

ReaderProcess::~ReaderProcess() {
  kill();
  (void)::close(output_);
}

void ReaderProcess::kill() {
  if (child_ < 0) return;
  (void)::kill(child_, SIGKILL);
  while (::waitpid(child_, nullptr, 0) < 0 && errno == EINTR) {
  }
  child_ = -1;
}

std::size_t ReaderProcess::read(char* to, std::size_t room) {
  if (child_ < 0) return 0;
  pollfd ready{output_, POLLIN, 0};
  int count = 0;
  do {
    count = ::poll(&ready, 1, options_.silenceMs);
  } while (count < 0 && errno == EINTR);
  if (count == 0) {
    kill();
    throw Error(err::dbNotADatabase, "The database file cannot be read: " + file_ +
                                         ". The reader program sent nothing for " +
                                         std::to_string(options_.silenceMs / 1000) +
                                         " seconds and was ended. The file is damaged, or the disk is stuck");
  }
  const ssize_t got = ::read(output_, to, room);
  if (got > 0) return static_cast<std::size_t>(got);
  finish();
  return 0;
}

void ReaderProcess::finish() {
  int status = 0;
  // Whoever has closed its output and lives on is not waited for.
  for (int waited = 0;; ++waited) {
    const pid_t ended = ::waitpid(child_, &status, WNOHANG);
    if (ended == child_) break;
    if (ended < 0 && errno != EINTR) break;
    constexpr int mostMs = 2000;
    if (waited >= mostMs) {
      kill();
      return;
    }
    (void)::poll(nullptr, 0, 1);
  }
  child_ = -1;
  constexpr int noMemory = 12;
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return;
  std::string how;
  if (WIFSIGNALED(status) && (WTERMSIG(status) == SIGXCPU)) {
    how = "took more than " + std::to_string(options_.processorSeconds) + " seconds of processor time";
  } else if (WIFEXITED(status) && WEXITSTATUS(status) == noMemory) {
    how = "needed more memory than " + std::to_string(options_.memoryBytes / 1024 / 1024) + " MiB";
  } else if (WIFSIGNALED(status)) {
    how = "was broken off by signal " + std::to_string(WTERMSIG(status));
  } else {
    how = "ended with code " + std::to_string(WEXITSTATUS(status));
  }
  throw Error(err::dbNotADatabase,
              "The database file cannot be read: " + file_ + ". The reader program " + how +
                  ". The file is damaged: have the Jet database engine repair it, or take "
                  "another copy");
}

}  // namespace voxa::jet
