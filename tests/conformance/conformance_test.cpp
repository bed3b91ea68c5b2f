// What statements give, as files of records: for each engine behind the seam the same. Automation gives it,
// too (tests/automation/conformance.cpp).

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "conformance/records.h"
#include "conformance/road.h"
#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/temporary_folder.h"

namespace voxa::conformance {
namespace {

/// A database of the embedded engine.
class Embedded {
 public:
  Seam seam() { return Seam(engine_->create(folder_ / "test.mdb")); }

 private:
  SystemClock clock_;
  TemporaryFolder folder_;
  std::unique_ptr<DatabaseEngine> engine_ = makeSqliteEngine(clock_);
};

class Files : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(Files, Hold) {
  Embedded embedded;
  Seam seam = embedded.seam();
  std::ifstream in(GetParam());
  for (const Record& record : readRecords(in)) {
    EXPECT_EQ(difference(record, seam), "")
        << GetParam().filename().string() << ":" << record.line << " " << record.text;
  }
}

// The examples of the page on the language: an expression and what it gives, and statements.
TEST(Examples, OfThePageAreTrue) {
  Embedded embedded;
  Seam seam = embedded.seam();
  seam.createTable({"AccessGroups", {fieldOf("Id", "Long"), fieldOf("Name", "Text50")}, {}});
  seam.createTable({"Cardholders",
                    {fieldOf("CardNum", "Long"), fieldOf("Name", "Text50"), fieldOf("AccessGroupId", "Long"),
                     fieldOf("Credit", "Integer"), fieldOf("ValidationDate", "Date")},
                    {}});
  std::ifstream page(LANGUAGE_PAGE);
  bool statements = false;
  int examples = 0;
  for (std::string line; std::getline(page, line);) {
    SCOPED_TRACE(line);
    if (line.starts_with("```")) {
      statements = line == "```sql";
    } else if (statements) {
      ++examples;
      const bool selects = line.starts_with("select") && line.find(" into ") == line.npos;
      EXPECT_EQ(errorOf([&] { selects ? (void)seam.rows(line) : (void)seam.execute(line); }), 0);
    } else if (const std::size_t middle = line.find("` | "); line.starts_with("| `") &&
                                                             line.ends_with("` |") && middle != line.npos &&
                                                             line[middle + 4] == '`') {
      ++examples;
      const Value value = seam.rows("select " + line.substr(3, middle - 3)).values.at(0).at(0);
      EXPECT_EQ(value.isNull()              ? "Null"
                : value.data().index() == 1 ? value.toBool() ? "-1" : "0"
                                            : value.toText(),
                line.substr(middle + 5, line.size() - middle - 8));
    }
  }
  EXPECT_GT(examples, 80);
}

std::vector<std::filesystem::path> files() {
  std::vector<std::filesystem::path> found;
  for (const auto& entry : std::filesystem::directory_iterator(CONFORMANCE)) {
    if (entry.path().extension() == ".test") found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

INSTANTIATE_TEST_SUITE_P(Conformance, Files, testing::ValuesIn(files()),
                         [](const auto& info) { return info.param.stem().string(); });

}  // namespace
}  // namespace voxa::conformance
