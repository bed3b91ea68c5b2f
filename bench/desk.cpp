// The questions that a person at the desk asks of a large installation: 9,999 cards, 64 controllers, and a
// journal of 10,000,000 rows. Each is a command, from its start to its end, with its lines in a file. The
// rival is the shell of SQLite with a query written by hand for the same answer.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/qdb.h"
#include "journal/journal.h"
#include "support/busy_journal.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

extern "C" char** environ;  // NOLINT(readability-redundant-declaration)

namespace voxa::bench {

namespace {

namespace fs = std::filesystem;

constexpr int wholeJournal = 10'000'000;
constexpr int smallJournal = 100'000;
constexpr int cards = 9999;
constexpr int usedCards = 9000;
constexpr int usualRounds = 7;
constexpr int roundsOfPasses = 3;  // over the whole journal

struct Ran {
  double mebibytes = 0;  ///< the most memory it had
};

/// Runs a program with its standard output in a file; it has to succeed.
Ran run(const std::vector<std::string>& words, const std::string& output) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t child = 0;
  const int failure = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  require(failure == 0, "Cannot start " + words[0]);
  int status = 0;
  rusage usage{};
  require(wait4(child, &status, 0, &usage) == child && status == 0, words[0] + " fails: " + words.back());
  return {static_cast<double>(usage.ru_maxrss) / 1024};
}

std::int64_t linesOf(const std::string& file) {
  std::ifstream in(file);
  return std::count(std::istreambuf_iterator<char>(in), {}, '\n');
}

/// The installation, and the two programs that are asked.
class Desk {
 public:
  Desk() : voxa_((fs::read_symlink("/proc/self/exe").parent_path() / "voxa").string()) {
    require(fs::exists(voxa_), "There is no program voxa beside this one");
    installation_.createDatabase();
    installation_.addCardholders(cards);
    installation_.addReaders();
    installation_.addStaff(16);
    installation_.addLines(4);
    // Some cards end in the journal's year.
    installation_.db().execute(
        "update Cardholders set ValidationDate = #12/31/2026# where CardNum between 500 and 700");
    fs::copy_file(installation_.databasePath(), main());
    Journal& journalTable = installation_.library().QDB().Journal();
    require(journalTable.createDB() == 0, "Cannot create the journal");
    if (const auto open = journalTable.DB()) open->close();
    fillJournal(journal(), {.rows = wholeJournal, .cards = usedCards});
  }

  [[nodiscard]] std::string main() const { return installation_.folder() + "/KRV.mdb"; }
  [[nodiscard]] std::string journal() const { return installation_.folder() + "/" + Journal::dbName; }
  [[nodiscard]] std::string output(const char* side) const { return installation_.folder() + "/" + side; }

  Ran ours(std::vector<std::string> words) const {
    words.insert(words.begin(), {voxa_, "--dir", installation_.folder(), "--no-log"});
    return run(words, output("ours.txt"));
  }
  Ran rival(const std::string& file, const std::string& query) const {
    return run({"sqlite3", "-readonly", "-bail", file, query}, output("rival.txt"));
  }

 private:
  Installation installation_;
  std::string voxa_;
};

/// A question in both languages.
struct Question {
  const char* name;
  std::vector<std::string> words;  ///< of the command
  bool ofJournal;
  const char* query;
  double limit;
  int headLines;  ///< more lines of ours than answers
};

constexpr double asked = 3;
constexpr double started = 2;

const std::string aDay = "[Date] >= 46203 and [Date] < 46204";

const char* const journalColumns =
    "select strftime('%d/%m/%Y %H:%M', [Date] + 2415018.5), StationName, ReaderName, TransactionType, "
    "CardholderName, TransactionData from Journal ";

std::string journalQuery(const std::string& behind) {
  return journalColumns + behind;
}

Row measured(const Harness& harness, const Desk& desk, const Question& question, int rounds) {
  const std::string file = question.ofJournal ? desk.journal() : desk.main();
  (void)desk.ours(question.words);
  (void)desk.rival(file, question.query);
  const std::int64_t answers = linesOf(desk.output("ours.txt")) - question.headLines;
  require(answers > 0 && answers == linesOf(desk.output("rival.txt")),
          std::string("The sides differ: ") + question.name + ", ours " + std::to_string(answers));
  const Times times = harness.compare({[&] { (void)desk.ours(question.words); }},
                                      {[&] { (void)desk.rival(file, question.query); }}, Pace::once, rounds);
  return {question.name, "ms", times.ours * 1000, times.rival * 1000, question.limit};
}

Rows measure(const Harness& harness) {
  const Desk desk;
  const std::string ofDay = journalQuery("where " + aDay + " order by [Date], Id");
  const std::string last = journalQuery("order by [Date] desc, Id desc limit 20");
  const std::string person = journalQuery(
      "where substr(TransactionData, 3, 4) = '4711' and TransactionType collate binary <> '10' order by "
      "[Date], Id");
  const std::string neverUsed = "attach '" + desk.journal() +
                                "' as j; select CardNum, Name, CardCode, AccessGroupId from Cardholders "
                                "where Deleted = 0 and CardNum not in "
                                "(select distinct cast(substr(TransactionData, 3, 4) as integer) from "
                                "j.Journal where TransactionType collate binary <> '10') order by CardNum";
  const std::string who =
      "select c.CardNum, c.Name, g.Name, a.WeeklyProgNum from Readers r join AccGroupReaders a on a.ReaderId "
      "= r.Id "
      "join AccessGroups g on g.Id = a.AccessGroupId join Cardholders c on c.AccessGroupId = g.Id where r.Id "
      "= 1 "
      "and c.Deleted = 0 and c.Validated <> 0 order by c.CardNum";
  const std::vector<Question> questions = {
      {"voxa station list, from start to end",
       {"station", "list"},
       false,
       "select Id, Name, ComPort + 1, ComSpeed, Phone, ModemIniFile, TimeoutDelay, WaitingDelay, Active from "
       "Stations order by Id",
       started,
       1},
      {"card list, 9,999 cards",
       {"card", "list"},
       false,
       "select c.CardNum, c.Name, c.CardCode, g.Name, c.Validated, c.Supervisor, c.ValidationDate, c.Credit, "
       "c.CardCodeFlagD or c.AccessGroupIdFlagD or c.ValidatedFlagD or c.PINCodeFlagD or c.SupervisorFlagD "
       "or "
       "c.ValidationDateFlagD or c.CreditFlagD from Cardholders c left join AccessGroups g on g.Id = "
       "c.AccessGroupId "
       "where c.Deleted = 0 order by c.CardNum",
       asked,
       1},
      {"card list --sort name --limit 20",
       {"card", "list", "--sort", "name", "--limit", "20"},
       false,
       "select CardNum, Name, CardCode from Cardholders where Deleted = 0 order by Name collate nocase limit "
       "20",
       asked,
       1},
      {"card list --expires-before",
       {"card", "list", "--expires-before", "2027-01-01"},
       false,
       "select CardNum, Name, CardCode, ValidationDate from Cardholders where Deleted = 0 and ValidationDate "
       "< 46388 "
       "order by CardNum",
       asked,
       1},
      {"card find, part of a name",
       {"card", "find", "471"},
       false,
       "select CardNum, Name, CardCode from Cardholders where Deleted = 0 and (Name like '%471%' or CardNum "
       "= 471 or "
       "ltrim(CardCode, '0') = '471') order by CardNum",
       asked,
       1},
      {"card list --never-used, 10,000,000 rows of the journal",
       {"card", "list", "--never-used"},
       false,
       neverUsed.c_str(),
       asked,
       1},
      {"access who, 9,999 cards", {"access", "who", "Reader 1"}, false, who.c_str(), asked, 1},
      {"journal, a day of 10,000,000 rows",
       {"journal", "--since", "2026-06-30", "--until", "2026-06-30"},
       true,
       ofDay.c_str(),
       asked,
       0},
      {"journal --last 20", {"journal", "--last", "20"}, true, last.c_str(), asked, 0},
      {"journal --person 4711", {"journal", "--person", "4711"}, true, person.c_str(), asked, 0},
  };
  Rows rows;
  for (const Question& question : questions) {
    rows.push_back(measured(harness, desk, question, question.ofJournal ? roundsOfPasses : usualRounds));
  }
  const double ofWhole = desk.ours({"journal"}).mebibytes;
  PlainSqlite(desk.journal()).run("DELETE FROM Journal");
  fillJournal(desk.journal(), {.rows = smallJournal});
  const double ofSmall = desk.ours({"journal"}).mebibytes;
  constexpr double flat = 10;
  rows.push_back(
      {"memory of a journal of 10,000,000 rows more than 100,000", "MiB", ofWhole - ofSmall, {}, flat});
  return rows;
}

const Registration registration("desk", measure);

}  // namespace

}  // namespace voxa::bench
