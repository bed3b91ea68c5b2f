#pragma once

#include <cstdint>
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
};

/// Adds a holiday, marked to be sent; returns its slot. Controllers have 20 slots, 60 where all of them are
/// VRMD1. date: as 25/12/2026. A Refusal when no slot is free, for a text that is no date, and for a year
/// that the controllers, which know its last two digits, would take for another.
std::int16_t addHoliday(Installation& installation, const std::string& name, const std::string& date,
                        bool eachYear);
/// The holiday of that number or name; a Refusal when there is none.
[[nodiscard]] HolidayRow findHoliday(Installation& installation, const std::string& numberOrName);
/// By slot.
[[nodiscard]] std::vector<HolidayRow> listHolidays(Installation& installation);

/// Erases a holiday on the controllers of all active stations, and deletes its row when all of them have done
/// so; the caller has tested the lines. Otherwise the row stays, marked to be sent: some controllers may have
/// emptied the slot, and lack the holiday until it is sent or deleted everywhere.
/// The Report has one row: done, or failed with a notice about the send if that failed; and the controllers
/// that are not known to answer. A Refusal when the holiday is gone.
Report deleteHoliday(Installation& installation, std::int16_t slot);

}  // namespace voxa
