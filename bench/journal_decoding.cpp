// Reads a controller memory of 100,000 and of 1,000,000 lines into the journal. The rival is plain code that
// decodes the same file into hand-written SQLite. Also shows whether the time for a line, or the memory,
// grows with the file. The driver puts a prepared file in place as the work file, which costs nothing.

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "app/qdb.h"
#include "journal/journal.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/peak_memory.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

namespace fs = std::filesystem;

constexpr int few = 100'000;
constexpr int many = 1'000'000;
constexpr int counted = 20'000;  // lines, when the instructions are counted
constexpr int cards = 9999;
constexpr int roundsOfMany = 3;
constexpr int roundsOfGrowth = 7;

/// Mostly known cards, at all doors; now and then an unknown card or a pressed button.
void writeMemory(const std::string& name, int lines) {
  constexpr std::array types = {0, 1, 2, 3, 20, 21, 22, 23, 24, 25, 26, 27, 10, 11, 12, 13, 30, 0, 1, 2};
  constexpr int linesAMinute = 7;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "wb"), &std::fclose);
  require(file != nullptr, "Cannot write " + name);
  for (int line = 0; line < lines; ++line) {
    const int minute = line / linesAMinute;
    const int day = minute / 1440;
    (void)std::fprintf(file.get(), "%02d %02d%02d%02d26%02d%02d00%04d00\r\n", line * 5 % 16 + 1,
                       types[static_cast<std::size_t>(line * 3) % types.size()], day % 28 + 1,
                       day / 28 % 12 + 1, minute / 60 % 24, minute % 60,
                       static_cast<int>(line * 7919LL % cards) + 1);
  }
}

/// An installation with an empty journal and the memory that its station answers with.
class Site {
 public:
  explicit Site(int lines) : memory_(installation_.folder() + "/memory.dat") {
    installation_.createDatabase();
    installation_.addCardholders(cards);
    installation_.addReaders();
    writeMemory(memory_, lines);
    installation_.driver().onCall = [this](ComCommandsEnum command, std::int16_t, std::int16_t) {
      if (command == cmReadMemory) fs::create_hard_link(memory_, "J.DAT");
    };
  }

  Installation* operator->() { return &installation_; }
  [[nodiscard]] const std::string& memory() const { return memory_; }
  [[nodiscard]] std::string journalPath() const { return installation_.folder() + "/" + Journal::dbName; }

  Side ours() {
    return {[this] { read(); }, [this] { empty(); }};
  }
  void empty() {
    fs::current_path(installation_.folder());
    if (const auto open = journal().DB()) open->close();
    fs::remove(journalPath());
    for (const char* kept : {"J00100.DAT", "J00100.OLD", "Backup"}) fs::remove_all(kept);
    require(journal().createDB() == 0, "Cannot create the journal");
  }
  void read() {
    require(journal().readTransactions(CTStation, "Local") == 0, "The read fails");
    installation_.requireSilence();
  }

 private:
  [[nodiscard]] Journal& journal() const { return installation_.library().QDB().Journal(); }

  Installation installation_;
  std::string memory_;
};

void copyDurably(const std::string& from, const std::string& to) {
  fs::copy_file(from, to, fs::copy_options::overwrite_existing);
  const int file = open(to.c_str(), O_WRONLY | O_CLOEXEC);
  const bool durable = file >= 0 && fsync(file) == 0;
  close(file);
  require(durable, "The rival cannot keep its copy");
}

/// The rival's journal. It looks names up once a file, in one transaction over the main database, inserts the
/// rows in one over the journal, and keeps a copy of the file.
class PlainJournal {
 public:
  explicit PlainJournal(Site& site)
      : main_(site->copyDatabase()),
        path_(site->folder() + "/rival-journal.mdb"),
        memory_(site.memory()),
        empty_(site->folder() + "/empty.mdb"),
        copy_(site->folder() + "/rival.dat"),
        station_(main_.prepare("SELECT Name FROM Stations WHERE Id = ?1")),
        reader_(main_.prepare("SELECT Id, Name FROM Readers WHERE StationId = ?1 AND ControllerAddress = ?2 "
                              "AND Position = ?3")),
        card_(main_.prepare("SELECT Name FROM Cardholders WHERE CardNum = ?1 AND Deleted = 0")) {
    site.empty();
    fs::copy_file(site.journalPath(), empty_);
  }

  Side side() {
    return {[this] { decode(); }, [this] { reopen(); }};
  }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  static constexpr int stationId = 1;
  struct Reader {
    int id;
    std::string name;
  };

  void reopen() {
    insert_.reset();
    journal_.reset();
    fs::remove(path_);
    fs::copy_file(empty_, path_);
    journal_.emplace(path_);
    insert_ = journal_->prepare(
        "INSERT INTO Journal (\"Date\", StationId, StationName, ReaderId, ReaderName, TransactionType, "
        "CardholderName, TransactionData) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)");
  }

  void decode() {
    names_ = {};
    readers_ = {};
    main_.run("BEGIN");
    journal_->run("BEGIN IMMEDIATE");
    sqlite3_bind_int(station_.get(), 1, stationId);
    require(main_.nextRow(station_), "The rival finds no station");
    const std::string stationName = text(station_, 0);
    sqlite3_reset(station_.get());
    sqlite3_bind_int(insert_.get(), 2, stationId);
    bindText(3, stationName);

    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(memory_.c_str(), "rb"),
                                                               &std::fclose);
    require(file != nullptr, "The rival cannot read the memory");
    char line[64];
    int position = 0;
    while (std::fgets(line, sizeof line, file.get()) != nullptr) decodeLine(line, position);
    journal_->run("COMMIT");
    main_.run("COMMIT");
    copyDurably(memory_, copy_);
  }

  void decodeLine(const char* line, int& position) {
    const auto number = [&](int at) {
      const char tens = line[at];
      const char units = line[at + 1];
      require(tens >= '0' && tens <= '9' && units >= '0' && units <= '9', "The rival meets no digits");
      return (tens - '0') * 10 + (units - '0');
    };
    const int type = number(3);
    constexpr int doors[] = {1, 3, 2, 4};
    const bool ofCard = type <= 3 || (type >= 20 && type <= 27);
    if (ofCard) {
      position = doors[type % 4];
    } else if (type >= 10 && type <= 13) {
      position = doors[type - 10];
    } else if (type == 30) {
      position = 1;
    }
    const Reader& reader = readerAt(number(0), position);
    const std::chrono::year_month_day date{std::chrono::year(2000 + number(9)),
                                           std::chrono::month(static_cast<unsigned>(number(7))),
                                           std::chrono::day(static_cast<unsigned>(number(5)))};
    require(date.ok(), "The rival meets no date");
    constexpr std::chrono::sys_days dayZero = std::chrono::year(1899) / 12 / 30;
    const auto days = (std::chrono::sys_days(date) - dayZero).count();
    sqlite3_bind_double(insert_.get(), 1,
                        static_cast<double>(days) + (number(11) * 60 + number(13)) / 1440.0);
    sqlite3_bind_int(insert_.get(), 4, reader.id);
    bindText(5, reader.name);
    sqlite3_bind_text(insert_.get(), 6, line + 3, 2, SQLITE_STATIC);
    static const std::string none;
    bindText(7, ofCard ? nameOf(number(17) * 100 + number(19)) : none);
    sqlite3_bind_text(insert_.get(), 8, line + 15, 8, SQLITE_STATIC);
    journal_->run(insert_);
  }

  void bindText(int index, const std::string& text) {
    sqlite3_bind_text(insert_.get(), index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }

  const Reader& readerAt(int controller, int position) {
    auto& reader = readers_.at(static_cast<std::size_t>(controller) * 5 + static_cast<std::size_t>(position));
    if (!reader) {
      sqlite3_bind_int(reader_.get(), 1, stationId);
      sqlite3_bind_int(reader_.get(), 2, controller);
      sqlite3_bind_int(reader_.get(), 3, position);
      require(main_.nextRow(reader_), "The rival finds no reader");
      reader = {sqlite3_column_int(reader_.get(), 0), text(reader_, 1)};
      sqlite3_reset(reader_.get());
    }
    return *reader;
  }

  const std::string& nameOf(int card) {
    auto& name = names_.at(static_cast<std::size_t>(card));
    if (!name) {
      sqlite3_bind_int(card_.get(), 1, card);
      require(main_.nextRow(card_), "The rival finds no card");
      name = text(card_, 0);
      sqlite3_reset(card_.get());
    }
    return *name;
  }

  PlainSqlite main_;
  std::string path_;
  std::string memory_;
  std::string empty_;
  std::string copy_;
  PlainSqlite::Statement station_, reader_, card_;
  std::optional<PlainSqlite> journal_;
  PlainSqlite::Statement insert_;
  std::array<std::optional<std::string>, cards + 1> names_;
  std::array<std::optional<Reader>, 500> readers_;
};

/// Whether two journals hold the same rows. Dates are compared to the minute.
bool sameRows(const std::string& one, const std::string& other, int lines) {
  PlainSqlite first(one);
  first.run("ATTACH '" + other + "' AS other");
  const auto same = first.prepare(
      "SELECT count(*) FROM main.Journal a JOIN other.Journal b ON a.Id = b.Id WHERE "
      "round(a.\"Date\" * 1440) = round(b.\"Date\" * 1440) AND a.StationId = b.StationId AND "
      "a.StationName = b.StationName AND a.ReaderId = b.ReaderId AND a.ReaderName = b.ReaderName AND "
      "a.TransactionType = b.TransactionType AND a.CardholderName = b.CardholderName AND "
      "a.TransactionData = b.TransactionData");
  return first.nextRow(same) && sqlite3_column_int(same.get(), 0) == lines;
}

double peakOf(int lines) {
  return peakMemory([lines] {
    Site site(lines);
    site.empty();
    site.read();
  });
}

Rows measure(const Harness& harness) {
  if (harness.counts()) {
    Site site(counted);
    PlainJournal plain(site);
    (void)harness.compare(site.ours(), plain.side(), Pace::once);
    return {};
  }
  const double growth = peakOf(many) - peakOf(few);

  Site large(many);
  PlainJournal plainLarge(large);
  Site small(few);
  PlainJournal plainSmall(small);
  for (const Side& side : {small.ours(), plainSmall.side()}) {
    side.prepare();
    side.work();
  }
  require(sameRows(small.journalPath(), plainSmall.path(), few), "The journals differ");

  const Times ofFew = harness.compare(small.ours(), plainSmall.side(), Pace::once);
  const Times ofMany = harness.compare(large.ours(), plainLarge.side(), Pace::once, roundsOfMany);
  const Times both = harness.compare(large.ours(), small.ours(), Pace::once, roundsOfGrowth);
  const auto row = [](const char* name, double ours, double rival, double limit) {
    return Row{name, "us a line", ours * 1e6, rival * 1e6, limit};
  };
  return {row("decoding 100,000 lines", ofFew.ours / few, ofFew.rival / few, 1.25),
          row("decoding 1,000,000 lines", ofMany.ours / many, ofMany.rival / many, 1.25),
          row("decoding 1,000,000 lines; rival: ours, 100,000", both.ours / many, both.rival / few, 1.1),
          {"memory of 1,000,000 lines more than 100,000", "MiB", growth, std::nullopt, 10}};
}

const Registration registration("journal-decoding", measure);

}  // namespace

}  // namespace voxa::bench
