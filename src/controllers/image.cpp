#include "controllers/image.h"

#include <algorithm>

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

constexpr std::int32_t greatestNumber = 9999;
constexpr const char* clearingCode = "00000000";
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

/// A kind of program, or the holidays.
struct Rows {
  const char* query;
  const char* flag;
  const char* number;
  const char* kind;  ///< what a person calls a row
};

constexpr Rows dailies = {"select * from DailyPrograms where Id <> 0 order by Id", "DailyProgramFlagD", "Id",
                          "daily program"};
constexpr Rows weeklies = {"select * from WeeklyPrograms where ProgNum <> 0 order by ProgType, ProgNum",
                           "WeeklyProgramFlagD", "ProgNum", "weekly program"};
constexpr Rows holidays = {"select * from Holidays order by Id", "HolidayFlagD", "Id", "holiday"};

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
  card.marks = record.parts;
  if (card.number < 1 || card.number > greatestNumber) {
    if (card.wanted) {
      leftOut_.push_back({ThingKind::card, card.number, rowOf("card", card.number, card.name),
                          "its number is none of 1 to 9999"});
    }
    return;
  }
  if (!cards_.empty() && cards_.back().number == card.number) {
    ImageCard& first = cards_.back();
    if (card.deleted) return;
    first.name += " and " + card.name;
    first.fault = "several cards have this number: none of them is sent until each has its own";
    return;
  }
  if (card.wanted) {
    try {
      for (const CardField field : ofRow) at(card.values, field) = cardValue(field, record, {}, today_);
      if (ledgerValue(CardField::code, at(card.values, CardField::code)) == clearingCode)
        card.fault = "its code is zero, which clears a card";
    } catch (const Error& error) {
      card.fault = error.description();
    }
  }
  cards_.push_back(std::move(card));
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
      if (!isOfController(controller.address)) continue;
      ImageRights& granted = rights_[controller][group];
      granted.controllerType = controller.type;
      granted.rights = controller.rights();
      if (const auto found = lifts.find({group, controller}); found != lifts.end())
        granted.lifts = found->second;
      granted.fault = faultOf(main, group, controller);
      if (granted.fault.empty()) granted.fault = faultOf(granted);
    }
  }
}

const ImageCard* Image::card(std::int32_t number) const {
  const auto found =
      std::lower_bound(cards_.begin(), cards_.end(), number,
                       [](const ImageCard& card, std::int32_t than) { return card.number < than; });
  return found == cards_.end() || found->number != number ? nullptr : &*found;
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

ThingImages Image::thingsFor(const std::string& controllerType) const {
  ThingImages images;
  const auto take = [&](const Rows& rows, ThingKind kind, const auto& linesOf) {
    for (const auto row = context_.database().openRecordset(rows.query); !row->eof(); row->moveNext()) {
      const std::int32_t number = row->get(rows.number).toInt32();
      LeftOut leftOut{kind, number, rowOf(rows.kind, number, nameOf(*row)), {}};
      if (kind == ThingKind::weeklyC && row->get("ProgType") != Value("C")) leftOut.kind = ThingKind::weeklyE;
      try {
        ThingImage image{{}, linesOf(*row).front(), row->get(rows.flag).toBool()};
        image.line = sentLine(image.text, controllerType);
        if (image.line.fit == SentLine::Fit::certain) {
          images.things.push_back(std::move(image));
          continue;
        }
        leftOut.reason = "controllers of its kind do not take it";
      } catch (const Error& error) {
        leftOut.reason = error.description();
      }
      images.leftOut.push_back(std::move(leftOut));
    }
  };
  take(dailies, ThingKind::daily,
       [&](const Recordset& row) { return linesOfDailyProgram(row, fourIntervals_); });
  take(weeklies, ThingKind::weeklyC, [](const Recordset& row) { return linesOfWeeklyProgram(row); });
  take(holidays, ThingKind::holiday, [&](const Recordset& row) { return linesOfHoliday(row, today_); });
  return images;
}

}  // namespace voxa
