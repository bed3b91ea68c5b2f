#include "report/csv.h"

#include <utility>

#include "platform/csv.h"
#include "platform/datetime.h"
#include "report/figures.h"

namespace voxa {

namespace {

/// A file that is being filled.
class Table {
 public:
  Table(std::string name, const std::string& headings) : file_{std::move(name), headings + "\r\n"} {}

  Table& text(const std::string& value) { return field(csvField(value)); }
  Table& number(std::uint64_t value) { return field(std::to_string(value)); }
  Table& day(DateTime value) { return field(formatDateTime(value, "yyyy-mm-dd")); }
  Table& moment(DateTime value) { return field(formatDateTime(value, "yyyy-mm-ddThh:nn:ss")); }
  Table& outcomes(const Outcomes& value) {
    number(value.presentations());
    for (const std::uint64_t count : value.counts) number(count);
    return *this;
  }
  void end() {
    file_.text += "\r\n";
    first_ = true;
  }
  [[nodiscard]] CsvFile file() && { return std::move(file_); }

 private:
  Table& field(const std::string& written) {
    if (!std::exchange(first_, false)) file_.text += ',';
    file_.text += written;
    return *this;
  }

  CsvFile file_;
  bool first_ = true;
};

const std::string outcomeNames = "Presentations,Granted,RefusedByTime,RefusedByRights,UnknownCard";

}  // namespace

std::vector<CsvFile> csvOf(const Figures& figures) {
  std::vector<CsvFile> files;
  const auto add = [&](Table table) { files.push_back(std::move(table).file()); };

  Table days("days.csv", "Day," + outcomeNames);
  double day = figures.firstDay;
  for (const Outcomes& outcomes : figures.days) days.day({day++}).outcomes(outcomes).end();
  add(std::move(days));

  Table hours("hours.csv", "Hour," + outcomeNames);
  std::uint64_t hour = 0;
  for (const Outcomes& outcomes : figures.hours) hours.number(hour++).outcomes(outcomes).end();
  add(std::move(hours));

  Table doors("doors.csv", "Door," + outcomeNames);
  for (const DoorFigure& door : figures.doors) doors.text(door.name).outcomes(door.outcomes).end();
  add(std::move(doors));

  Table unknown("unknown-cards.csv", "Code,Times,Last,Door");
  for (const PresentedUnknown& card : figures.unknownCards)
    unknown.text(card.code).number(card.times).moment(card.last).text(card.door).end();
  add(std::move(unknown));

  Table controllers("controllers.csv", "Controller,InUse,Missing,NotSendable,LastReached");
  for (const ControllerFigure& each : figures.controllers) {
    std::size_t missing = 0;
    for (const ControllerFigure::Missing& kind : each.missing) missing += kind.count;
    controllers.text(each.name).text(each.inUse ? "yes" : "no").number(missing).number(each.leftOut);
    (each.lastContact ? controllers.moment(*each.lastContact) : controllers.text("")).end();
  }
  add(std::move(controllers));

  Table cards("cards.csv", "Card,Name,Group,LastDay,State");
  for (const ExpiringCard& card : figures.cards)
    cards.number(static_cast<std::uint64_t>(card.number))
        .text(card.name)
        .text(card.group)
        .day(card.until)
        .text(card.expired ? "expired" : "expires")
        .end();
  add(std::move(cards));

  if (figures.asked.people) {
    Table people("people.csv", "Day,Name,First,FirstDoor,Last,LastDoor,Times");
    for (const PersonDay& person : figures.people)
      people.day({static_cast<double>(person.day)})
          .text(person.name)
          .moment(person.first)
          .text(person.firstDoor)
          .moment(person.last)
          .text(person.lastDoor)
          .number(person.times)
          .end();
    add(std::move(people));
  }
  return files;
}

}  // namespace voxa
