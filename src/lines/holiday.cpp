#include "lines/holiday.h"

#include "lines/controller_date.h"
#include "lines/field.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr const char* command = "34";
constexpr const char* everyYear = "00";

std::string dateField(const HolidayRecord& holiday, DateTime today) {
  if (holiday.eachYear) return formatDateTime(holiday.date, "ddmm") + everyYear;
  std::string field = controllerDate(holiday.date, today);
  if (field.ends_with(everyYear)) {
    throw Error(err::overflow, "Overflow: the controllers would take " + shortDate(holiday.date) +
                                   " for a holiday of every year, as 00 stands for");
  }
  return field;
}

}  // namespace

std::string holidayLine(const HolidayRecord& holiday, DateTime today) {
  return command + numberField(holiday.slot, 1, 2, "holiday number") + dateField(holiday, today);
}

std::string clearHolidayLine(std::int16_t slot) {
  return command + zeroPadded(slot, 2) + "000000";
}

}  // namespace voxa
