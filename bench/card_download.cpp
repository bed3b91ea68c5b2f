// Sends every changed card to the controllers of its group, with a driver that does nothing. The rival is a
// plain loop that reads the same rows with prepared statements and writes the same command files. Also shows
// whether the time grows with cards or controllers.

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "access/cardholder.h"
#include "app/qdb.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

constexpr int many = 9999;
constexpr int few = 2500;
constexpr int counted = 100;  // cards, when the instructions are counted
constexpr int manyControllers = 16;
constexpr int fewControllers = 4;
constexpr int roundsOfFew = 3;
constexpr int roundsOfMany = 1;  // one round writes 160,000 command files on each side

/// Cards of one group. They may pass all doors of the first controllers of the station.
class Cards {
 public:
  Cards(int cards, int controllers) {
    installation_.createDatabase();
    installation_.addCardholders(cards);
    installation_.addReaders();
    installation_.addStaff(controllers);
  }

  Installation& operator*() { return installation_; }
  Installation* operator->() { return &installation_; }

  Side ours() {
    return {[this] { send(); },
            [this] {
              // Drivers and ledger look for the command file there, and another installation was made since.
              std::filesystem::current_path(installation_.folder());
              installation_.db().execute(Installation::markCards);
            }};
  }
  /// The contents of all command files, each behind the address that it is sent to.
  std::string sentBy(const Side& side, const std::string& commandFile) {
    std::string sent;
    side.prepare();
    installation_.driver().onCall = [&](ComCommandsEnum command, std::int16_t, std::int16_t controller) {
      if (command == CmSendCommand) sent += std::to_string(controller) + ":" + contents(commandFile);
    };
    side.work();
    installation_.driver().onCall = nullptr;
    return sent;
  }
  std::string sentByUs() { return sentBy(ours(), installation_.folder() + "/COMMAND.TXT"); }

 private:
  void send() {
    require(installation_.library().QDB().Cardholders().generalDownload() == 0, "The download fails");
    installation_.requireSilence();
  }

  Installation installation_;
};

/// The rival's download: a loop over the cards, with a loop over the controllers of the card's group inside.
class PlainDownload {
 public:
  explicit PlainDownload(Cards& cards)
      : sqlite_(cards->copyDatabase()),
        commandFile_(cards->folder() + "/RIVAL.TXT"),
        driver_(cards->driver()),
        ids_(sqlite_.prepare("SELECT Id FROM Cardholders WHERE Deleted = 0")),
        card_(sqlite_.prepare("SELECT * FROM Cardholders WHERE Id = ?1")),
        doors_(sqlite_.prepare("SELECT r.ControllerAddress, r.Position, a.WeeklyProgNum, s.Id, s.Active "
                               "FROM AccGroupReaders a JOIN Readers r ON r.Id = a.ReaderId "
                               "JOIN Stations s ON s.Id = r.StationId WHERE a.AccessGroupId = ?1 "
                               "ORDER BY s.Id, r.ControllerAddress, r.Position")),
        status_(sqlite_.prepare("SELECT Status FROM ComStatus WHERE StationID = ?1 AND CtrAddr = ?2")),
        lifts_(
            sqlite_.prepare("SELECT Alarms.Num FROM LiftGroup JOIN Alarms ON LiftGroup.LiftNum = Alarms.Id "
                            "WHERE LiftGroup.AccessGroup = ?1 AND Alarms.Type = 'M' AND "
                            "Alarms.StationId = ?2 AND Alarms.ControllerAddress = ?3")),
        clear_(sqlite_.prepare(
            "UPDATE Cardholders SET CardCodeFlagD = 0, AccessGroupIdFlagD = 0, ValidatedFlagD = 0, "
            "PINCodeFlagD = 0, SupervisorFlagD = 0, ValidationDateFlagD = 0, CreditFlagD = 0 "
            "WHERE Id = ?1")) {}

  Side side() {
    return {[this] { run(); }, [this] { sqlite_.run(Installation::markCards); }};
  }
  [[nodiscard]] const std::string& commandFile() const { return commandFile_; }

 private:
  struct Card {
    int number, group, pinCode, credit;
    std::string code;
    bool validated, supervisor;
  };
  struct Controller {
    int station, address, program;
    bool active, doors[2];
  };

  void run() {
    std::vector<int> ids;
    while (sqlite_.nextRow(ids_)) ids.push_back(sqlite3_column_int(ids_.get(), 0));
    std::vector<int> sent;
    for (const int id : ids) {
      const Card card = read(id);
      for (const Controller& controller : controllersOf(card.group)) send(card, controller);
      sent.push_back(id);
      if (sent.size() == 100 || id == ids.back()) clear(sent);
    }
  }

  Card read(int id) {
    sqlite3_bind_int(card_.get(), 1, id);
    require(sqlite_.nextRow(card_), "The rival finds no card");
    const auto number = [&](int column) { return sqlite3_column_int(card_.get(), column); };
    Card card{number(1), number(6), number(10), number(16), text(card_, 4), number(8) != 0, number(12) != 0};
    sqlite3_reset(card_.get());
    return card;
  }

  std::vector<Controller> controllersOf(int group) {
    std::vector<Controller> controllers;
    sqlite3_bind_int(doors_.get(), 1, group);
    while (sqlite_.nextRow(doors_)) {
      const auto number = [&](int column) { return sqlite3_column_int(doors_.get(), column); };
      if (controllers.empty() || controllers.back().address != number(0) ||
          controllers.back().station != number(3)) {
        controllers.push_back({number(3), number(0), number(2), number(4) != 0, {false, false}});
      }
      controllers.back().doors[(number(1) - 1) % 2] = true;
    }
    return controllers;
  }

  void send(const Card& card, const Controller& controller) {
    sqlite3_bind_int(status_.get(), 1, controller.station);
    sqlite3_bind_int(status_.get(), 2, controller.address);
    bool answers = controller.active;
    while (sqlite_.nextRow(status_)) answers = answers && sqlite3_column_int(status_.get(), 0) != -1;
    require(answers, "The rival's controllers do not answer");
    write(card, controller);
    const auto address = static_cast<std::int16_t>(controller.address + 40);
    require(driver_.call(CmSendCommand, static_cast<std::int16_t>(controller.station), address) == 100,
            "The driver fails");
  }

  void write(const Card& card, const Controller& controller) {
    // An emptied file would go to the disk each time. Then only the disk would be measured.
    (void)std::remove(commandFile_.c_str());
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(commandFile_.c_str(), "wb"),
                                                               &std::fclose);
    require(file != nullptr, "The rival cannot write its command file");
    (void)std::fprintf(file.get(), "09%04d%8s\r\n33%04d%02d\r\n", card.number, card.code.c_str(), card.number,
                       controller.program);
    (void)std::fprintf(file.get(), "16%04d%d\r\n17%04d%d\r\n", card.number,
                       card.validated && controller.doors[0] ? 1 : 0, card.number,
                       card.validated && controller.doors[1] ? 1 : 0);
    (void)std::fprintf(file.get(), "19%04d%04d\r\n49%04d%s\r\n35%04d000000\r\n36%04d%02d\r\n", card.number,
                       card.pinCode, card.number, card.supervisor ? "" : "0", card.number, card.number,
                       card.credit);
    sqlite3_bind_int(lifts_.get(), 1, card.group);
    sqlite3_bind_int(lifts_.get(), 2, controller.station);
    sqlite3_bind_int(lifts_.get(), 3, controller.address);
    while (sqlite_.nextRow(lifts_)) {
      (void)std::fprintf(file.get(), "37%04d%02d\r\n", card.number, sqlite3_column_int(lifts_.get(), 0));
    }
    (void)std::fprintf(file.get(), "\r\n");
  }

  void clear(std::vector<int>& sent) {
    sqlite_.run("BEGIN IMMEDIATE");
    for (const int id : sent) {
      sqlite3_bind_int(clear_.get(), 1, id);
      sqlite_.run(clear_);
    }
    sqlite_.run("COMMIT");
    sent.clear();
  }

  PlainSqlite sqlite_;
  std::string commandFile_;
  Driver& driver_;
  PlainSqlite::Statement ids_, card_, doors_, status_, lifts_, clear_;
};

Rows measure(const Harness& harness) {
  if (harness.counts()) {
    Cards cards(counted, manyControllers);
    (void)cards.sentByUs();  // leaves the tested controllers in ComStatus, for the rival, too
    PlainDownload plain(cards);
    (void)harness.compare(cards.ours(), plain.side(), Pace::once);
    return {};
  }
  Cards small(few, manyControllers);
  Cards narrow(few, fewControllers);
  const Times growth = harness.compare(small.ours(), narrow.ours(), Pace::once, roundsOfFew);

  Cards large(many, manyControllers);
  {
    // The first test of the controllers leaves its results in ComStatus. The rival then has them, too.
    PlainDownload untested(narrow);
    require(narrow.sentByUs() == narrow.sentBy(untested.side(), untested.commandFile()),
            "The command files differ");
  }
  PlainDownload plain(large);
  const Times whole = harness.compare(large.ours(), plain.side(), Pace::once, roundsOfMany);
  const auto flags = large->db().openRecordset(
      "select count(*) from Cardholders where CardCodeFlagD or CreditFlagD or ValidatedFlagD");
  require(flags->get(0).toInt32() == 0, "The download leaves flags");

  const auto each = [](double seconds, int cards, int controllers) {
    return seconds * 1e6 / cards / controllers;
  };
  const double ofMany = each(whole.ours, many, manyControllers);
  const double ofFew = each(growth.ours, few, manyControllers);
  const double toFew = each(growth.rival, few, fewControllers);
  const char* unit = "us a card and controller";
  return {{"generalDownload of 9,999 cards to 16 controllers", unit, ofMany,
           each(whole.rival, many, manyControllers), 2},
          {"generalDownload, 9,999 cards; rival: 2,500 cards", unit, ofMany, ofFew, 1.5},
          {"generalDownload, 2,500 cards, 16 controllers; rival: 4", unit, ofFew, toFew, 1.5}};
}

const Registration registration("card-download", measure);

}  // namespace

}  // namespace voxa::bench
