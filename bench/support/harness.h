#pragma once

#include <functional>
#include <optional>
#include <string>

#include "support/report.h"
#include "support/system_calls.h"

namespace voxa::bench {

/// One of the two sides that are compared.
struct Side {
  std::function<void()> work;       ///< the work that is timed
  std::function<void()> prepare{};  ///< runs before each run of `work` and is not timed; only at Pace::once
};

/// How often `work` runs within one measurement: as often as a reliable time needs, or once.
enum class Pace { repeated, once };

/// Seconds of one run of `work`: the median of all rounds.
struct Times {
  double ours = 0;
  double rival = 0;
};

/// Runs the measurements of a benchmark. Mostly it measures times, and starts processes in which system calls
/// or instructions are counted. In such a process it runs only the work that is counted.
class Harness {
 public:
  /// traced: the side whose system calls are counted in this process; none in the process that reports.
  explicit Harness(std::optional<Traced> traced = {}) : traced_(traced) {}
  /// A process in which instructions are counted, for one side of one comparison (numbered from 0) of a
  /// benchmark.
  Harness(Traced counted, int comparison) : counted_(counted), comparison_(comparison) {}

  static constexpr int usualRounds = 25;
  /// Whether instructions are counted. Then a benchmark does less work of the same kind.
  [[nodiscard]] bool counts() const { return counted_.has_value(); }

  /// Times both sides by turns, after one round that does not count.
  [[nodiscard]] Times compare(const Side& ours, const Side& rival, Pace pace = Pace::repeated,
                              int rounds = usualRounds) const;
  /// The same for one side without a rival; seconds.
  [[nodiscard]] double time(const Side& ours) const;

  /// Counts the system calls of one run of `work` on each side, after one run that does not count. At most
  /// once in a benchmark. benchmark: the name under which it is registered.
  [[nodiscard]] SystemCalls countSystemCalls(const std::string& benchmark, const std::function<void()>& ours,
                                             const std::function<void()>& rival) const;

 private:
  void count(const Side& side, Pace pace) const;

  std::optional<Traced> traced_;
  std::optional<Traced> counted_;
  mutable int comparison_ = 0;  ///< so many are passed over before the one that is counted
};

/// The whole work of a benchmark: it builds what it needs, measures, and returns its rows. An exception means
/// that the benchmark failed.
using Measure = std::function<Rows(const Harness&)>;

/// Makes a benchmark known. The benchmark's source has a namespace-scope object of this type.
/// name: one word; the report is ordered by it. The program fails to start when two have the same name.
class Registration {
 public:
  Registration(const char* name, Measure measure);
};

/// The registered benchmarks, in the order of their names.
[[nodiscard]] const std::map<std::string, Measure>& benchmarks();

/// Raises std::runtime_error with `what` unless `holds`. For checks that both sides do the same work:
/// otherwise the benchmark measures nothing.
void require(bool holds, const std::string& what);

}  // namespace voxa::bench
