#include "access.h"

#include <algorithm>
#include <array>
#include <iostream>

#include "app/qdb.h"
#include "cards.h"
#include "check.h"
#include "commands/component.h"
#include "commands/download.h"
#include "commands/moments.h"
#include "commands/session.h"
#include "expect.h"
#include "journal.h"
#include "journal/journal.h"
#include "output/progress.h"
#include "platform/datetime.h"
#include "site/site.h"
#include "week.h"
#include "work/journal_list.h"
#include "work/look_up.h"
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
    Download download(session_, {});
    check_.expect(download.ready() && download.leftOut().empty(), "every controller answers");
    for (const auto& [programs, title] :
         {std::pair(Programs::daily, "Daily programs"), std::pair(Programs::weekly, "Weekly programs"),
          std::pair(Programs::holidays, "Holidays"), std::pair(Programs::groups, "Access groups"),
          std::pair(Programs::cards, "Cards")}) {
      tell(title, download.send(programs, true));
    }
    const auto format = badgeFormatNamed(session_.library(), demoBadgeFormat);
    tell("Badge format", download.sendBadgeFormat(*format, false));
  }

  void tell(const char* title, const DownloadCount& count) {
    std::cout << "   " << title << ": " << count.sent << " sent, " << count.failed << " failed\n";
    check_.expect(count.sent > 0 && count.failed == 0, "everything is sent");
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
    Progress progress("Presenting card", week_.size());
    const auto present = [&](auto from, auto to) {
      for (; from != to; ++from, progress.step()) {
        site::Swipe swipe{from->station, from->address, from->position, from->code};
        swipe.moment = siteMoment(from->moment);
        site_.swipe(swipe);
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
    const int differences = compareWithJournal(session_.library(), expected);
    std::cout << week_.size() << " presentations, " << journalRows() << " rows in the journal, "
              << differences << " differences.\n";
    check_.expect(differences == 0, "the journal says what happened");
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
