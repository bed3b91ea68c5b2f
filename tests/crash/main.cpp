// Kills operations of an installation, lets their disk run full or read-only, and checks what they leave
// behind.

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>

#include "crash/disk.h"
#include "crash/operations.h"

namespace voxa::crash {

namespace {

struct Options {
  fs::path program;
  std::uint64_t seed = 20261224;
  int kills = 500;   ///< kills to be made before the operation has ended
  int faults = 120;  ///< operations on a full or a read-only disk
  std::string only;  ///< name of the one operation to try; all of them when empty
  /// The folder to work in. In memory an operation is many times faster, and a kill more often comes between
  /// its writes.
  fs::path folder = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
};

class Harness {
 public:
  Harness(const Options& options, const fs::path& scratch)
      : options_(options), scratch_(scratch), plant_(options.program, scratch, options.seed) {
    for (const Operation& operation : operations()) {
      if (options.only.empty() || options.only == operation.name) operations_.push_back(operation);
    }
    if (operations_.empty()) throw std::invalid_argument("no operation " + options.only);
  }

  bool run() {
    kill();
    starve();
    for (const auto& [what, count] : findings_.seen) std::cout << "  seen: " << what << ": " << count << '\n';
    std::cout << rounds_ << " rounds, " << failed_ << " failed\n";
    return failed_ == 0;
  }

 private:
  struct Tally {
    double start = 0;   // seconds until the operation begins to work
    double length = 0;  // seconds until it has ended
    int killed = 0;
    int ended = 0;
    int complete = 0;  // killed when everything was done
  };

  // Tells what went wrong, with all that is needed to see it again.
  bool fine(const Operation& operation, const std::string& when) {
    if (findings_.wrong.empty()) return true;
    std::cout << "FAILED round " << rounds_ << ", " << operation.name << ", " << when << '\n';
    const auto shown = std::min<std::size_t>(findings_.wrong.size(), 5);
    for (std::size_t i = 0; i < shown; ++i) std::cout << "    " << findings_.wrong[i] << '\n';
    const fs::path kept = scratch_ / ("failed" + std::to_string(++failed_));
    fs::copy(plant_.folder, kept, fs::copy_options::recursive);
    std::cout << "    " << findings_.wrong.size() << " in all; the installation is kept in " << kept << '\n';
    findings_.wrong.clear();
    return false;
  }

  void begin(const Operation& operation) {
    ++rounds_;
    if (rounds_ % 1000 == 0) std::cout << rounds_ << " rounds begun, " << failed_ << " failed" << std::endl;
    plant_.renew();
    plant_.batchFirst = 0;
    operation.prepare(plant_);
    plant_.remember();
  }

  Ended suffer(const Operation& operation, const Fate& fate) {
    Ended ended = plant_.run([&] { return operation.work(plant_); }, fate);
    if (ended.crashed)
      findings_.wrong.push_back("signal " + std::to_string(ended.status) + ": " + ended.said);
    if (!ended.killed && !ended.crashed && ended.status == 0 && !operation.done(plant_)) {
      findings_.wrong.push_back("success, but it is not done: " + ended.said);
    }
    return ended;
  }

  bool look(const Operation& operation, int runs, const std::string& when) {
    check(plant_, runs, findings_);
    operation.whole(plant_, findings_);
    return fine(operation, when);
  }

  // Whatever happened before, the next attempt must succeed.
  double complete(const Operation& operation, int runs) {
    plant_.clearFaults();
    if (!operation.next.empty()) {
      const auto which = plant_.below(static_cast<int>(operation.next.size()));
      const auto& command = operation.next[static_cast<std::size_t>(which)];
      const Ended next = plant_.run([&] { return plant_.become(command); }, {});
      if (next.crashed || next.status != 0) findings_.wrong.push_back("the next command fails: " + next.said);
      checkStrays(plant_, findings_);
      if (!fine(operation, "next: " + command.front())) return 0;
    }
    const bool wasDone = operation.done(plant_);
    const Ended ended = suffer(operation, {});
    if (!operation.done(plant_)) findings_.wrong.push_back("cannot be done afterwards: " + ended.said);
    if (!wasDone && ended.status != 0) findings_.wrong.push_back("fails afterwards: " + ended.said);
    look(operation, runs + 1, "done again");
    return ended.seconds;
  }

  Tally measure(const Operation& operation) {
    Tally tally;
    std::vector<double> starts;
    std::vector<double> lengths;
    for (int i = 0; i < 3; ++i) {
      const auto start = [&] { return operation.command ? plant_.become({"--help"}) : 0; };
      starts.push_back(plant_.run(start, {}).seconds);
      begin(operation);
      lengths.push_back(complete(operation, 0));
    }
    std::sort(starts.begin(), starts.end());
    std::sort(lengths.begin(), lengths.end());
    tally.start = starts.front();
    tally.length = lengths[lengths.size() / 2];
    return tally;
  }

  void kill() {
    std::vector<Tally> tallies;
    for (const Operation& operation : operations_) tallies.push_back(measure(operation));
    for (int landed = 0; landed < options_.kills && failed_ < mostFailures;) {
      const auto which = static_cast<std::size_t>(rounds_) % operations_.size();
      landed += killRound(operations_[which], tallies[which]);
    }
    for (std::size_t i = 0; i < tallies.size(); ++i) {
      const Tally& tally = tallies[i];
      std::cout << "  " << operations_[i].name << ": " << tally.killed << " killed (" << tally.complete
                << " of them with all done), " << tally.ended << " ended before; moments from "
                << static_cast<int>(tally.start * 1000) << " to " << static_cast<int>(tally.length * 1000)
                << " ms\n";
    }
  }

  int killRound(const Operation& operation, Tally& tally) {
    begin(operation);
    int runs = 0;
    int landed = 0;
    for (const int most = operation.repeats ? 1 + plant_.below(3) : 1; runs < most; ++runs) {
      const double part = std::uniform_real_distribution<>()(plant_.random);
      const Ended ended = suffer(operation, {.killAfter = tally.start + part * (tally.length - tally.start)});
      if (ended.killed) {
        ++landed;
        continue;
      }
      ++tally.ended;
      tally.length += (ended.seconds - tally.length) / 8;  // follows a machine that becomes faster
      break;
    }
    tally.killed += landed;
    if (look(operation, runs + 1, "killed")) {
      if (landed > 0 && operation.done(plant_)) ++tally.complete;
      complete(operation, runs + 1);
    }
    return landed;
  }

  void starve() {
    const Disk disk(plant_.folder);
    if (!disk.mounted())
      std::cout << "  no right to mount a small disk: full disks by a limit on file sizes\n";
    if (!disk.canBeReadOnly()) std::cout << "  root and no right to mount: read-only folders are skipped\n";
    int done = 0;
    int refused = 0;
    for (int i = 0; i < options_.faults && failed_ < mostFailures; ++i) {
      const Operation& operation = operations_[static_cast<std::size_t>(i) % operations_.size()];
      begin(operation);
      constexpr int readOnlyEach = 6;
      const bool readOnly =
          disk.canBeReadOnly() && i / static_cast<int>(operations_.size()) % readOnlyEach == 0;
      const bool limited = !disk.mounted() || plant_.below(3) == 0;
      const auto room = static_cast<std::uintmax_t>(plant_.below(8192 << plant_.below(8)));
      Fate fate;
      if (readOnly) {
        disk.setReadOnly(true);
      } else if (limited) {
        fate.fileSize = room;
      } else {
        disk.leaveFree(room);
      }
      const Ended ended = suffer(operation, fate);
      if (readOnly) {
        disk.setReadOnly(false);
      } else {
        disk.giveBack();
      }
      ++(ended.status == 0 ? done : refused);
      if (readOnly && ended.status == 0) findings_.wrong.emplace_back("done in a read-only folder");
      if (ended.status != 0 && ended.said.empty()) findings_.wrong.emplace_back("failed without a word");
      const std::string when =
          readOnly ? "read-only" : (limited ? "files of " : "disk of ") + std::to_string(room);
      if (look(operation, 1, when)) complete(operation, 1);
    }
    std::cout << "  full and read-only disks: " << refused << " failed and said so, " << done
              << " had enough room\n";
  }

  static constexpr int mostFailures = 5;

  const Options& options_;
  fs::path scratch_;
  Plant plant_;
  std::vector<Operation> operations_;
  Findings findings_;
  int rounds_ = 0;
  int failed_ = 0;
};

Options optionsOf(int argc, char** argv) {
  Options options;
  if (argc < 2)
    throw std::invalid_argument(
        "usage: voxa_crash PROGRAM [--seed N] [--kills N] [--faults N] [--folder F] [--only OPERATION]");
  options.program = fs::absolute(argv[1]);
  for (int i = 2; i < argc; i += 2) {
    const std::string name = argv[i];
    if (i + 1 == argc) throw std::invalid_argument(name + " without a value");
    const std::string value = argv[i + 1];
    if (name == "--seed") {
      options.seed = std::stoull(value);
    } else if (name == "--kills") {
      options.kills = std::stoi(value);
    } else if (name == "--faults") {
      options.faults = std::stoi(value);
    } else if (name == "--folder") {
      options.folder = fs::absolute(value);
    } else if (name == "--only") {
      options.only = value;
    } else {
      throw std::invalid_argument("unknown option " + name);
    }
  }
  return options;
}

}  // namespace

}  // namespace voxa::crash

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  try {
    const auto options = voxa::crash::optionsOf(argc, argv);
    std::cout << "voxa_crash --seed " << options.seed << " --kills " << options.kills << " --faults "
              << options.faults << std::endl;
    std::string pattern = (options.folder / "voxa-crash-XXXXXX").string();
    const fs::path scratch = mkdtemp(pattern.data());
    const bool good = voxa::crash::Harness(options, scratch).run();
    if (good) fs::remove_all(scratch);
    return good ? 0 : 1;
  } catch (const std::exception& failure) {
    std::cerr << "voxa_crash: " << failure.what() << '\n';
    return 2;
  }
}
