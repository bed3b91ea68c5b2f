#include "support/harness.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

#include "support/instructions.h"

namespace voxa::bench {

namespace {

constexpr double secondsOfRepeated = 0.02;
constexpr int countedRuns = 1000;

class LastTime : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
  }
  double seconds = 0;
};

/// Sides that take turns under one measuring library. The library decides how often the work runs.
class Contest {
 public:
  explicit Contest(Pace pace) : pace_(pace) {}
  ~Contest() { benchmark::ClearRegisteredBenchmarks(); }
  Contest(const Contest&) = delete;
  Contest& operator=(const Contest&) = delete;

  void enter(const std::string& name, const Side& side) {
    auto* entered = benchmark::RegisterBenchmark(
        name.c_str(), [this, &side](benchmark::State& state) { run(side, state); });
    entered->UseRealTime();
    if (pace_ == Pace::once) {
      entered->Iterations(1);
    } else {
      entered->MinTime(secondsOfRepeated);
    }
  }

  /// Runs the work of the side of that name, and returns the seconds of one run.
  double turn(const std::string& name) {
    LastTime reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter, "^" + name + "/");
    if (failure_) std::rethrow_exception(failure_);
    return reporter.seconds;
  }

 private:
  void run(const Side& side, benchmark::State& state) {
    try {
      for (auto iteration : state) {
        (void)iteration;
        if (side.prepare) {
          state.PauseTiming();
          side.prepare();
          state.ResumeTiming();
        }
        side.work();
      }
    } catch (...) {
      failure_ = std::current_exception();
      state.SkipWithError("failed");
    }
  }

  Pace pace_;
  std::exception_ptr failure_;
};

double median(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

std::map<std::string, Measure>& registry() {
  static std::map<std::string, Measure> all;
  return all;
}

}  // namespace

Times Harness::compare(const Side& ours, const Side& rival, Pace pace, int rounds) const {
  if (traced_) return {};
  if (counted_) {
    if (comparison_-- == 0) count(*counted_ == Traced::ours ? ours : rival, pace);
    return {};
  }
  Contest contest(pace);
  contest.enter("ours", ours);
  contest.enter("rival", rival);
  std::vector<double> ourTimes;
  std::vector<double> rivalTimes;
  for (int round = 0; round <= rounds; ++round) {
    // Each side goes first equally often.
    const bool oursFirst = round % 2 == 0;
    const double first = contest.turn(oursFirst ? "ours" : "rival");
    const double second = contest.turn(oursFirst ? "rival" : "ours");
    if (round == 0) continue;
    ourTimes.push_back(oursFirst ? first : second);
    rivalTimes.push_back(oursFirst ? second : first);
  }
  return {median(std::move(ourTimes)), median(std::move(rivalTimes))};
}

void Harness::count(const Side& side, Pace pace) const {
  const int runs = pace == Pace::once ? 1 : countedRuns;
  for (const bool warm : {false, true}) {
    if (side.prepare) side.prepare();
    if (warm) countBegin();
    for (int run = 0; run < runs; ++run) side.work();
    if (warm) countEnd();
  }
}

double Harness::time(const Side& ours) const {
  if (traced_ || counted_) return {};
  Contest contest(Pace::repeated);
  contest.enter("ours", ours);
  std::vector<double> times;
  for (int round = 0; round < usualRounds; ++round) times.push_back(contest.turn("ours"));
  return median(std::move(times));
}

SystemCalls Harness::countSystemCalls(const std::string& benchmark, const std::function<void()>& ours,
                                      const std::function<void()>& rival) const {
  if (counted_) return {};
  if (!traced_) return {trace(benchmark, Traced::ours), trace(benchmark, Traced::rival)};
  const auto& work = *traced_ == Traced::ours ? ours : rival;
  work();
  markTraceBegin();
  work();
  markTraceEnd();
  return {};
}

Registration::Registration(const char* name, Measure measure) {
  require(registry().emplace(name, std::move(measure)).second, "Two benchmarks have the same name");
}

const std::map<std::string, Measure>& benchmarks() {
  return registry();
}

void require(bool holds, const std::string& what) {
  if (!holds) throw std::runtime_error(what);
}

}  // namespace voxa::bench
