#include "week.h"

#include <algorithm>
#include <map>
#include <set>

#include "platform/datetime.h"
#include "random.h"
#include "work/cards.h"
#include "work/group_list.h"
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
  explicit Week(Installation& installation) {
    std::map<std::string, std::int16_t> groups;
    std::map<std::string, Presentation> doors;
    for (const ReaderRow& reader : listReaders(installation)) {
      doors_.push_back(
          {reader.id, reader.stationId, reader.address.toInt16(), reader.position.toInt16(), {}, {}});
      doors[reader.name] = doors_.back();
    }
    for (const GroupRow& group : listGroups(installation)) {
      groups[group.name] = group.id;
      auto& open = doorsOfGroup_[group.id];
      for (const GroupRow::Door& door : group.doors) open.push_back(doors.at(door.side.reader));
      std::sort(open.begin(), open.end(),
                [](const Presentation& one, const Presentation& other) { return one.reader < other.reader; });
    }
    for (const CardRow& row : listCards(installation)) {
      const Card card{row.code.toText(), groups.at(row.group.toText())};
      cards_.push_back(card);
      codes_.insert(card.code);
      if (!row.until.isNull() || !row.credit.isNull() || !row.valid.toBool()) limited_.push_back(card);
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

std::vector<Presentation> demoWeek(Installation& installation, std::size_t count) {
  Week week(installation);
  std::vector<int> minutes(count);
  std::generate(minutes.begin(), minutes.end(), [&] { return week.minute(); });
  std::sort(minutes.begin(), minutes.end());
  std::vector<Presentation> presentations;
  presentations.reserve(count);
  for (const int minute : minutes) presentations.push_back(week.presentation(minute));
  return presentations;
}

}  // namespace voxa::cli
