// Reading a dump into the journal, beside hand-written SQLite doing the same lookups and inserts; whether the
// time a line and the memory stay the same with ten times the lines.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/qdb.h"
#include "journal/journal.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

namespace fs = std::filesystem;

constexpr int cards = 9999;
constexpr int controllers = 16;
constexpr int smallFile = 100'000;
constexpr int largeFile = 1'000'000;
constexpr int rounds = 3;
constexpr const char* dump = "PREPARED.DAT";
constexpr const char* grantedTypes[] = {"00", "02", "01", "03"};  // by position

/// An installation whose driver puts a prepared file in place as a controller's memory.
class Reading {
 public:
  explicit Reading(int lines) : lines_(lines) {
    installation_.createDatabase();
    installation_.addCardholders(cards);
    installation_.addReaders();
    require(journal().createDB() == 0, "Cannot create the journal");
    fs::copy_file("Journal.MDB", "rival-journal.mdb");
    (void)installation_.copyDatabase();
    write();
    installation_.driver().onCall = [](ComCommandsEnum command, std::int16_t, std::int16_t) {
      if (command == cmReadMemory) fs::create_hard_link(dump, "J.DAT");
    };
  }

  void prepare() {
    journal().DB()->execute("delete * from Journal");
    fs::remove("J00100.DAT");
    fs::remove_all("Backup");
  }
  void read() {
    require(journal().readTransactions(CTStation, "Local") == 0, "The read fails");
    installation_.requireSilence();
  }
  [[nodiscard]] std::string rows() {
    const auto count = journal().DB()->openRecordset("select count(*), max(CardholderName) from Journal");
    return count->get(std::size_t{0}).toText() + " " + count->get(std::size_t{1}).toText();
  }
  Installation& installation() { return installation_; }
  [[nodiscard]] int lines() const { return lines_; }

 private:
  [[nodiscard]] Journal& journal() { return installation_.library().QDB().Journal(); }

  void write() const {
    std::ofstream file(dump, std::ios::binary);
    for (int i = 0; i < lines_; ++i) {
      char line[32];
      const int card = static_cast<int>((i * 7919LL) % cards) + 1;
      const int size = std::snprintf(line, sizeof line, "%02d %s%02d%02d26%02d%02d00%04d00\r\n",
                                     i % controllers + 1, grantedTypes[i / controllers % 4],
                                     i / 1440 % 28 + 1, i / 40320 % 12 + 1, i / 60 % 24, i % 60, card);
      file.write(line, size);
    }
  }

  int lines_;
  Installation installation_;
};

/// Lookups line by line, as one writes them: one read transaction, one write transaction.
class PlainDecoding {
 public:
  explicit PlainDecoding(Reading& reading)
      : data_(reading.installation().folder() + "/rival.mdb"),
        journal_(reading.installation().folder() + "/rival-journal.mdb"),
        card_(data_.prepare("SELECT Name FROM Cardholders WHERE CardNum = ?1 AND Deleted = 0")),
        reader_(
            data_.prepare("SELECT Id, Name FROM Readers WHERE StationId = 1 AND ControllerAddress = ?1 AND "
                          "Position = ?2")),
        insert_(journal_.prepare(
            "INSERT INTO Journal (Date, StationId, StationName, ReaderId, ReaderName, TransactionType, "
            "CardholderName, TransactionData) VALUES (?1, 1, 'Local', ?2, ?3, ?4, ?5, ?6)")) {}

  void prepare() {
    journal_.run("DELETE FROM Journal");
    fs::remove("rival-copy.dat");
  }

  void decode() {
    data_.run("BEGIN");
    journal_.run("BEGIN IMMEDIATE");
    std::ifstream file(dump, std::ios::binary);
    for (std::string line; std::getline(file, line);) insert(line);
    journal_.run("COMMIT");
    data_.run("COMMIT");
    fs::copy_file(dump, "rival-copy.dat");
  }

  [[nodiscard]] std::string rows() {
    const auto count = journal_.prepare("SELECT count(*), max(CardholderName) FROM Journal");
    require(journal_.nextRow(count), "No count");
    return text(count, 0) + " " + text(count, 1);
  }

 private:
  static int number(const std::string& line, std::size_t at, std::size_t width) {
    return std::stoi(line.substr(at, width));
  }

  // Days since 30 December 1899, as the engine stores moments.
  static double moment(const std::string& line) {
    const std::chrono::year_month_day date{std::chrono::year(2000 + number(line, 9, 2)),
                                           std::chrono::month(static_cast<unsigned>(number(line, 7, 2))),
                                           std::chrono::day(static_cast<unsigned>(number(line, 5, 2)))};
    constexpr int daysBefore1970 = 25569;
    return std::chrono::sys_days(date).time_since_epoch().count() + daysBefore1970 +
           (number(line, 11, 2) * 60 + number(line, 13, 2)) / 1440.0;
  }

  void insert(const std::string& line) {
    const std::string type = line.substr(3, 2);
    const std::string data = line.substr(15, 8);
    int position = 1;
    while (type != grantedTypes[position - 1]) ++position;
    sqlite3_bind_int(reader_.get(), 1, number(line, 0, 2));
    sqlite3_bind_int(reader_.get(), 2, position);
    require(data_.nextRow(reader_), "No such reader");
    const std::string reader = text(reader_, 1);
    sqlite3_bind_int(insert_.get(), 2, sqlite3_column_int(reader_.get(), 0));
    sqlite3_reset(reader_.get());
    sqlite3_bind_int(card_.get(), 1, number(data, 2, 4));
    require(data_.nextRow(card_), "No such card");
    const std::string card = text(card_, 0);
    sqlite3_reset(card_.get());
    sqlite3_bind_double(insert_.get(), 1, moment(line));
    const auto bind = [&](int index, const std::string& value) {
      sqlite3_bind_text(insert_.get(), index, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
    };
    bind(3, reader);
    bind(4, type);
    bind(5, card);
    bind(6, data);
    journal_.run(insert_);
  }

  PlainSqlite data_;
  PlainSqlite journal_;
  PlainSqlite::Statement card_, reader_, insert_;
};

/// Seconds a line.
Times timesOf(const Harness& harness, int lines, int times) {
  Reading reading(lines);
  PlainDecoding plain(reading);
  reading.prepare();
  reading.read();
  plain.decode();
  require(reading.rows() == plain.rows(), "The journals differ");
  const Times all = harness.compare({[&] { reading.read(); }, [&] { reading.prepare(); }},
                                    {[&] { plain.decode(); }, [&] { plain.prepare(); }}, Pace::once, times);
  return {all.ours / lines, all.rival / lines};
}

/// MiB that a process of its own had at most, reading a file of so many lines.
double memoryOf(int lines) {
  const pid_t child = fork();
  require(child >= 0, "Cannot start a process");
  if (child == 0) {
    try {
      Reading(lines).read();
      _exit(0);
    } catch (...) {
      _exit(1);
    }
  }
  int status = 0;
  rusage usage{};
  require(wait4(child, &status, 0, &usage) == child && status == 0, "The read in a process of its own fails");
  constexpr double kibPerMib = 1024;
  return static_cast<double>(usage.ru_maxrss) / kibPerMib;
}

Rows measure(const Harness& harness) {
  // First: a child starts with what this process holds.
  const double memoryOfSmall = memoryOf(smallFile);
  const double growth = memoryOf(largeFile) - memoryOfSmall;
  const Times small = timesOf(harness, smallFile, rounds);
  const Times large = timesOf(harness, largeFile, 1);
  constexpr double micro = 1e6;
  return {{"decoding 100,000 lines", "us a line", small.ours * micro, small.rival * micro, 1.5},
          {"decoding 1,000,000 lines", "us a line", large.ours * micro, large.rival * micro, 1.5},
          {"decoding 1,000,000 lines; rival: ours, 100,000", "us a line", large.ours * micro,
           small.ours * micro, 1.1},
          {"memory of 1,000,000 lines more than 100,000", "MiB", growth, {}, 10}};
}

const Registration registration("journal-decoding", measure);

}  // namespace

}  // namespace voxa::bench
