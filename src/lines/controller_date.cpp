#include "lines/controller_date.h"

#include "platform/datetime.h"
#include "platform/error.h"

namespace voxa {

namespace {

int yearRead(const CivilTime& date, DateTime today) {
  return nearestYear(date.year % 100, date.month, date.day, today);
}

}  // namespace

bool controllersRead(DateTime date, DateTime today) {
  const CivilTime parts = toCivil(date);
  return yearRead(parts, today) == parts.year;
}

std::string controllerDate(DateTime date, DateTime today) {
  if (!controllersRead(date, today)) {
    throw Error(err::overflow, "Overflow: the controllers would take " + shortDate(date) + " for a day of " +
                                   std::to_string(yearRead(toCivil(date), today)) +
                                   ": they can be told dates within 50 years of today");
  }
  return formatDateTime(date, "ddmmyy");
}

}  // namespace voxa
