// Sends 31 weekly programs to 2 stations, with a driver that does nothing. The rival is plain code that
// writes the same command files and keeps the flags in hand-written SQLite.

#include <cstdio>
#include <memory>

#include "app/qdb.h"
#include "programs/weekly_program.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr const char* name = "weekly-download";
constexpr int programs = 31;
constexpr std::int16_t stations = 2;

void fill(Installation& installation) {
  Transaction transaction(installation.engine());
  Database& database = installation.db();
  database.execute("insert into Stations (Id, Name, Active) values (2, 'Annex', True)");
  for (int n = 1; n <= programs; ++n) {
    const std::string number = std::to_string(n);
    database.execute(
        "insert into WeeklyPrograms (ProgType, ProgNum, Name, DailyProgDay1, DailyProgDay2, DailyProgDay3, "
        "DailyProgDay4, DailyProgDay5, DailyProgDay6, DailyProgDay7, DailyProgHolidays) values ('C', " +
        number + ", 'Program " + number + "', 1, 1, 1, 1, 1, 1, 1, 1)");
  }
  transaction.commit();
  installation.driver().statuses = "111XXXXXXXXXXXXX";
}

/// The rival's download. It sets all flags at once; then, for each program, it writes a file, makes two calls
/// and clears a flag.
class PlainDownload {
 public:
  PlainDownload(const std::string& database, std::string commandFile, Driver& driver)
      : sqlite_(database),
        commandFile_(std::move(commandFile)),
        driver_(driver),
        mark_(sqlite_.prepare("UPDATE WeeklyPrograms SET WeeklyProgramFlagD = -1 WHERE NOT "
                              "WeeklyProgramFlagD")),
        row_(sqlite_.prepare("SELECT DailyProgDay1, DailyProgDay2, DailyProgDay3, DailyProgDay4, "
                             "DailyProgDay5, DailyProgDay6, DailyProgDay7, DailyProgHolidays "
                             "FROM WeeklyPrograms WHERE ProgType = 'C' AND ProgNum = ?1")),
        clear_(sqlite_.prepare("UPDATE WeeklyPrograms SET WeeklyProgramFlagD = 0 "
                               "WHERE ProgType = 'C' AND ProgNum = ?1")) {}

  void run() {
    sqlite_.run(mark_);
    for (int program = 1; program <= programs; ++program) {
      writeCommands(program);
      for (std::int16_t station = 1; station <= stations; ++station) {
        require(driver_.call(CmSendCommand, station, 0) == 100, "The driver fails");
      }
      sqlite3_bind_int(clear_.get(), 1, program);
      sqlite_.run(clear_);
    }
  }

 private:
  void writeCommands(int program) {
    (void)std::remove(commandFile_.c_str());  // an emptied file would go to the disk each time
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(commandFile_.c_str(), "wb"),
                                                               &std::fclose);
    require(file != nullptr, "The rival cannot write its command file");
    sqlite3_bind_int(row_.get(), 1, program);
    bool usesFirst = false;
    while (sqlite_.nextRow(row_)) {
      (void)std::fprintf(file.get(), "32%02d", program);
      for (int column = 0; column < 8; ++column) {
        const int daily = sqlite3_column_int(row_.get(), column);
        usesFirst = usesFirst || (column < 7 && daily == 1);
        (void)std::fprintf(file.get(), "%02d", daily);
      }
    }
    (void)std::fprintf(file.get(), "\r\n%s\r\n", usesFirst ? "31010000240024002400\r\n" : "");
  }

  PlainSqlite sqlite_;
  std::string commandFile_;
  Driver& driver_;
  PlainSqlite::Statement mark_;
  PlainSqlite::Statement row_;
  PlainSqlite::Statement clear_;
};

Rows measure(const Harness& harness) {
  Installation installation;
  installation.createDatabase();
  fill(installation);
  const std::string rivalFile = installation.folder() + "/RIVAL.TXT";
  PlainDownload plain(installation.copyDatabase(), rivalFile, installation.driver());

  const auto ours = [&] {
    require(installation.library().QDB().WeeklyPrograms().generalDownload() == 0, "The download fails");
    installation.requireSilence();
  };
  const auto rival = [&] { plain.run(); };
  ours();
  rival();
  require(contents("COMMAND.TXT") == contents(rivalFile), "The command files differ");

  const Times times = harness.compare({ours}, {rival}, Pace::once);
  const SystemCalls calls = harness.countSystemCalls(name, ours, rival);
  const auto each = [](double whole) { return whole / programs; };
  return {
      {"generalDownload of 31 weekly programs", "ms a program", each(times.ours * 1e3),
       each(times.rival * 1e3), 1.5},
      {"generalDownload, system calls", "a program", each(calls.ours.all), each(calls.rival.all)},
      {"generalDownload, waits for the disk", "a program", each(calls.ours.syncs), each(calls.rival.syncs)}};
}

const Registration registration(name, measure);

}  // namespace

}  // namespace voxa::bench
