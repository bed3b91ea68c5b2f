// The engine over data objects, driven over those of VOXA.dll, which is registered: the records of
// tests/conformance, and all of the seam, for which the embedded engine gives the same. Each call has to be
// in the table of calls, which lists what the installed library documents. Runs in an empty folder with the
// files.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <vector>

#include "conformance/records.h"
#include "conformance/road.h"
#include "engines/dao/engine.h"
#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "seam_story.h"

namespace voxa::conformance {
namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

Words wordsOf(const std::string& line) {
  std::istringstream in(line);
  return {std::istream_iterator<std::string>(in), {}};
}

Words wordsOf(const DaoCall& call) {
  Words out{call.kind + "." + call.member};
  if (call.isPut) out.emplace_back("=");
  out.insert(out.end(), call.arguments.begin(), call.arguments.end());
  return out;
}

/// Whether a call is that of a line: "any" stands for each type, "any..." for one or more arguments.
bool isOf(const Words& call, const Words& line) {
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (i >= call.size()) return false;
    if (line[i] == "any...") return true;
    if (line[i] != call[i] && (line[i] != "any" || call[i] == "object" || call[i] == "-")) return false;
  }
  return call.size() == line.size();
}

/// The calls of calls.txt.
std::vector<Words> readCalls() {
  std::vector<Words> out;
  std::ifstream in("calls.txt");
  for (std::string line; std::getline(in, line);) {
    const Words words = wordsOf(line.substr(0, line.find_first_of("|#")));
    if (!words.empty()) out.push_back(words);
  }
  return out;
}

int runRecords(DatabaseEngine& engine) {
  return runFiles(fs::current_path(), [&](const std::string& name) {
    return std::make_unique<Seam>(engine.create(name + ".mdb"));
  });
}

int runStory(DatabaseEngine& engine, const Clock& clock) {
  const auto tell = [](DatabaseEngine& told, const char* folder) {
    fs::create_directory(folder);
    return seamStory(told, (fs::current_path() / folder).string());
  };
  const auto embedded = makeSqliteEngine(clock);
  const auto expected = tell(*embedded, "embedded");
  const auto given = tell(engine, "objects");
  int failures = given.size() == expected.size() ? 0 : 1;
  for (std::size_t i = 0; i < std::min(given.size(), expected.size()); ++i) {
    if (given[i] == expected[i]) continue;
    ++failures;
    std::printf("expected: %s\ngiven:    %s\n", expected[i].c_str(), given[i].c_str());
  }
  std::printf("%d of %zu steps of the seam differ\n", failures, expected.size());
  return failures;
}

int run() {
  const SystemClock clock;
  std::set<Words> made;
  const DaoOptions options{.classes = {"KORVA.DBEngine"},
                           .observer = [&](const DaoCall& call) { made.insert(wordsOf(call)); }};
  int failures = 0;
  {
    const auto engine = makeDaoEngine(clock, options);
    failures = runStory(*engine, clock) + runRecords(*engine);
  }
  const std::vector<Words> known = readCalls();
  for (const Words& call : made) {
    if (std::any_of(known.begin(), known.end(), [&](const Words& line) { return isOf(call, line); }))
      continue;
    ++failures;
    std::string line;
    for (const std::string& word : call) line += " " + word;
    std::printf("not in the table of calls:%s\n", line.c_str());
  }
  std::printf("%zu different calls\n", made.size());
  return failures;
}

}  // namespace
}  // namespace voxa::conformance

int main() {
  int result = 1;
  try {
    result = voxa::conformance::run();
  } catch (const std::exception& failure) {
    std::printf("FAILED: %s\n", failure.what());
  }
  if (result == 0) std::printf("passed\n");
  return result == 0 ? 0 : 1;
}
