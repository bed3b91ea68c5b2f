#include "week.h"

#include <algorithm>
#include <map>
#include <set>

#include "commands/session.h"
#include "platform/datetime.h"
#include "random.h"
#include "work/readers.h"

namespace voxa::cli {

namespace {

constexpr int minutesOfDay = 24 * 60;
constexpr int edges[] = {360, 510, 720, 780, 840, 1020, 1320};  // minutes of the day

struct Card {
  std::string code;
  std::int16_t group;
};

class Week {
 public:
  explicit Week(Session& session) {
    for (const ReaderRow& reader : listReaders(session.library())) {
      doors_.push_back(
          {reader.id, reader.stationId, reader.address.toInt16(), reader.position.toInt16(), {}, {}});
    }
    const auto links = session.rows("select * from AccGroupReaders order by AccessGroupId, ReaderId");
    for (; !links->eof(); links->moveNext()) {
      const std::int32_t reader = links->get("ReaderId").toInt32();
      const auto door = std::find_if(doors_.begin(), doors_.end(),
                                     [&](const Presentation& one) { return one.reader == reader; });
      doorsOfGroup_[links->get("AccessGroupId").toInt16()].push_back(*door);
    }
    const auto cards = session.rows("select * from Cardholders where Deleted = false order by CardNum");
    for (; !cards->eof(); cards->moveNext()) {
      const Card card{cards->get("CardCode").toText(), cards->get("AccessGroupId").toInt16()};
      cards_.push_back(card);
      codes_.insert(card.code);
      const bool limited = !cards->get("ValidationDate").isNull() || !cards->get("Credit").isNull() ||
                           !cards->get("Validated").toBool();
      if (limited) limited_.push_back(card);
    }
  }

  Presentation presentation(int minute) {
    constexpr std::uint32_t unknown = 8;
    constexpr std::uint32_t anywhere = 30;
    constexpr std::uint32_t limited = 42;
    const std::uint32_t kind = random_.below(100);
    const Card& card = random_.of(kind >= anywhere && kind < limited ? limited_ : cards_);
    Presentation presented = random_.of(kind < anywhere ? doors_ : doorsOfGroup_.at(card.group));
    presented.code = kind < unknown ? unknownCode() : card.code;
    CivilTime monday{2026, 12, 21, 0, 0, 0};
    monday.day += minute / minutesOfDay;
    monday.hour = minute % minutesOfDay / 60;
    monday.minute = minute % 60;
    presented.moment = toDateTime(monday);
    return presented;
  }

  /// Since Monday began.
  int minute() {
    const int day = static_cast<int>(random_.below(7)) * minutesOfDay;
    if (random_.percent(15)) return day + random_.of(edges) - static_cast<int>(random_.below(2));
    constexpr std::uint32_t morning = 6 * 60;
    constexpr std::uint32_t working = 13 * 60;
    if (random_.percent(70)) return day + static_cast<int>(morning + random_.below(working));
    return day + static_cast<int>(random_.below(minutesOfDay));
  }

 private:
  std::string unknownCode() {
    for (;;) {
      std::string code;
      while (code.size() < 8) code += "0123456789ABCDEF"[random_.below(16)];
      if (!codes_.contains(code)) return code;
    }
  }

  DemoRandom random_;
  std::vector<Presentation> doors_;  // without a card
  std::map<std::int16_t, std::vector<Presentation>> doorsOfGroup_;
  std::vector<Card> cards_;
  std::vector<Card> limited_;  // in time, by a credit or altogether
  std::set<std::string> codes_;
};

}  // namespace

std::vector<Presentation> demoWeek(Session& session, std::size_t count) {
  Week week(session);
  std::vector<int> minutes(count);
  std::generate(minutes.begin(), minutes.end(), [&] { return week.minute(); });
  std::sort(minutes.begin(), minutes.end());
  std::vector<Presentation> presentations;
  presentations.reserve(count);
  for (const int minute : minutes) presentations.push_back(week.presentation(minute));
  return presentations;
}

}  // namespace voxa::cli
