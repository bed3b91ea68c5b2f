// The engine over data objects, driven over those of VOXA.dll, which is registered: the records of
// tests/conformance, and all of the seam, for which the embedded engine gives the same. Each call has to be
// in the table of calls, which lists what the installed library documents. Runs in an empty folder with the
// files.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "conformance/records.h"
#include "conformance/road.h"
#include "engines/dao/engine.h"
#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "seam_story.h"

namespace voxa::conformance {
namespace {

namespace fs = std::filesystem;

std::string lineOf(const DaoCall& call) {
  std::string line = call.kind + "." + call.member + (call.isPut ? " =" : "");
  for (const std::string& argument : call.arguments) line += " " + argument;
  return line;
}

/// The lines of calls.txt: a call with its arguments, and behind | the numbers that the engine relies on.
std::set<std::string> readCalls() {
  std::set<std::string> out;
  std::ifstream in("calls.txt");
  for (std::string line; std::getline(in, line);) {
    line = line.substr(0, line.find('|'));
    line.erase(line.find_last_not_of(" \t\r") + 1);
    if (!line.empty() && line[0] != '#') out.insert(line);
  }
  return out;
}

int runRecords(DatabaseEngine& engine) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(fs::current_path())) {
    if (entry.path().extension() == ".test") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  int records = 0;
  int failures = 0;
  for (const fs::path& file : files) {
    Seam road(engine.create(file.stem().string() + ".mdb"));
    std::ifstream in(file);
    for (const Record& record : readRecords(in)) {
      ++records;
      const std::string found = difference(record, road);
      if (found.empty()) continue;
      ++failures;
      std::printf("%s:%d %s\n%s\n", file.filename().string().c_str(), record.line, record.text.c_str(),
                  found.c_str());
    }
  }
  std::printf("%d of %d records failed\n", failures, records);
  return records == 0 ? 1 : failures;
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
  std::set<std::string> made;
  DaoOptions options{.classes = {"KORVA.DBEngine"},
                     .observer = [&](const DaoCall& call) { made.insert(lineOf(call)); }};
  if (!isDaoInstalled(options)) std::printf("not installed\n");
  int failures = 0;
  {
    const auto engine = makeDaoEngine(clock, options);
    failures = runStory(*engine, clock) + runRecords(*engine);
  }
  const std::set<std::string> known = readCalls();
  for (const std::string& call : made) {
    if (known.contains(call)) continue;
    ++failures;
    std::printf("not in the table of calls: %s\n", call.c_str());
  }
  for (const std::string& call : known) {
    if (!made.contains(call)) std::printf("not called here: %s\n", call.c_str());
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
