// Random installations in which everything goes wrong that can: after each step what the ledger says of the
// controllers is compared with what they hold. The same seed gives the same rounds.

#include <signal.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "crash/child.h"
#include "platform/error.h"
#include "simulation/build.h"
#include "simulation/compare.h"
#include "simulation/doors.h"
#include "simulation/planned_steps.h"
#include "simulation/steps.h"
#include "simulation/sudden.h"

namespace voxa::simulation {

namespace {

struct Options {
  fs::path program;
  std::uint64_t seed = 20261225;
  int rounds = 100;
  bool tells = false;  ///< every step
  fs::path folder = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
};

constexpr int stepsOfRound = 12;

/// The pipe through which one process waits for another: whoever reads goes on when nobody can write any
/// more.
class Gate {
 public:
  Gate() {
    if (::pipe(ends_) != 0) throw std::runtime_error("pipe");
  }
  ~Gate() {
    open();
    ::close(ends_[0]);
  }
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

  void open() {
    if (ends_[1] >= 0) ::close(std::exchange(ends_[1], -1));
  }
  /// Lets the one through that waits.
  void letThrough() { (void)!::write(ends_[1], "", 1); }
  /// Whether it was let through.
  bool wait() {
    open();
    char byte = 0;
    return ::read(ends_[0], &byte, 1) == 1;
  }

 private:
  int ends_[2] = {-1, -1};
};

/// What befalls a step that sends.
struct Fate {
  int killBeforeCall = 0;  ///< at that call of the driver; 0: not
  int killBehindCall = 0;
  int killBeforeChange = 0;  ///< at that change of a file
  int disturbedAtCall = 0;   ///< by another process, before that call
};

std::string textOf(const Fate& fate) {
  std::ostringstream text;
  if (fate.killBeforeCall != 0) text << ", killed before call " << fate.killBeforeCall;
  if (fate.killBehindCall != 0) text << ", killed behind call " << fate.killBehindCall;
  if (fate.killBeforeChange != 0) text << ", killed before change " << fate.killBeforeChange;
  if (fate.disturbedAtCall != 0) text << ", disturbed at call " << fate.disturbedAtCall;
  return text.str();
}

class Round {
 public:
  Round(const Options& options, const fs::path& scratch, std::uint64_t seed)
      : options_(options), scratch_(scratch), world_(options.program, scratch, seed) {}

  /// What went wrong; "" when nothing did.
  std::string run() {
    choose(world_);
    const Chance rows(static_cast<std::uint64_t>(world_.chance.below(1'000'000)));
    std::string wrong = inProcess("the installation is made", [&] {
      build(world_, rows);
      return 0;
    });
    // What the rows allow at the beginning, too.
    if (wrong.empty()) wrong = inProcess("the beginning", [&] { return check(); });
    for (int step = 0; step < stepsOfRound && wrong.empty(); ++step) wrong = next();
    if (wrong.empty() && !world_.planned) {
      wrong = take(sendEverything(world_), {}, {});
      if (wrong.empty()) wrong = inProcess("all cards", [&] { return tell(uncertainCards); });
    }
    if (wrong.empty()) wrong = take(carryOutEverything(world_), {}, {});
    if (wrong.empty()) wrong = inProcess("the plan is carried out", [&] { return tell(differences); });
    if (wrong.empty() && world_.planned) ++planned;
    fs::remove(scratch_ / "allowed");
    return wrong;
  }

  long steps = 0;
  long killed = 0;
  long planned = 0;  // rounds in which only plans were carried out
  Compared seen;     // the counts alone

 private:
  std::string next() {
    const Step step = world_.planned ? nextPlannedStep(world_) : nextStep(world_);
    Fate fate;
    Step second;
    if (step.sends) {
      switch (world_.chance.below(8)) {
        case 0:
          fate.killBeforeCall = world_.chance.from(1, 12);
          break;
        case 1:
          fate.killBehindCall = world_.chance.from(1, 12);
          break;
        case 2:
          fate.killBeforeChange = world_.chance.from(1, 120);
          break;
        case 3:
          fate.disturbedAtCall = world_.chance.from(1, 6);
          second = world_.planned ? plannedDisturbance(world_) : disturbance(world_);
          break;
        default:
          break;
      }
    }
    return take(step, fate, second);
  }

  std::string take(const Step& step, const Fate& fate, const Step& second) {
    ++steps;
    what_ = step.what + textOf(fate) + (second.what.empty() ? "" : " by: " + second.what);
    if (options_.tells) std::cout << "  " << what_ << '\n';
    const auto answers = static_cast<std::uint64_t>(world_.chance.below(1'000'000));
    Gate ended;  // no process of this step is at work any more
    const bool mayDie = fate.killBeforeCall + fate.killBehindCall + fate.killBeforeChange != 0;
    std::string wrong = inProcess(
        "",
        [&] {
          if (step.alone) step.alone();
          if (step.work) work(step, fate, second, answers);
          return 0;
        },
        mayDie);
    (void)ended.wait();
    if (!wrong.empty()) return what_ + ": " + wrong;
    return inProcess(what_, [&] { return check(); });
  }

  void work(const Step& step, const Fate& fate, const Step& second, std::uint64_t answers) {
    Gate begin;
    Gate done;
    if (fate.disturbedAtCall != 0) {
      if (::fork() == 0) {  // before this process has a database open
        if (begin.wait()) disturb(second, answers);
        ::_exit(0);
      }
    }
    Session session(world_, answers);
    session.open();
    session.before = [&](int call) {
      if (call == fate.killBeforeCall) (void)::kill(::getpid(), SIGKILL);
      if (call != fate.disturbedAtCall) return;
      begin.letThrough();
      (void)done.wait();
    };
    session.behind = [&](int call) {
      if (call == fate.killBehindCall) (void)::kill(::getpid(), SIGKILL);
    };
    if (fate.killBeforeChange != 0) killBeforeChange(fate.killBeforeChange);
    step.work(session);
  }

  void disturb(const Step& second, std::uint64_t answers) {
    try {
      Session session(world_, answers + 1);
      session.open();
      session.library().lineLock().patience = {};
      second.work(session);
      std::ofstream(scratch_ / "disturbances", std::ios::app) << '.';
    } catch (const Error&) {
      // The first one has the tables: this one sends nothing.
    }
  }

  int check() {
    Session session(world_, 0);
    session.open();
    const Compared compared = compare(world_, session);
    std::cout << compared.held << ' ' << compared.assumed << ' ' << compared.doubt << ' ' << compared.unknown
              << '\n';
    std::vector<std::string> wrong = compared.wrong;
    if (world_.planned) {
      for (std::string& each : neverAllowed(world_, session, scratch_ / "allowed"))
        wrong.push_back(std::move(each));
    }
    for (const std::string& each : wrong) std::cout << each << '\n';
    return wrong.empty() ? 0 : 1;
  }

  int tell(std::vector<std::string> (*look)(const World&, Session&)) {
    Session session(world_, 0);
    session.open();
    const auto wrong = look(world_, session);
    for (const std::string& each : wrong) std::cout << each << '\n';
    return wrong.empty() ? 0 : 1;
  }

  /// Runs something in a process of its own. What it says when it fails. Its first line may be counts.
  std::string inProcess(const std::string& what, const std::function<int()>& work, bool mayDie = false) {
    const crash::Ended ended = crash::run(work, {}, scratch_ / "said");
    if (mayDie && ended.crashed && ended.status == SIGKILL) {
      ++killed;
      return "";
    }
    Compared counts;
    std::istringstream said(ended.said);
    if (said >> counts.held >> counts.assumed >> counts.doubt >> counts.unknown) seen.addCounts(counts);
    // A command or a call that fails is no fault, as long as the ledger is right behind it.
    const bool fails = ended.crashed || (!what.empty() && ended.status != 0);
    return fails ? what + ": status " + std::to_string(ended.status) + '\n' + ended.said : "";
  }

  const Options& options_;
  const fs::path& scratch_;
  World world_;
  std::string what_;
};

int simulate(const Options& options) {
  std::string pattern = (options.folder / "voxa-simulation-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder in " + options.folder.string());
  const fs::path scratch = pattern;
  long steps = 0;
  long killed = 0;
  long planned = 0;
  int failed = 0;
  Compared seen;
  for (int n = 0; n < options.rounds; ++n) {
    const std::uint64_t seed = options.seed + static_cast<std::uint64_t>(n);
    Round round(options, scratch, seed);
    if (const std::string wrong = round.run(); !wrong.empty()) {
      ++failed;
      std::cout << "FAILED seed " << seed << ", step " << round.steps << ", " << wrong << std::endl;
    }
    steps += round.steps;
    killed += round.killed;
    planned += round.planned;
    seen.addCounts(round.seen);
  }
  std::error_code none;
  const std::uintmax_t sent = fs::file_size(scratch / "disturbances", none);
  const std::uintmax_t disturbed = none ? 0 : sent;
  fs::current_path("/");
  if (failed == 0) fs::remove_all(scratch);
  std::cout << "  values compared: " << seen.held << " held, " << seen.assumed << " assumed, " << seen.doubt
            << " in doubt, " << seen.unknown << " unknown; processes killed: " << killed
            << ", disturbed: " << disturbed << '\n'
            << options.rounds << " rounds, " << planned << " with plans alone, " << steps << " operations, "
            << failed << " failed\n";
  // So few rounds may meet none of what they are made for.
  constexpr int few = 50;
  const bool met = seen.held != 0 && seen.doubt != 0 && killed != 0 && disturbed != 0;
  if (!met && options.rounds >= few) std::cout << "The rounds have not met what they are made for\n";
  return failed == 0 && (met || options.rounds < few) ? 0 : 1;
}

template <typename Number>
Number numberOf(const std::string& text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size())
    throw std::invalid_argument("'" + text + "' is no number");
  return number;
}

Options optionsOf(const std::vector<std::string>& words) {
  if (words.empty()) throw std::invalid_argument("voxa_simulation VOXA [--seed N] [--rounds N] [--tell]");
  Options options;
  options.program = fs::absolute(words.front());
  for (std::size_t i = 1; i < words.size(); ++i) {
    if (words[i] == "--tell") {
      options.tells = true;
    } else if (i + 1 < words.size() && words[i] == "--seed") {
      options.seed = numberOf<std::uint64_t>(words[++i]);
    } else if (i + 1 < words.size() && words[i] == "--rounds") {
      options.rounds = numberOf<int>(words[++i]);
    } else {
      throw std::invalid_argument("no option " + words[i]);
    }
  }
  return options;
}

}  // namespace

}  // namespace voxa::simulation

int main(int argc, char** argv) {
  try {
    return voxa::simulation::simulate(voxa::simulation::optionsOf({argv + 1, argv + argc}));
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 2;
  }
}
