#include "access.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <map>

#include "app/qdb.h"
#include "cards.h"
#include "check.h"
#include "commands/component.h"
#include "commands/line_question.h"
#include "commands/moments.h"
#include "commands/session.h"
#include "expect.h"
#include "journal.h"
#include "journal/journal.h"
#include "output/progress.h"
#include "platform/datetime.h"
#include "site/site.h"
#include "week.h"
#include "work/access_questions.h"
#include "work/cards.h"
#include "work/download.h"
#include "work/journal_list.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

constexpr std::size_t presentationCount = 2000;

class Access {
 public:
  Access(Session& session, site::Site& site) : session_(session), site_(site) {}

  void run() {
    downloadCards();
    week_ = demoWeek(session_.library(), presentationCount);
    liveTheWeek();
    compare();
    if (!check_.asTold()) throw Refusal("the journal is not what the installation's rows say it must be");
    std::cout << "\nEvery presentation is in the journal, once, as the installation's rows say it must be.\n";
  }

 private:
  void downloadCards() {
    std::cout
        << "\n5. 250 cardholders in 5 access groups, some with a last day or a credit, some invalidated,\n"
           "   4 holidays and a badge format. Two groups are created and sent as blocks of cards;\n"
           "   then everything is downloaded.\n\n";
    fillDemoCards(session_.library());
    const std::optional<LineTest> test = testedLines(session_, {});
    check_.expect(test && test->silent.empty(), "every controller answers");
    const DownloadTarget all{{}, true};
    for (const auto& [kind, title] :
         {std::pair(DownloadKind::dailyPrograms, "Daily programs"),
          std::pair(DownloadKind::weeklyPrograms, "Weekly programs"),
          std::pair(DownloadKind::holidays, "Holidays"), std::pair(DownloadKind::groups, "Access groups"),
          std::pair(DownloadKind::cards, "Cards")}) {
      tell(title, download(session_.library(), kind, all));
    }
    tell("Badge format", downloadBadgeFormat(session_.library(), demoBadgeFormat, {}));
  }

  void tell(const char* title, const Report& report) {
    session_.show(report);
    const std::size_t sent = report.rowsWith(Outcome::done);
    std::cout << "   " << title << ": " << sent << " sent, " << report.rowsWith(Outcome::failed)
              << " failed\n";
    check_.expect(sent > 0 && !report.failed(), "everything is sent");
  }

  void liveTheWeek() {
    std::cout
        << "\n6. A week at the doors: 2,000 times a card is presented, and the controllers decide from what\n"
           "   they hold. Their memories are read on Thursday at noon, station by station, and at the "
           "end.\n\n";
    const CivilTime thursdayNoon{2026, 12, 24, 12, 0, 0};
    const auto noon = std::find_if(week_.begin(), week_.end(), [&](const Presentation& presentation) {
      return presentation.moment >= toDateTime(thursdayNoon);
    });
    Progress progress;
    std::size_t presented = 0;
    const auto present = [&](auto from, auto to) {
      for (; from != to; ++from) {
        site::Swipe swipe{from->station, from->address, from->position, from->code};
        swipe.moment = siteMoment(from->moment);
        site_.swipe(swipe);
        progress.progress("Presenting card", ++presented, week_.size());
      }
    };
    Journal& journal = session_.qdb().Journal();
    present(week_.begin(), noon);
    for (const char* station : {"Local", "Annex"}) {
      check_.expect(journal.readTransactions(CTStation, station) == 0, "the station is read");
    }
    std::cout << "   Thursday: " << journalRows() << " rows in the journal\n";
    present(noon, week_.end());
    check_.expect(journal.readAuto() == 0, "every controller is read");
    std::cout << "   Sunday: " << journalRows() << " rows in the journal\n";
    for (const site::ControllerInfo& info : site_.list()) {
      check_.expect(site_.snapshot(info.station, info.address).memory.records.empty(),
                    "what was read is cleared on the controller");
    }
  }

  std::size_t journalRows() {
    return JournalList(session_.library(), {}).each([](const JournalRow& /*row*/) {});
  }

  void compare() {
    std::cout
        << "\n7. What the rows of cards, groups, readers, programs and holidays say must have happened, and\n"
           "   what the journal says.\n\n";
    DoorRules rules(session_.library());
    std::vector<Expected> expected;
    std::array<bool, reasonCount> seen{};
    for (const Presentation& presentation : week_) {
      expected.push_back(rules.expect(presentation));
      seen.at(static_cast<std::size_t>(expected.back().reason)) = true;
    }
    check_.expect(std::find(seen.begin(), seen.end(), false) == seen.end(), "the week has every reason");
    check_.expect(libraryAgrees(expected), "the library says of each card and door the same");
    const int differences = compareWithJournal(session_.library(), expected);
    std::cout << week_.size() << " presentations, " << journalRows() << " rows in the journal, "
              << differences << " differences.\n";
    check_.expect(differences == 0, "the journal says what happened");
  }

  /// Whether the library tells of each card and door what was expected, and knows it of the controller.
  /// Used-up credits are known to controllers alone.
  bool libraryAgrees(const std::vector<Expected>& expected) {
    std::map<std::string, std::string> cards;
    for (const CardRow& card : listCards(session_.library()))
      cards[card.code.toText()] = card.number.toText();
    AccessQuestions questions(session_.library());
    bool agrees = true;
    for (std::size_t i = 0; i < week_.size(); ++i) {
      const auto card = cards.find(week_[i].code);
      if (card == cards.end()) continue;
      const Reason reason = expected[i].reason;
      const AccessAnswer answer =
          questions.mayOpen(card->second, expected[i].entry.readerName, week_[i].moment);
      const bool limited = answer.opens && answer.credit > 0;
      agrees = agrees && answer.known == Sure::yes &&
               answer.controllerOpens == (limited ? Sure::unsaid : sure(answer.opens)) &&
               (answer.opens == (reason == Reason::allowed) || reason == Reason::creditUsedUp);
    }
    return agrees;
  }

  Session& session_;
  site::Site& site_;
  std::vector<Presentation> week_;
  DemoCheck check_;
};

}  // namespace

void demonstrateAccess(Session& session, site::Site& site) {
  Access(session, site).run();
}

}  // namespace voxa::cli
