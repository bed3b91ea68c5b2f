#include "controllers/image.h"

#include "access/access_context.h"
#include "access/card_record.h"
#include "files/conversions.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"

namespace voxa {

namespace {

CardPart partOf(CardField field) {
  switch (field) {
    case CardField::code:
      return cardCodePart;
    case CardField::door1:
    case CardField::door2:
      return validatedPart;
    case CardField::pin:
      return pinCodePart;
    case CardField::supervisor:
      return supervisorPart;
    case CardField::lastDay:
      return validationDatePart;
    case CardField::credit:
      return creditPart;
    case CardField::weekly:
    case CardField::lift:
      break;
  }
  return accessGroupPart;
}

}  // namespace

bool CardImage::isMarked(CardField field) const {
  return marks[partOf(field)];
}

std::vector<ThingImage> Image::things(std::string_view controllerType, bool fourIntervals) const {
  std::vector<ThingImage> things;
  const auto take = [&](const char* query, const char* flag, const auto& linesOf) {
    for (const auto row = main_.openRecordset(query); !row->eof(); row->moveNext()) {
      std::string text;
      try {
        text = linesOf(*row).front();
      } catch (const Error&) {
        continue;
      }
      SentLine line = sentLine(text, controllerType);
      if (line.fit == SentLine::Fit::certain) things.push_back({std::move(line), row->get(flag).toBool()});
    }
  };
  const DateTime today = context_.clock().now();
  take("select * from DailyPrograms where Id <> 0", "DailyProgramFlagD",
       [&](const Recordset& row) { return linesOfDailyProgram(row, fourIntervals); });
  take("select * from WeeklyPrograms where ProgNum <> 0", "WeeklyProgramFlagD",
       [](const Recordset& row) { return linesOfWeeklyProgram(row); });
  take("select * from Holidays", "HolidayFlagD",
       [&](const Recordset& row) { return linesOfHoliday(row, today); });
  return things;
}

void Image::cards(const TakeCard& take) const {
  std::optional<std::int16_t> group;
  std::vector<Granted> reached;
  const auto rows =
      main_.openRecordset("select * from Cardholders order by Deleted desc, AccessGroupId, CardNum");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t own = nullToInt(rows->get("AccessGroupId"));
    if (group != own) reached = grantedBy(own, rows->get("Id").toInt32());
    group = own;
    const CardRecord card = cardRecord(*rows);
    for (const Granted& granted : reached) {
      if (const auto image = cardOn(granted, card)) take(granted.controller, card.number, *image);
    }
  }
}

std::vector<Image::Granted> Image::grantedBy(std::int16_t group, std::int32_t cardholder) const {
  std::vector<Granted> all;
  for (GrantedController& controller : controllersOf(main_, group)) {
    if (!isOfController(controller.address)) continue;
    std::vector<std::int16_t> lifts = liftOutputs(main_, cardholder, controller);
    all.push_back({std::move(controller), std::move(lifts)});
  }
  return all;
}

std::optional<CardImage> Image::cardOn(const Granted& granted, const CardRecord& card) const {
  CardRecord whole = card;
  whole.parts.set();
  std::vector<std::string> lines;
  try {
    lines = cardLines(whole, granted.controller.rights(), granted.lifts, granted.controller.type,
                      context_.clock().now());
  } catch (const Error&) {
    return std::nullopt;
  }
  CardImage image;
  image.marks = card.parts;
  for (const std::string& text : lines) {
    SentLine line = sentLine(text, granted.controller.type);
    if (line.field == CardField::lift) {
      image.lifts.push_back(line.output);
    } else {
      image.parts.at(static_cast<std::size_t>(line.field)) = std::move(line.value);
    }
  }
  return image;
}

}  // namespace voxa
