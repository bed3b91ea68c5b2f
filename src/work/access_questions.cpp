#include "work/access_questions.h"

#include <algorithm>

#include "access/card_record.h"
#include "comm/com.h"
#include "comm/reader.h"
#include "files/conversions.h"
#include "lines/code.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "work/card_values.h"
#include "work/held_codes.h"
#include "work/installation.h"
#include "work/refusal.h"
#include "work/suggestions.h"
#include "work/weekly_programs.h"

namespace voxa {

namespace {

constexpr std::int16_t alwaysProgram = 0;

/// The parts of a card that decide, besides the right to the door.
constexpr std::pair<CardField, const char*> parts[] = {{CardField::weekly, "the card's weekly program"},
                                                       {CardField::pin, "its personal code"},
                                                       {CardField::supervisor, "its supervisor mark"},
                                                       {CardField::lastDay, "its last valid day"},
                                                       {CardField::credit, "its credit"}};

/// A controller's card with what is assumed of it taken for certain: whoever is asked for what may be wrong
/// does not want all that was never sent again.
CardState withAssumptions(CardState card) {
  for (std::size_t i = 0; i < cardFieldCount; ++i) {
    Possible& part = card.part(static_cast<CardField>(i));
    if (part.certainty() == Certainty::assumed) part = Possible::held(part.last());
  }
  return card;
}

std::string hoursText(const DailyProgramRow& program) {
  std::string text;
  for (const std::string& interval : program.intervals) {
    if (interval != "none") text += (text.empty() ? "" : " ") + interval;
  }
  return text.empty() ? "none" : text;
}

}  // namespace

/// A question, with what is found on the way to the answer.
struct AccessQuestions::Case {
  const Door& door;
  const Reach* reach;
  DoorDecision decision;
  CardRecord card = {};
  const DoorSide* side = nullptr;  ///< as the group's cards meet the door; none when they do not
  /// What the controller is to hold of the card; none when it is to hold nothing, or cannot be told.
  std::optional<CardImage> wanted = {};
  std::int16_t weekly = alwaysProgram;
  int daily = 0;
  bool sometime = false;  ///< the weekly program opens at some hours
  bool against = false;   ///< its controller opens, or may open, against what the rows say
  AccessAnswer answer = {};
};

AccessQuestions::AccessQuestions(Installation& installation)
    : installation_(installation),
      today_(installation.clock().now()),
      image_(installation),
      holidays_(listHolidays(installation)) {
  for (const auto rows = installation.database().openRecordset(
           "select CardNum from Cardholders where Deleted = false and CardNum is not null group by CardNum "
           "having count(*) > 1");
       !rows->eof(); rows->moveNext()) {
    sharedNumbers_.insert(rows->get("CardNum").toInt32());
  }
  for (const WeeklyProgramRow& program : listWeeklyPrograms(installation)) {
    if (program.family == "C") weeklyNames_[program.number] = program.name;
  }
  for (DailyProgramRow& program : listDailyPrograms(installation)) {
    dailyPrograms_[program.id] = std::move(program);
  }
}

AccessAnswer AccessQuestions::mayOpen(const std::string& card, const std::string& door, DateTime at) {
  const auto row = cardRow(card);
  const Door asked = doorNamed(door);
  return judge(*row, asked, at).answer;
}

std::vector<AccessAnswer> AccessQuestions::whoOpens(const std::string& door, DateTime at) {
  const Door asked = doorNamed(door);
  std::vector<AccessAnswer> answers;
  for (const auto rows = installation_.database().openRecordset("select * from Cardholders order by CardNum");
       !rows->eof(); rows->moveNext()) {
    Case found = judge(*rows, asked, at);
    if (found.answer.opens || found.against || found.sometime) answers.push_back(std::move(found.answer));
  }
  return answers;
}

std::vector<AccessAnswer> AccessQuestions::whatOpens(const std::string& card, DateTime at) {
  const auto row = cardRow(card);
  std::vector<AccessAnswer> answers;
  for (const ReaderRow& reader : listReaders(installation_)) {
    const Door door = doorOf(reader);
    Case found = judge(*row, door, at);
    if (found.side != nullptr || found.against) answers.push_back(std::move(found.answer));
  }
  return answers;
}

std::unique_ptr<Recordset> AccessQuestions::cardRow(const std::string& card) {
  try {
    return cardNamed(installation_, card);
  } catch (const Refusal&) {
    return cardNamed(installation_, card, true);
  }
}

AccessQuestions::Door AccessQuestions::doorNamed(const std::string& name) {
  std::vector<std::string> names;
  for (const ReaderRow& reader : listReaders(installation_)) {
    if (equalNoCase(reader.name, name)) return doorOf(reader);
    names.push_back(reader.name);
  }
  throw notFound("msgCantFindReader", name, names);
}

AccessQuestions::Door AccessQuestions::doorOf(const ReaderRow& row) {
  Door door;
  door.row = row;
  door.place = {row.stationId, nullToInt(row.address)};
  door.type = row.type.isNull() ? "" : row.type.toText();
  door.lineInUse = installation_.Com().isInUse(row.stationId);
  const int number = doorAt(nullToInt(row.position));
  if (number == 2) door.right = CardField::door2;
  door.fault = addressFault(row.name, row.address);
  if (door.fault.empty() && number == 0) {
    door.fault = "the reader " + row.name + " has no position from 1 to 4 on its controller";
  }
  return door;
}

AccessQuestions::Case AccessQuestions::judge(const Recordset& row, const Door& door, DateTime at) {
  const std::int16_t group = nullToInt(row.get("AccessGroupId"));
  Case asked{door, &reachOf(group, door.place), {at, today_}};
  asked.card = cardRecord(row);
  for (const DoorSide& side : asked.reach->sides) {
    if (side.reader == door.row.name) asked.side = &side;
  }
  AccessAnswer& answer = asked.answer;
  answer.card = asked.card.number;
  answer.name = row.get("Name").toText();
  answer.door = door.row.name;
  answer.controller = door.place;
  answer.controllerName = door.row.station + " Controller " + std::to_string(door.place.address);
  answer.lineInUse = door.lineInUse;
  answer.at = at;
  answer.personalCode = asked.card.pinCode != 0;
  answer.credit = asked.card.credit;
  answer.otherSide = asked.side != nullptr && asked.side->access == DoorSide::Access::otherSide;
  answer.reason = reasonByRows(asked);
  answer.opens = answer.reason <= AccessReason::inHours;
  compareWithController(asked);
  return asked;
}

AccessReason AccessQuestions::reasonByRows(Case& asked) {
  const CardRecord& card = asked.card;
  const Reach& reach = *asked.reach;
  if (card.deleted) return AccessReason::deleted;
  if (sharedNumbers_.contains(card.number)) return AccessReason::sharedNumber;
  if (card.code.empty()) return AccessReason::noCode;
  const ImageCard* image = image_.card(card.number);
  asked.answer.fault = image == nullptr ? "its number is none of 1 to 9999" : image->fault;
  if (!asked.answer.fault.empty()) return AccessReason::cannotBeSent;
  if (reach.granted && reach.fault.empty()) asked.wanted = Image::on(*image, *reach.granted);
  if (!card.validated) return AccessReason::notValid;
  if (card.validationDate && asked.decision.isPast(*card.validationDate)) return AccessReason::expired;
  asked.answer.fault = asked.door.fault;
  if (!asked.answer.fault.empty()) return AccessReason::notConnected;
  asked.answer.fault = reach.fault;
  if (!asked.answer.fault.empty()) return AccessReason::badLink;
  if (asked.side == nullptr) return AccessReason::notGranted;
  if (asked.side->access == DoorSide::Access::shut) return AccessReason::twoPrograms;
  return reasonByTime(asked);
}

AccessReason AccessQuestions::reasonByTime(Case& asked) {
  AccessAnswer& answer = asked.answer;
  asked.weekly = asked.reach->granted->rights.weeklyProgram;
  answer.weeklyProgram = weeklyNames_[asked.weekly];
  if (asked.weekly == alwaysProgram) return AccessReason::always;
  const auto missing = [&](const std::string& kind, int number) {
    answer.fault = kind + " program " + std::to_string(number) + " is missing, or cannot be sent";
    return AccessReason::missingProgram;
  };
  const Holdings& programs = programsFor(asked.door.type);
  const std::string days = programs.thing(ThingKind::weeklyC, asked.weekly).last();
  if (days.empty()) return missing("weekly", asked.weekly);
  for (const HolidayRow& holiday : holidays_) {
    if (!holiday.date.isNull() && asked.decision.isOn(holiday.date.toDateTime(), holiday.eachYear))
      answer.holiday = holiday.name;
  }
  const bool isHoliday = !answer.holiday.empty();
  asked.daily = asked.decision.dailyProgram(days, isHoliday);
  const DailyProgramRow& daily = dailyPrograms_[static_cast<std::int16_t>(asked.daily)];
  answer.dailyProgram = daily.name;
  answer.hours = hoursText(daily);
  if (asked.daily != 0 && programs.thing(ThingKind::daily, asked.daily).last().empty())
    return missing("daily", asked.daily);
  asked.sometime = asked.decision.opensEver(programs, days);
  const Possible weekly = Possible::held(asked.wanted->value(CardField::weekly));
  if (asked.decision.inHours(programs, weekly, sure(isHoliday)) == Sure::yes) return AccessReason::inHours;
  return isHoliday ? AccessReason::holiday : AccessReason::outsideHours;
}

void AccessQuestions::compareWithController(Case& asked) {
  AccessAnswer& answer = asked.answer;
  if (!asked.door.fault.empty()) {
    answer.known = Sure::unsaid;
    answer.missing = {"where the reader is"};
    return;
  }
  const Holdings& held = heldAt(asked.door.place);
  const CardState card = held.card(asked.card.number);
  answer.controllerOpens = asked.decision.opens(held, card, heldForm(asked.card.code), asked.door.right);
  noteWhatIsAgainst(asked, held, card);
  const auto found = [&](Sure holds, const std::string& what) {
    answer.known = std::min(answer.known, holds);
    if (holds != Sure::yes) answer.missing.push_back(what);
    return holds == Sure::yes;
  };
  // A card that is not valid need not be there.
  if (!asked.card.validated && card.part(CardField::code).is("")) asked.wanted.reset();
  if (!asked.wanted) {  // all that decides is that it does not open
    constexpr Sure opposites[] = {Sure::yes, Sure::unsaid, Sure::no};
    (void)found(opposites[static_cast<std::size_t>(answer.controllerOpens)], "that it opens nothing");
    return;
  }
  const auto has = [&](CardField field) {
    return hasPart(card, field, ledgerValue(field, asked.wanted->value(field)));
  };
  if (!found(has(CardField::code), "the card")) return;
  (void)found(has(asked.door.right), "its right to the door");
  for (const auto& [field, name] : parts) (void)found(has(field), name);
  if (asked.weekly == alwaysProgram) return;
  const Holdings& programs = programsFor(asked.door.type);
  const auto holds = [&](ThingKind kind, int number, const auto& meaning) {
    const auto wanted = meaning(programs.thing(kind, number).last());
    return ofAll(held.thing(kind, number),
                 [&](const std::string& value) { return sure(meaning(value) == wanted); });
  };
  (void)found(holds(ThingKind::weeklyC, asked.weekly, [](const std::string& days) { return days; }),
              "weekly program " + answer.weeklyProgram);
  if (asked.daily != 0)
    (void)found(holds(ThingKind::daily, asked.daily, hoursOf), "daily program " + answer.dailyProgram);
  const Sure holiday = asked.decision.isHoliday(held);
  const bool same = holiday == sure(!answer.holiday.empty());
  (void)found(holiday == Sure::unsaid ? holiday : sure(same), "the holidays");
}

void AccessQuestions::noteWhatIsAgainst(Case& asked, const Holdings& held, const CardState& card) {
  AccessAnswer& answer = asked.answer;
  const std::string code = heldForm(asked.card.code);
  const Possible& known = card.part(CardField::code);
  const ImageCard* image = image_.card(asked.card.number);
  const bool ofAnother = asked.card.deleted && image != nullptr && !image->deleted;  // who has its number now
  std::vector<std::string> others = known.since();
  others.push_back(known.last());
  for (const std::string& other : others) {
    if (other.empty() || other == code || ofAnother) continue;
    const Sure opens = asked.decision.opens(held, card, other, asked.door.right);
    if (opens <= answer.oldCodeOpens) continue;
    answer.oldCodeOpens = opens;
    answer.oldCode = shownCode(other);
  }
  // Of a card that it has no entry of only that is known which holds for every number.
  const bool may = held.cards.contains(asked.card.number) &&
                   asked.decision.opens(held, withAssumptions(card), code, asked.door.right) != Sure::no;
  asked.against = !answer.oldCode.empty() || answer.controllerOpens == Sure::yes ||
                  (answer.controllerOpens == Sure::unsaid && may);
}

const AccessQuestions::Reach& AccessQuestions::reachOf(std::int16_t group, const ControllerPlace& place) {
  const auto [known, added] = reaches_.try_emplace({group, place});
  Reach& reach = known->second;
  if (!added) return reach;
  Database& database = installation_.database();
  for (GrantedController& controller : controllersOf(database, group)) {
    if (controller.station != place.station || controller.address != place.address) continue;
    reach.sides = sidesOf(database, group, controller);
    if (const ImageRights* granted = image_.granted(place, group)) reach.granted = *granted;
    reach.fault = reach.granted ? reach.granted->fault : faultOf(database, group, controller);
  }
  return reach;
}

const Holdings& AccessQuestions::programsFor(const std::string& controllerType) {
  const auto [known, added] = programs_.try_emplace(controllerType);
  if (!added) return known->second;
  for (const ThingImage& thing : image_.things(controllerType).things)
    known->second.things[{thing.line.kind, thing.line.number}] = Possible::held(thing.line.value);
  return known->second;
}

const Holdings& AccessQuestions::heldAt(const ControllerPlace& place) {
  const auto [known, added] = held_.try_emplace(place);
  if (!added) return known->second;
  if (installation_.ledger().open()) {
    known->second = installation_.ledger().holdings(place);
  } else {
    known->second.unknownOthers = {ThingKind::card, ThingKind::daily, ThingKind::weeklyC, ThingKind::holiday};
  }
  return known->second;
}

}  // namespace voxa
