#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/report.h"

namespace voxa {

class Installation;

struct HolidayRow {
  std::int16_t slot = 0;  ///< its place on the controllers
  std::string name;
  Value date;             ///< Null when the row has none
  bool eachYear = false;  ///< the day and month of every year
  bool toSend = false;
  Value day = {};  ///< the first such day from today on; Null when it is over, and without a date
};

/// Adds a holiday, marked to be sent; returns its slot. Controllers have 20 slots, 60 where all of them are
/// VRMD1. date: as 25/12/2026. A Refusal when no slot is free, for a text that is no date, and for a year
/// that the controllers, which know its last two digits, would take for another. When no slot is free it
/// names the holidays that are over.
std::int16_t addHoliday(Installation& installation, const std::string& name, const std::string& date,
                        bool eachYear);
/// What of a holiday is to change, as a person writes it.
struct HolidayTexts {
  std::optional<std::string> name = {}, date = {};
  std::optional<bool> eachYear = {};
};
/// Changes the holiday of that number or name; another day marks it. It keeps its slot, where the next
/// download puts the new day in place of the old one. A Refusal as addHoliday has it.
void changeHoliday(Installation& installation, const std::string& numberOrName, const HolidayTexts& texts);
/// The holiday of that number or name; a Refusal when there is none.
[[nodiscard]] HolidayRow findHoliday(Installation& installation, const std::string& numberOrName);
/// By slot.
[[nodiscard]] std::vector<HolidayRow> listHolidays(Installation& installation);
/// By day, those that are over behind the others. year: only those of that year, with their day in it.
[[nodiscard]] std::vector<HolidayRow> holidaysByDay(Installation& installation, std::optional<int> year = {});

/// Erases a holiday on the controllers of all active stations, and deletes its row when all of them have done
/// so; the caller has tested the lines. Otherwise the row stays, marked to be sent: some controllers may have
/// emptied the slot, and lack the holiday until it is sent or deleted everywhere.
/// The Report has one row: done, or failed with a notice about the send if that failed; and the controllers
/// that are not known to answer. A Refusal when the holiday is gone.
Report deleteHoliday(Installation& installation, std::int16_t slot);

}  // namespace voxa
