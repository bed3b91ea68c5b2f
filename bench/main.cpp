// Measures the system beside hand-written SQLite that does the same work, and reports.
//
//   bench_report OUT.json [BENCHMARK...]
//
// The databases are made in the folder of OUT.json, on that folder's disk.

#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "platform/error.h"
#include "support/harness.h"
#include "support/instructions.h"

namespace {

using namespace voxa;
using namespace voxa::bench;

/// Runs one benchmark. A failure is shown and empties its rows; then the result is false.
bool measure(const std::string& name, const Harness& harness, Rows& rows) {
  try {
    const auto found = benchmarks().find(name);
    require(found != benchmarks().end(), "there is none of that name");
    const Rows measured = found->second(harness);
    rows.insert(rows.end(), measured.begin(), measured.end());
    return true;
  } catch (const Error& error) {
    std::cerr << "Benchmark " << name << " failed: " << error.number() << " " << error.description() << '\n';
  } catch (const std::exception& error) {
    std::cerr << "Benchmark " << name << " failed: " << error.what() << '\n';
  }
  return false;
}

int report(const std::string& file, std::vector<std::string> names) {
  const std::filesystem::path path = std::filesystem::absolute(file);
  std::filesystem::current_path(path.parent_path());
  if (names.empty()) {
    for (const auto& [name, work] : benchmarks()) names.push_back(name);
  }
  Rows rows;
  bool complete = true;
  for (const std::string& name : names) {
    std::cerr << "Measuring " << name << '\n';
    complete = measure(name, Harness(), rows) && complete;
  }
  printTable(std::cout, rows);
  writeJson(path.string(), rows);
  return complete ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  try {
    if (arguments.size() >= 3 && (arguments[0] == traceOption || arguments[0] == countOption)) {
      const Traced side = arguments[2] == "ours" ? Traced::ours : Traced::rival;
      const Harness harness = arguments[0] == traceOption
                                  ? Harness(side)
                                  : Harness(side, arguments.size() > 3 ? std::stoi(arguments[3]) : 0);
      Rows ignored;
      return measure(arguments[1], harness, ignored) ? 0 : 1;
    }
    if (arguments.empty() || arguments[0].starts_with('-')) {
      std::cerr << "Usage: bench_report OUT.json [BENCHMARK...]\nBenchmarks:";
      for (const auto& [name, work] : benchmarks()) std::cerr << ' ' << name;
      std::cerr << '\n';
      return 2;
    }
    return report(arguments[0], {arguments.begin() + 1, arguments.end()});
  } catch (const std::exception& error) {
    std::cerr << "bench_report: " << error.what() << '\n';
    return 1;
  }
}
