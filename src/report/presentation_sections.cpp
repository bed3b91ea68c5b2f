#include <algorithm>

#include "platform/datetime.h"
#include "platform/text.h"
#include "report/figures.h"
#include "report/page_sections.h"
#include "report/wording.h"

namespace voxa {

namespace {

constexpr std::size_t mostRows = 100;  // of a table that tells of single cards; the CSV files have all

std::vector<std::string> cellsOf(const Outcomes& outcomes) {
  std::vector<std::string> cells = {grouped(outcomes.presentations())};
  for (const std::uint64_t count : outcomes.counts) cells.push_back(grouped(count));
  return cells;
}

PageTable outcomeTable(const std::string& caption, const std::string& head) {
  return {caption,
          true,
          {head, "Presentations", "Granted", "Refused by time", "Refused by rights", "Unknown card"},
          {false, true, true, true, true, true},
          {}};
}

/// A chart of times, with its values as a table.
PageSection timeSection(const std::string& id, const std::string& heading, const std::string& head,
                        const std::vector<Marked>& times) {
  PageSection section;
  section.id = id;
  section.heading = heading;
  section.legend = true;
  section.chart = columnsOf(heading, times);
  section.sentences = {section.chart->text};
  PageTable& table = section.tables.emplace_back(outcomeTable("Table: " + heading, head));
  for (const Marked& time : times) table.rows.push_back({time.name, cellsOf(time.outcomes)});
  return section;
}

/// The bars of the days: one for a day, a week or a month, so that they stay wide enough to be told apart.
class DayGroups {
 public:
  explicit DayGroups(std::size_t days)
      : by_(days <= most       ? By::day
            : days <= most * 7 ? By::week
                               : By::month) {}

  [[nodiscard]] const char* name() const {
    return by_ == By::day ? "day" : by_ == By::week ? "week" : "month";
  }
  /// The first day of the group that a day is in.
  [[nodiscard]] int firstOf(int day) const {
    constexpr int monday = 2;  // day 2 was one
    if (by_ == By::day) return day;
    if (by_ == By::week) return day - (day - monday) % 7;
    return day - toCivil({static_cast<double>(day)}).day + 1;
  }
  [[nodiscard]] Marked marked(int first) const {
    if (by_ == By::day) return {dayText(first), shortDayText(first), {}};
    if (by_ == By::week) return {"Week from " + dayText(first), shortDayText(first), {}};
    const CivilTime parts = toCivil({static_cast<double>(first)});
    const std::string month(monthName(parts.month));
    const std::string year = std::to_string(parts.year);
    return {month + " " + year, month.substr(0, 3) + " " + year, {}};
  }

 private:
  enum class By : unsigned char { day, week, month };
  static constexpr std::size_t most = 62;
  By by_;
};

void add(Outcomes& sum, const Outcomes& other) {
  for (std::size_t kind = 0; kind < Outcomes::kinds; ++kind) sum.counts.at(kind) += other.counts.at(kind);
}

}  // namespace

PageSection daySection(const Figures& figures) {
  const DayGroups groups(figures.days.size());
  std::vector<Marked> bars;
  int last = -1;
  for (std::size_t i = 0; i < figures.days.size(); ++i) {
    const int first = groups.firstOf(figures.firstDay + static_cast<int>(i));
    if (first != last) bars.push_back(groups.marked(last = first));
    add(bars.back().outcomes, figures.days[i]);
  }
  return timeSection("days", std::string("Presentations by ") + groups.name(), "Time", bars);
}

PageSection hourSection(const Figures& figures) {
  std::vector<Marked> hours;
  for (int hour = 0; hour < static_cast<int>(figures.hours.size()); ++hour) {
    const std::string mark = zeroPadded(hour, 2);
    hours.push_back(
        {mark + ":00 to " + mark + ":59", mark, figures.hours.at(static_cast<std::size_t>(hour))});
  }
  return timeSection("hours", "Presentations by hour", "Hour", hours);
}

PageSection doorSection(const Figures& figures) {
  PageSection section;
  section.id = "doors";
  section.heading = "Doors";
  section.legend = true;
  std::vector<Measured> bars;
  PageTable& table = section.tables.emplace_back(outcomeTable("Table: Presentations by door", "Door"));
  for (const DoorFigure& door : figures.doors) {
    bars.push_back({shownDoor(door.name), outcomeText(door.outcomes), door.outcomes});
    table.rows.push_back({shownDoor(door.name), cellsOf(door.outcomes)});
  }
  section.bars = barsOf(bars);
  return section;
}

PageSection refusalSection(const Figures& figures) {
  PageSection section;
  section.id = "refused";
  section.heading = "Refused, by reason";
  const std::uint64_t refused = figures.all.refused();
  if (refused == 0) {
    section.sentences = {"No presentation was refused."};
    return section;
  }
  const std::pair<TransactionMeaning, const char*> reasons[] = {
      {TransactionMeaning::refusedByTime, "By time: the card may open the door, but not then"},
      {TransactionMeaning::refusedByRights, "By rights: the card may not open the door"},
      {TransactionMeaning::unknownCard, "Unknown card: the controller has no such card"}};
  std::vector<Measured> bars;
  for (const auto& [reason, text] : reasons) {
    Outcomes only;
    only.counts.at(static_cast<std::size_t>(reason)) = figures.all.of(reason);
    bars.push_back(
        {text, grouped(figures.all.of(reason)) + ", " + share(figures.all.of(reason), refused), only});
  }
  section.bars = barsOf(bars);
  const auto worst = std::max_element(
      figures.doors.begin(), figures.doors.end(),
      [](const auto& one, const auto& other) { return one.outcomes.refused() < other.outcomes.refused(); });
  section.sentences = {counted(refused, "presentation") + " refused, most at " +
                       within(shownDoor(worst->name)) + "."};
  return section;
}

PageSection unknownSection(const Figures& figures) {
  PageSection section;
  section.id = "unknown";
  section.heading = "Unknown cards";
  section.sentences = {counted(figures.unknownCards.size(), "card") +
                       " that no controller knew, the last one first."};
  if (figures.unknownNotListed != 0)
    section.sentences.push_back("Behind these, " + counted(figures.unknownNotListed, "presentation") +
                                " of still other cards.");
  if (figures.unknownCards.size() > mostRows)
    section.sentences.push_back("The last " + grouped(mostRows) + " are shown; a folder of --csv has all.");
  PageTable table{
      "Codes of unknown cards", false, {"Code", "Times", "Last", "Where"}, {false, true, false, false}, {}};
  for (const PresentedUnknown& card : figures.unknownCards) {
    if (table.rows.size() == mostRows) break;
    table.rows.push_back(
        {shownName(card.code), {grouped(card.times), momentText(card.last), shownDoor(card.door)}});
  }
  section.tables = {std::move(table)};
  return section;
}

PageSection peopleSection(const Figures& figures) {
  PageSection section;
  section.id = "people";
  section.heading = "First and last of each person";
  section.whole = true;
  section.sentences = {"Whom a door let in, by day. A card without a holder has its number."};
  int day = -1;
  for (const PersonDay& person : figures.people) {
    if (person.day != day) {
      day = person.day;
      section.tables.push_back({dayText(day),
                                true,
                                {"Name", "First", "Where", "Last", "Where", "Times"},
                                {false, true, false, true, false, true},
                                {}});
    }
    const auto time = [](DateTime moment) { return formatDateTime(moment, "hh:nn"); };
    section.tables.back().rows.push_back({shownName(person.name),
                                          {time(person.first), shownDoor(person.firstDoor), time(person.last),
                                           shownDoor(person.lastDoor), grouped(person.times)}});
  }
  return section;
}

}  // namespace voxa
