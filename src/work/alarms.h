#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {
class Recordset;
}

namespace voxa {

class Installation;

// Alarms, inputs and outputs of controllers: the rows of "Alarms" that are no lift outputs (lifts.h). They
// are kept for other programs: this system sends no lines for them. An alarm is named by its name, or its
// number in the table. A Refusal says what is not as it has to be, and nothing is changed then.

/// An alarm as a person writes it. What is not given stays as it is.
struct AlarmTexts {
  std::optional<std::string> name = {};
  std::optional<std::string> type = {};     ///< a letter, in any case; M is a lift output, and no alarm
  std::optional<std::string> station = {};  ///< of its controller
  std::optional<std::string> address = {};  ///< of its controller on the line, 1 to 16
  std::optional<std::string> number = {};   ///< on the controller, 1 to 99
};

/// An alarm of a list. Values as the table has them.
struct AlarmRow {
  Value id, name, type, station, address, number;
  bool marked = false;  ///< to be sent, by a program that does
};

/// Adds one, marked; its number in the table. All texts have to be given.
std::int32_t addAlarm(Installation& installation, const AlarmTexts& texts);
/// Changes one, and marks it unless it is only renamed.
void changeAlarm(Installation& installation, const std::string& alarm, const AlarmTexts& texts);
void deleteAlarm(Installation& installation, const std::string& alarm);
[[nodiscard]] AlarmRow findAlarm(Installation& installation, const std::string& alarm);
[[nodiscard]] std::vector<AlarmRow> listAlarms(Installation& installation);  ///< by number in the table

// What an alarm and a lift output have in common. noun: "alarm", "lift output".

/// Adds a row of that type; its number in the table.
std::int32_t addAlarmRow(Installation& installation, const AlarmTexts& texts, const std::string& type,
                         const std::string& noun);
/// Sets what is given, but for the type, in a row that is being edited or added.
void setAlarmRow(Installation& installation, Recordset& row, const AlarmTexts& texts);

}  // namespace voxa
