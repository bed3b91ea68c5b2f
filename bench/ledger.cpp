// What the ledger costs: downloads with it beside downloads without it, its size, and how long it takes to
// open and to begin.

#include <cstddef>
#include <filesystem>
#include <string>

#include "access/cardholder.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "controllers/ledger.h"
#include "controllers/ledger_view.h"
#include "programs/weekly_program.h"
#include "support/harness.h"
#include "support/installation.h"

namespace voxa::bench {

namespace {

constexpr const char* waitsName = "ledger-waits";
constexpr int cards = 9999;
constexpr int counted = 100;  // cards, when the instructions are counted
constexpr int controllers = 16;
constexpr int lines = 4;   // with so many controllers each, in the large ledger
constexpr int rounds = 1;  // each writes 160,000 command files on either side

/// Cards of one group that may pass the doors of every controller.
void fill(Installation& installation, int count) {
  installation.createDatabase();
  installation.addCardholders(count);
  installation.addReaders();
  installation.addStaff(controllers);
}

/// Moves the working folder, to where no database can be made and so no account is kept: its path is longer
/// than those that the database engine opens.
void keepAccount(Installation& installation, bool kept) {
  std::string folder = installation.folder();
  if (!kept) {
    for (int part = 0; part < 3; ++part) folder += "/" + std::string(200, 'x');
    std::filesystem::create_directories(folder);
  }
  installation.library().Com().Chemin = folder;
  installation.driver().folder = folder;
}

class Download {
 public:
  explicit Download(Installation& installation) : installation_(installation) {}

  Side side(bool kept) {
    return {[this] { run(); },
            [this, kept] {
              keepAccount(installation_, kept);
              installation_.db().execute(Installation::markCards);
            }};
  }

 private:
  void run() {
    require(installation_.library().QDB().Cardholders().generalDownload() == 0, "The download fails");
    installation_.requireSilence();
  }

  Installation& installation_;
};

double fileSize(const Installation& installation) {
  double size = 0;
  for (const char* part : {"", "-wal"}) {
    const std::string path = installation.folder() + "/Ledger.MDB" + part;
    if (std::filesystem::exists(path)) size += static_cast<double>(std::filesystem::file_size(path));
  }
  return size;
}

Rows download(const Harness& harness) {
  Installation installation;
  fill(installation, harness.counts() ? counted : cards);
  Download download(installation);
  const Side kept = download.side(true);
  kept.prepare();
  kept.work();  // tests the controllers
  const Times times = harness.compare(kept, download.side(false), Pace::once, rounds);
  if (harness.counts()) return {};
  const auto each = [](double whole) { return whole / cards / controllers; };
  return {{"card download with the ledger; rival: without", "us a card and controller",
           each(times.ours * 1e6), each(times.rival * 1e6), 1.3},
          {"size of the ledger", "bytes a card and controller", each(fileSize(installation))}};
}

/// A single program to one line, with the ledger and without.
Rows measureWaits(const Harness& harness) {
  Installation installation;
  installation.createDatabase();
  installation.addReaders();
  installation.db().execute(
      "insert into WeeklyPrograms (ProgType, ProgNum, Name, DailyProgDay1, DailyProgDay2, DailyProgDay3, "
      "DailyProgDay4, DailyProgDay5, DailyProgDay6, DailyProgDay7, DailyProgHolidays) "
      "values ('C', 1, 'Program', 1, 1, 1, 1, 1, 1, 1, 1)");
  WeeklyProgram& programs = installation.library().QDB().WeeklyPrograms();
  const auto side = [&](bool kept) {
    return [&, kept] {
      keepAccount(installation, kept);
      require(programs.download("C", 1, CTActiveStations, "", DLFull) == 0, "The download fails");
    };
  };
  side(true)();
  const SystemCalls calls = harness.countSystemCalls(waitsName, side(true), side(false));
  return {{"one program, waits for the disk; rival: without", "a download",
           static_cast<double>(calls.ours.syncs), static_cast<double>(calls.rival.syncs)}};
}

Rows opening(const Harness& harness) {
  if (harness.counts()) return {};
  Installation installation;
  fill(installation, cards);
  installation.addLines(lines);
  const auto start = [&] {
    installation.restart();
    require(installation.library().QDB().openCommonDB() == 0, "The database cannot be opened");
  };
  const auto remove = [&] {
    start();
    for (const char* part : {"", "-wal", "-shm"})
      std::filesystem::remove(installation.folder() + "/Ledger.MDB" + part);
  };
  const auto open = [&] {
    std::size_t known = 0;
    require(installation.library().ledger().look(
                [&](const LedgerView& ledger) { known = ledger.controllers().all().size(); }),
            "There is no ledger");
    require(known == std::size_t{lines} * controllers, "The ledger does not know the controllers");
  };
  const Times times = harness.compare({open, remove}, {open, start}, Pace::once, 1);
  const Times one =
      harness.compare({[&] {
                         const Holdings held = installation.library().ledger().holdings({lines, controllers});
                         require(held.cards.size() == cards, "The ledger does not know the cards");
                       },
                       start},
                      {open, start}, Pace::once, rounds);
  return {{"ledger of 64 controllers, 9,999 cards; begins", "s", times.ours},
          {"the same opens", "ms", one.rival * 1e3},
          {"the same opens, and tells of a controller", "ms", one.ours * 1e3}};
}

Rows measure(const Harness& harness) {
  Rows rows = download(harness);
  const Rows more = opening(harness);
  rows.insert(rows.end(), more.begin(), more.end());
  return rows;
}

const Registration registration("ledger", measure);
const Registration waits(waitsName, measureWaits);

}  // namespace

}  // namespace voxa::bench
