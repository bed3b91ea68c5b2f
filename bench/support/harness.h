#pragma once

#include <functional>
#include <optional>
#include <string>

#include "support/report.h"
#include "support/system_calls.h"

namespace voxa::bench {

/// One of the two that are compared.
struct Side {
  std::function<void()> work;       ///< what is timed
  std::function<void()> prepare{};  ///< before each run of `work`, not timed; only at Pace::once
};

/// How often `work` runs within one measurement: as often as a reliable time takes, or once.
enum class Pace { repeated, once };

/// Seconds of one run of `work`, the median of all rounds.
struct Times {
  double ours = 0;
  double rival = 0;
};

/// Runs the measurements of a benchmark. Either measures times and has system calls counted in processes of
/// their own, or is such a process: then it runs only the work whose calls, or instructions, are counted.
class Harness {
 public:
  /// traced: the side whose system calls this process is watched for; none in the process that reports.
  explicit Harness(std::optional<Traced> traced = {}) : traced_(traced) {}
  /// A process whose instructions are counted in one comparison (from 0) of a benchmark, for one side.
  Harness(Traced counted, int comparison) : counted_(counted), comparison_(comparison) {}

  static constexpr int usualRounds = 25;
  /// Whether instructions are counted: a benchmark does with less work then, of the same kind.
  [[nodiscard]] bool counts() const { return counted_.has_value(); }

  /// Times both sides in turns, after one round that does not count.
  [[nodiscard]] Times compare(const Side& ours, const Side& rival, Pace pace = Pace::repeated,
                              int rounds = usualRounds) const;
  /// The same for one that has no rival; seconds.
  [[nodiscard]] double time(const Side& ours) const;

  /// System calls of one run of `work` on each side, after one run that does not count. At most once in a
  /// benchmark. benchmark: the name under which it is registered.
  [[nodiscard]] SystemCalls countSystemCalls(const std::string& benchmark, const std::function<void()>& ours,
                                             const std::function<void()>& rival) const;

 private:
  void count(const Side& side, Pace pace) const;

  std::optional<Traced> traced_;
  std::optional<Traced> counted_;
  mutable int comparison_ = 0;  ///< that are to be passed over before the one that is counted
};

/// A benchmark's whole work: builds what it needs, measures, and returns its rows. An exception is a failure
/// of the benchmark.
using Measure = std::function<Rows(const Harness&)>;

/// Makes a benchmark known; a namespace-scope object of this type in the benchmark's source does it.
/// name: one word, also the order in the report. It fails to start when two have the same name.
class Registration {
 public:
  Registration(const char* name, Measure measure);
};

/// The registered benchmarks, in the order of their names.
[[nodiscard]] const std::map<std::string, Measure>& benchmarks();

/// Raises std::runtime_error with `what`: a benchmark whose two sides do different work measures nothing.
void require(bool holds, const std::string& what);

}  // namespace voxa::bench
