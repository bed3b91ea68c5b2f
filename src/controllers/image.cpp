#include "controllers/image.h"

#include <algorithm>
#include <cmath>

#include "access/access_context.h"
#include "access/card_record.h"
#include "comm/com.h"
#include "controllers/digest.h"
#include "files/conversions.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"

namespace voxa {

namespace {

constexpr const char* clearingCode = "00000000";
constexpr const char* dayOfCentury = "290200";
constexpr CardField ofRow[] = {CardField::code, CardField::pin, CardField::supervisor, CardField::lastDay,
                               CardField::credit};

std::string& at(std::array<std::string, cardFieldCount>& values, CardField field) {
  return values.at(static_cast<std::size_t>(field));
}

std::string nameOf(const Recordset& row) {
  const Value name = row.get("Name");
  return name.isNull() ? "" : name.toText();
}

std::string rowOf(const char* kind, std::int32_t number, const std::string& name) {
  return std::string(kind) + " " + std::to_string(number) + (name.empty() ? "" : " (" + name + ")");
}

/// Why lines cannot have what a group grants; "" when they can.
std::string faultOf(const ImageRights& granted) {
  try {
    (void)cardValue(CardField::weekly, {}, granted.rights, {});
    for (const std::int16_t output : granted.lifts) (void)liftValue(output);
  } catch (const Error& error) {
    return error.description();
  }
  return "";
}

/// Controllers of either kind.
constexpr const char* controllerTypes[] = {"QSX3", "VRMD1"};

}  // namespace

std::string ledgerValue(CardField field, const std::string& lineValue) {
  std::string value = lineValue;
  if (field == CardField::code) std::replace(value.begin(), value.end(), ' ', '0');
  return value;
}

Image::Image(AccessContext& context, std::optional<std::int32_t> only)
    : context_(context),
      today_(context.clock().now()),
      fourIntervals_(context.Com().pDailyPrograms4Zones == 1) {
  Database& main = context.database();
  const Reading moment(main);
  readThings(main);
  readCards(main, only);
  std::optional<std::int16_t> group;
  if (only) group = cards_.empty() ? std::int16_t{-1} : cards_.front().group;
  readRights(main, group);
}

void Image::readCards(Database& main, std::optional<std::int32_t> only) {
  static const std::string fields =
      "select CardNum, CardCode, Name, AccessGroupId, Deleted, Validated, PINCode, Supervisor, "
      "ValidationDate, "
      "Credit, CardCodeFlagD, AccessGroupIdFlagD, ValidatedFlagD, PINCodeFlagD, SupervisorFlagD, "
      "ValidationDateFlagD, CreditFlagD from Cardholders";
  // Of one number the cards in use first: a deleted one counts only when there is no other.
  const auto rows = only ? main.openRecordset("parameters pNumber long; " + fields +
                                                  " where CardNum = pNumber order by Deleted desc",
                                              {{"pNumber", *only}})
                         : main.openRecordset(fields + " order by CardNum, Deleted desc");
  for (; !rows->eof(); rows->moveNext()) addCard(*rows);
  for (const ImageCard& card : cards_) {
    if (!card.fault.empty())
      leftOut_.push_back({ThingKind::card, card.number, rowOf("card", card.number, card.name), card.fault});
  }
}

void Image::addCard(const Recordset& row) {
  const CardRecord record = cardRecord(row);
  ImageCard card;
  card.number = record.number;
  card.group = nullToInt(row.get("AccessGroupId"));
  card.name = nameOf(row);
  card.deleted = record.deleted;
  card.validated = record.validated;
  card.wanted = isForControllers(record);
  const bool over = record.validationDate && record.validationDate->days < std::floor(today_.days);
  card.barred = !record.validated || over;
  card.marks = record.parts;
  if (card.number < 1 || card.number > greatestCardNumber) {
    if (card.wanted) {
      leftOut_.push_back({ThingKind::card, card.number, rowOf("card", card.number, card.name),
                          "its number is none of 1 to 9999"});
    }
    return;
  }
  if (!cards_.empty() && cards_.back().number == card.number) {
    ImageCard& first = cards_.back();
    if (card.deleted) return;
    first.barred = first.barred || card.barred;
    first.several = true;
    first.wanted = first.wanted || card.wanted;
    first.name += " and " + card.name;
    first.fault = "several cards have this number: none of them is sent until each has its own";
    return;
  }
  if (card.wanted) {
    for (const CardField field : ofRow) {
      try {
        at(card.values, field) = cardValue(field, record, {}, today_);
      } catch (const Error& error) {
        if (card.fault.empty()) card.fault = error.description();
      }
    }
    if (ledgerValue(CardField::code, at(card.values, CardField::code)) == clearingCode)
      card.fault = "its code is zero, which clears a card";
    if (at(card.values, CardField::lastDay) == dayOfCentury)
      card.fault = "its last day is 29 February 2000, which controllers take for none: choose another day";
  }
  cards_.push_back(std::move(card));
}

void Image::leaveOut(std::int16_t group, const std::string& reason) {
  groupsLeftOut_.insert(group);
  leftOut_.push_back({ThingKind::card, 0, "access group " + std::to_string(group), reason});
}

void Image::readRights(Database& main, std::optional<std::int16_t> onlyGroup) {
  const LiftRights lifts = liftRights(main, onlyGroup);
  std::map<std::int16_t, std::vector<GrantedController>> groups;
  if (onlyGroup) {
    groups[*onlyGroup] = controllersOf(main, *onlyGroup);
  } else {
    groups = controllersOfGroups(main);
  }
  for (const auto& [group, controllers] : groups) {
    for (const GrantedController& controller : controllers) {
      if (!isOfController(controller.address)) {
        const bool any = std::any_of(cards_.begin(), cards_.end(), [&, of = group](const ImageCard& card) {
          return card.wanted && card.group == of;
        });
        if (any) leaveOut(group, faultOf(main, group, controller));
        continue;
      }
      ImageRights& granted = rights_[controller][group];
      granted.controllerType = controller.type;
      granted.rights = controller.rights();
      if (const auto found = lifts.find({group, controller}); found != lifts.end())
        granted.lifts = found->second;
      granted.fault = faultOf(main, group, controller);
      if (granted.fault.empty()) granted.fault = faultOf(granted);
      const std::int16_t program = granted.rights.weeklyProgram;
      if (granted.fault.empty() && program != 0 && !known_.contains({ThingKind::weeklyC, program}))
        granted.fault = "there is no weekly program C " + std::to_string(program);
    }
  }
}

const ImageCard* Image::card(std::int32_t number) const {
  const auto found =
      std::lower_bound(cards_.begin(), cards_.end(), number,
                       [](const ImageCard& card, std::int32_t than) { return card.number < than; });
  return found == cards_.end() || found->number != number ? nullptr : &*found;
}

std::vector<ControllerPlace> Image::placesOf(std::int16_t group) const {
  std::vector<ControllerPlace> places;
  for (const auto& [place, groups] : rights_) {
    if (groups.contains(group)) places.push_back(place);
  }
  return places;
}

const std::map<std::int16_t, ImageRights>& Image::grantedAt(const ControllerPlace& place) const {
  static const std::map<std::int16_t, ImageRights> nothing;
  const auto found = rights_.find(place);
  return found == rights_.end() ? nothing : found->second;
}

const ImageRights* Image::granted(const ControllerPlace& place, std::int16_t group) const {
  const auto& groups = grantedAt(place);
  const auto found = groups.find(group);
  return found == groups.end() ? nullptr : &found->second;
}

CardImage Image::on(const ImageCard& card, const ImageRights& granted) {
  CardRecord record;
  record.validated = card.validated;
  CardImage image{card.values};
  for (const CardField field : {CardField::weekly, CardField::door1, CardField::door2})
    at(image.values, field) = cardValue(field, record, granted.rights, {});
  return image;
}

const ThingImages& Image::things(const std::string& controllerType) const {
  const auto [known, added] = things_.try_emplace(controllerType);
  ThingImages& images = known->second;
  if (!added) return images;
  images = thingsFor(controllerType);
  Digest digest;
  digest.add(controllerType);
  for (const ThingImage& image : images.things) digest.add(image.text);
  images.digest = digest.value();
  return images;
}

void Image::readThings(Database& main) {
  const auto read = [&](const char* query, ThingKind kind) {
    for (const auto row = main.openRecordset(query); !row->eof(); row->moveNext()) addThing(kind, *row);
  };
  read("select * from DailyPrograms where Id <> 0 order by Id", ThingKind::daily);
  read("select * from WeeklyPrograms where ProgNum <> 0 order by ProgType, ProgNum", ThingKind::weeklyC);
  read("select * from Holidays order by Id", ThingKind::holiday);
}

void Image::addThing(ThingKind kind, const Recordset& row) {
  const bool weekly = kind == ThingKind::weeklyC;
  ThingRow thing;
  thing.number = row.get(weekly ? "ProgNum" : "Id").toInt32();
  const std::string family = weekly ? row.get("ProgType").toText() : "";
  thing.kind = family == "E" ? ThingKind::weeklyE : kind;
  const char* const called = weekly                     ? "weekly program"
                             : kind == ThingKind::daily ? "daily program"
                                                        : "holiday";
  thing.row = rowOf(called, thing.number, nameOf(row));
  known_.insert({thing.kind, thing.number});
  try {
    switch (kind) {
      case ThingKind::daily:
        thing.text = linesOfDailyProgram(row, fourIntervals_).front();
        thing.marked = row.get("DailyProgramFlagD").toBool();
        break;
      case ThingKind::holiday:
        thing.text = linesOfHoliday(row, today_).front();
        thing.marked = row.get("HolidayFlagD").toBool();
        break;
      default:
        thing.text = linesOfWeeklyProgram(row).front();
        thing.marked = row.get("WeeklyProgramFlagD").toBool();
        thing.fault = family == "C" || family == "E" ? missingDaily(thing.text)
                                                     : "its family is '" + family + "', and has to be C or E";
    }
  } catch (const Error& error) {
    thing.fault = error.description();
  }
  rows_.push_back(std::move(thing));
}

std::string Image::missingDaily(const std::string& weeklyLine) const {
  const std::string dailies = sentLine(weeklyLine, controllerTypes[0]).value;
  for (std::size_t at = 0; at + 2 <= dailies.size(); at += 2) {
    const int daily = std::stoi(dailies.substr(at, 2));
    if (daily != 0 && !known_.contains({ThingKind::daily, daily}))
      return "there is no daily program " + std::to_string(daily);
  }
  return "";
}

ThingImages Image::thingsFor(const std::string& controllerType) const {
  ThingImages images;
  for (const ThingRow& row : rows_) {
    LeftOut leftOut{row.kind, row.number, row.row, row.fault};
    if (row.fault.empty()) {
      ThingImage image{sentLine(row.text, controllerType), row.text, row.marked};
      if (image.line.fit == SentLine::Fit::certain) {
        images.things.push_back(std::move(image));
        continue;
      }
      // One that only the other kind takes is not for this one.
      const bool fitsOthers = std::any_of(
          std::begin(controllerTypes), std::end(controllerTypes),
          [&](const char* other) { return sentLine(row.text, other).fit == SentLine::Fit::certain; });
      if (fitsOthers) {
        leftOut.reason = "controllers of its kind do not take it";
        images.ofOthers.push_back(std::move(leftOut));
        continue;
      }
      leftOut.reason = "no controller takes it";
    }
    images.leftOut.push_back(std::move(leftOut));
  }
  return images;
}

}  // namespace voxa
