// What the plan costs: made for all controllers, with everything to be sent and with nothing; carried out for
// one card, and for all beside generalDownload.

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "access/cardholder.h"
#include "app/qdb.h"
#include "controllers/ledger_view.h"
#include "controllers/planner.h"
#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"
#include "work/carry_out.h"

namespace voxa::bench {

namespace {

constexpr int cards = 9999;
constexpr int controllers = 16;  // of a line
constexpr int lines = 4;
constexpr int rounds = 3;
constexpr double secondsOfCall = 0.002;  // of a driver as it is on a real line
constexpr double secondsOfLine = 0.001;

void forEachPlace(int ofLines, const std::function<void(const ControllerPlace&)>& body) {
  for (std::int16_t line = 1; line <= ofLines; ++line) {
    for (std::int16_t address = 1; address <= controllers; ++address) body({line, address});
  }
}

void replaceAll(Installation& installation, int ofLines) {
  forEachPlace(ofLines,
               [&](const ControllerPlace& place) { installation.library().ledger().replace(place, false); });
}

/// Lines of all plans.
std::size_t planAllOf(Installation& installation) {
  std::size_t count = 0;
  const Planner planner(installation.library(), {});
  (void)installation.library().ledger().look([&](LedgerView& ledger) {
    for (const ControllerPlace& place : planner.places(ledger)) {
      for (const PlanItem& item : planner.plan(ledger, place).items) {
        for (const auto& ofPhase : item.lines) count += item.kind == ThingKind::card ? ofPhase.size() : 0;
      }
    }
  });
  return count;
}

/// The rival: reads the cards and what the group may do, and makes the lines of each card for each
/// controller.
class PlainPlan {
 public:
  explicit PlainPlan(const Installation& installation)
      : sqlite_(installation.copyDatabase()),
        cards_(sqlite_.prepare(
            "SELECT CardNum, CardCode, AccessGroupId, Validated, PINCode, Supervisor, Credit FROM "
            "Cardholders WHERE Deleted = 0 ORDER BY CardNum")),
        doors_(
            sqlite_.prepare("SELECT r.StationId, r.ControllerAddress, r.Position, a.WeeklyProgNum FROM "
                            "AccGroupReaders a JOIN Readers r ON r.Id = a.ReaderId WHERE a.AccessGroupId = 1 "
                            "ORDER BY r.StationId, r.ControllerAddress, r.Position")) {}

  std::size_t linesOfAll() {
    struct Controller {
      int station, address, program;
      bool doors[2];
    };
    std::vector<Controller> all;
    while (sqlite_.nextRow(doors_)) {
      const auto number = [&](int column) { return sqlite3_column_int(doors_.get(), column); };
      if (all.empty() || all.back().address != number(1) || all.back().station != number(0))
        all.push_back({number(0), number(1), number(3), {false, false}});
      all.back().doors[(number(2) - 1) % 2] = true;
    }
    std::size_t count = 0;
    while (sqlite_.nextRow(cards_)) {
      const auto number = [&](int column) { return sqlite3_column_int(cards_.get(), column); };
      const std::string code = text(cards_, 1);
      for (const Controller& controller : all) {
        std::vector<std::string> made;
        const auto add = [&](const char* format, auto... values) {
          char line[64];
          (void)std::snprintf(line, sizeof(line), format, values...);
          made.emplace_back(line);
        };
        const int card = number(0);
        add("09%04d%8s", card, code.c_str());
        add("33%04d%02d", card, controller.program);
        add("16%04d%d", card, number(3) != 0 && controller.doors[0] ? 1 : 0);
        add("17%04d%d", card, number(3) != 0 && controller.doors[1] ? 1 : 0);
        add("19%04d%04d", card, number(4));
        add("49%04d%s", card, number(5) != 0 ? "" : "0");
        add("35%04d000000", card);
        add("36%04d%02d", card, number(6));
        count += made.size();
      }
    }
    return count;
  }

 private:
  PlainSqlite sqlite_;
  PlainSqlite::Statement cards_, doors_;
};

Rows measurePlans(const Harness& harness) {
  if (harness.counts()) return {};
  Installation installation;
  installation.createDatabase();
  installation.addCardholders(cards);
  installation.addReaders();
  installation.addStaff(controllers);
  installation.addLines(lines);
  PlainPlan plain(installation);
  std::size_t ours = 0;
  std::size_t rivals = 0;
  const Side rival{[&] { rivals = plain.linesOfAll(); }};

  // A new ledger assumes of the cards what their rows say; programs and holidays are sent.
  require(carryOut(installation.library(), {}).isComplete(), "Not all is sent");
  require(planAllOf(installation) == 0, "There is something to do");
  const Times nothing = harness.compare({[&] { ours = planAllOf(installation); }}, rival, Pace::once, rounds);
  require(ours == 0, "There is something to do");

  CarryOut named;
  named.scope.card = 4711;
  int code = 100'000;
  const auto changed = [&] {
    installation.db().execute("update Cardholders set CardCode = '" + std::to_string(++code) +
                              "' where CardNum = 4711");
  };
  int calls = 0;
  installation.driver().onCall = [&](ComCommandsEnum command, std::int16_t, std::int16_t) {
    calls += command == CmSendCommand ? 1 : 0;
  };
  changed();
  require(carryOut(installation.library(), named).isComplete(),
          "The card is not everywhere");  // tests the lines
  calls = 0;
  const double one = harness.time({[&] { (void)carryOut(installation.library(), named); }, changed});
  require(calls % (lines * controllers) == 0 && calls != 0, "The card is not sent everywhere");

  replaceAll(installation, lines);
  const Times full = harness.compare({[&] { ours = planAllOf(installation); }}, rival, Pace::once, rounds);
  require(ours == rivals, "Both sides do not make the same lines");
  const char* unit = "s, 64 controllers";
  return {{"plan of 9,999 cards, nothing to do; rival: plain loop", unit, nothing.ours, nothing.rival, 0.1},
          {"plan of 9,999 cards, nothing held; rival: plain loop", unit, full.ours, full.rival, 1.5},
          {"one changed card of 9,999, to 64 controllers", "ms", one * 1e3, {}, 10}};
}

/// Calls and seconds of a driver that takes its time, without waiting for it.
class SlowDriver {
 public:
  explicit SlowDriver(Installation& installation) {
    installation.driver().onCall = [this, file = installation.folder() + "/COMMAND.TXT"](
                                       ComCommandsEnum command, std::int16_t, std::int16_t) {
      ++calls;
      seconds += secondsOfCall;
      if (command != CmSendCommand) return;
      const std::string text = contents(file);
      for (std::size_t at = 0; at < text.size() && text[at] != '\r'; at = text.find('\n', at) + 1)
        seconds += secondsOfLine;
    };
  }
  double calls = 0;
  double seconds = 0;
};

Rows measureDownload(const Harness& harness) {
  if (harness.counts()) return {};
  Installation installation;
  installation.createDatabase();
  installation.addCardholders(cards);
  installation.addReaders();
  installation.addStaff(controllers);
  SlowDriver driver(installation);
  const auto run = [&](const std::function<void()>& work) {
    installation.db().execute(Installation::markCards);
    replaceAll(installation, 1);
    driver.calls = driver.seconds = 0;
    const auto begin = std::chrono::steady_clock::now();
    work();
    driver.seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return driver;
  };
  const SlowDriver plan =
      run([&] { require(carryOut(installation.library(), {}).isComplete(), "Something is missing"); });
  const SlowDriver general = run([&] {
    require(installation.library().QDB().Cardholders().generalDownload() == 0, "The download fails");
  });
  return {{"download of 9,999 cards to 16 controllers; rival: generalDownload", "driver calls", plan.calls,
           general.calls},
          {"the same, 2 ms a call and 1 ms a line", "s", plan.seconds, general.seconds}};
}

const Registration plans("plan", measurePlans);
const Registration download("plan-download", measureDownload);

}  // namespace

}  // namespace voxa::bench
