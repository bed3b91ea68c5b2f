#include "simulation/compare.h"

#include <algorithm>
#include <set>

#include "access/card_doors.h"
#include "controllers/ledger.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "site/site.h"

namespace voxa::simulation {

namespace {

/// Values in the form of the ledger that mean the same to a controller.
using Forms = std::vector<std::string>;

std::string day(int day, int month, int year) {
  return zeroPadded(day, 2) + zeroPadded(month, 2) + zeroPadded(year % 100, 2);
}

std::string times(const site::DailyProgram& program) {
  std::string text;
  for (const site::Interval& interval : program.intervals) {
    for (const int minutes : {interval.start, interval.end}) {
      text += zeroPadded(minutes / 60, 2) + zeroPadded(minutes % 60, 2);
    }
  }
  return text;
}

std::string programs(const site::WeeklyProgram& program) {
  std::string text;
  for (const int daily : program.days) text += zeroPadded(daily, 2);
  return text + zeroPadded(program.holiday, 2);
}

std::string format(const site::BadgeFormat& format) {
  return format.technology + zeroPadded(format.sitePosition, 2) + zeroPadded(format.siteLength, 2) +
         zeroPadded(format.cardPosition, 2) + zeroPadded(format.cardType, 2) + format.siteCode;
}

std::map<std::pair<ThingKind, std::int32_t>, std::string> thingsOf(const site::Snapshot& controller) {
  std::map<std::pair<ThingKind, std::int32_t>, std::string> things;
  for (const auto& program : controller.dailyPrograms)
    things[{ThingKind::daily, program.number}] = times(program);
  for (const auto& program : controller.weeklyPrograms)
    things[{program.family == 'C' ? ThingKind::weeklyC : ThingKind::weeklyE, program.number}] =
        programs(program);
  for (const auto& holiday : controller.holidays)
    things[{ThingKind::holiday, holiday.slot}] = day(holiday.day, holiday.month, holiday.year.value_or(0));
  for (const auto& each : controller.badgeFormats)
    things[{ThingKind::badgeFormat, each.reader}] = format(each);
  return things;
}

// What a card's part is on a controller that has the card. A controller that was told no door right, mark,
// last day or credit does what it does when it was told none.
Forms partOf(const site::Card& card, CardField field) {
  const auto mark = [](bool set) { return set ? Forms{"1"} : Forms{"0", ""}; };
  switch (field) {
    case CardField::code:
      return {card.code};
    case CardField::weekly:
      return {card.weekly ? zeroPadded(*card.weekly, 2) : ""};
    case CardField::door1:
      return mark(card.door1);
    case CardField::door2:
      return mark(card.door2);
    case CardField::pin:
      return {card.pin};
    case CardField::supervisor:
      return mark(card.supervisor);
    case CardField::lastDay:
      if (!card.validUntil) return {"000000", ""};
      return {day(card.validUntil->day, card.validUntil->month, card.validUntil->year)};
    default:
      return card.credit ? Forms{zeroPadded(*card.credit, 2)} : Forms{"00", ""};
  }
}

class Comparison {
 public:
  Comparison(Compared& compared, std::string where, bool assumed)
      : compared_(compared), where_(std::move(where)), assumed_(assumed) {}

  void value(const std::string& what, const Possible& known, const Forms& there) {
    const bool nothing = known.text().starts_with('^');
    const bool guess = known.text().starts_with('~');
    const bool fits = std::any_of(there.begin(), there.end(), [&](const std::string& form) {
      return known.last() == form ||
             std::find(known.since().begin(), known.since().end(), form) != known.since().end();
    });
    const Certainty certainty = known.certainty();
    long& count = certainty == Certainty::held      ? compared_.held
                  : certainty == Certainty::assumed ? compared_.assumed
                  : certainty == Certainty::doubt   ? compared_.doubt
                                                    : compared_.unknown;
    ++count;
    if (fits || nothing || (guess && !assumed_)) return;
    compared_.wrong.push_back(where_ + what + " is \"" + there.front() + "\", but the ledger says \"" +
                              known.text() + "\"");
  }
  void card(std::int32_t number, const CardState& known, const site::Card* there) {
    static constexpr const char* names[] = {"code",          "weekly program", "door 1",   "door 2",
                                            "personal code", "supervisor",     "last day", "credit"};
    const std::string what = " card " + std::to_string(number) + ": ";
    if (there == nullptr) return value(what + "code", known.part(CardField::code), {""});
    for (std::size_t field = 0; field < std::size(names); ++field) {
      const auto part = static_cast<CardField>(field);
      value(what + names[field], known.part(part), partOf(*there, part));
    }
    std::set<int> outputs(there->lifts.begin(), there->lifts.end());
    for (const auto& [output, state] : known.lifts()) outputs.insert(output);
    for (const int output : outputs) {
      const bool set = std::count(there->lifts.begin(), there->lifts.end(), output) != 0;
      value(what + "lift output " + std::to_string(output), known.lift(static_cast<std::int16_t>(output)),
            {set ? "1" : ""});
    }
  }

 private:
  Compared& compared_;
  std::string where_;
  bool assumed_;
};

}  // namespace

void Compared::addCounts(const Compared& other) {
  held += other.held;
  assumed += other.assumed;
  doubt += other.doubt;
  unknown += other.unknown;
}

Compared compare(const World& world, Session& session) {
  static constexpr const char* kinds[] = {"card",    "daily program", "weekly program C", "weekly program E",
                                          "holiday", "badge format"};
  Compared compared;
  site::Site site(world.site);
  for (const auto& [place, type] : world.controllers) {
    // Lines in the form of another type are acknowledged and thrown away.
    if (world.wrongType.contains(place)) continue;
    const site::Snapshot there = site.snapshot(place.station, place.address);
    const Holdings known = session.library().ledger().holdings(place);
    Comparison comparison(compared, nameOf(place), world.assumed.at(place));
    std::map<std::int32_t, const site::Card*> cards;
    for (const site::Card& card : there.cards) cards[card.number] = &card;
    for (const auto& [number, state] : known.cards) cards.try_emplace(number, nullptr);
    for (const auto& [number, card] : cards) comparison.card(number, known.card(number), card);
    auto things = thingsOf(there);
    for (const auto& [thing, state] : known.things) things.try_emplace(thing);
    for (const auto& [thing, text] : things) {
      comparison.value(std::string(" ") + kinds[static_cast<std::size_t>(thing.first)] + " " +
                           std::to_string(thing.second),
                       known.thing(thing.first, thing.second), {text});
    }
  }
  return compared;
}

std::vector<std::string> uncertainCards(const World& world, Session& session) {
  static constexpr CardField sent[] = {CardField::code, CardField::weekly, CardField::door1, CardField::door2,
                                       CardField::pin};
  std::map<ControllerPlace, Holdings> holdings;
  for (const auto& [place, type] : world.controllers) {
    if (!world.wrongType.contains(place)) holdings[place] = session.library().ledger().holdings(place);
  }
  std::vector<std::string> uncertain;
  const auto cards = session.db().openRecordset(
      "select CardNum, CardCode, AccessGroupId from Cardholders where not Deleted and Validated");
  for (; !cards->eof(); cards->moveNext()) {
    const std::int32_t number = cards->get("CardNum").toInt32();
    for (const auto& controller : controllersOf(session.db(), cards->get("AccessGroupId").toInt16())) {
      const ControllerPlace place{controller.station, controller.address};
      const auto known = holdings.find(place);
      if (!controller.active || known == holdings.end()) continue;
      const CardState card = known->second.card(number);
      if (std::all_of(std::begin(sent), std::end(sent),
                      [&](CardField field) { return card.part(field).isHeld(); }))
        continue;
      uncertain.push_back(nameOf(place) + " card " + std::to_string(number) +
                          " was sent in full and acknowledged, and the ledger is not certain of it");
    }
  }
  return uncertain;
}

}  // namespace voxa::simulation
