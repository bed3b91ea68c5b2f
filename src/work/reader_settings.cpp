#include "work/reader_settings.h"

#include <limits>

#include "platform/database/database.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa {

namespace {

using Text = std::optional<std::string> ReaderSettingTexts::*;

/// A setting that is a number or a flag, as people and the table call it.
struct Column {
  Text text;
  const char* name;  ///< as lists have it
  const char* what;  ///< as a Refusal has it
  const char* column;
  const char* mark;           ///< its column; "" when it has none
  std::int16_t greatest = 0;  ///< 0: yes or no
  bool orNone = false;
};
constexpr std::int16_t most = std::numeric_limits<std::int16_t>::max();
constexpr std::int16_t greatestCode = 9999;
constexpr std::int16_t lastInput = 99;

using Texts = ReaderSettingTexts;
constexpr Column columns[] = {
    {&Texts::orientation, "Orientation", "the orientation", "Orientation", "OrientationFlagD", 9},
    {&Texts::accessCriteria, "AccessCriteria", "the access criteria", "AccessCriterias",
     "AccessCriteriasFlagD", most},
    {&Texts::antipassback, "Antipassback", "anti-passback", "Antipassback", "AntipassbackFlagD"},
    {&Texts::openDelay, "OpenDelay", "the open delay", "DoorOpenDelay", "DoorOpenDelayFlagD", most},
    {&Texts::closeDelay, "CloseDelay", "the close delay", "DoorCloseDelay", "", most},
    {&Texts::alarmMode, "AlarmMode", "the alarm mode", "DoorAlarmMode", "DoorAlarmModeFlagD", most},
    {&Texts::lockingInput, "LockingInput", "the locking input", "LockedOnInputNum", "LockedOnInputNumFlagD",
     lastInput, true},
    {&Texts::supervisorMode, "SupervisorMode", "the supervisor mode", "SupervisorMode", "SupervisorModeFlagD",
     most},
    {&Texts::counting, "Counting", "counting", "Counting", "CountingFlagD"}};

Value valueOf(const Column& column, const std::string& text) {
  if (column.greatest == 0) return yesOrNo(column.what, text);
  if (column.orNone && equalNoCase(text, "none")) return {};
  return numberWithin(column.what, text, 0, column.greatest);
}

Value doorCode(const std::string& text) {
  if (equalNoCase(text, "none")) return {};
  // A code is not repeated in what refuses it.
  if (!isNumber(text) || text.size() > 4) throw Refusal("the code of the door has up to 4 digits");
  return numberWithin("the code of the door", text, 0, greatestCode);
}

Value programName(Installation& installation, const Recordset& row) {
  const Value family = row.get("WeeklyProgType");
  const Value number = row.get("WeeklyProgNum");
  if (family.isNull() || number.isNull()) return {};
  const auto program = installation.database().openRecordset(
      "parameters pFamily memo, pNumber long; select Name from WeeklyPrograms where ProgType = pFamily and "
      "ProgNum = pNumber",
      {{"pFamily", family}, {"pNumber", number}});
  return program->eof() ? number : program->get("Name");
}

}  // namespace

bool ReaderSettingTexts::any() const {
  for (const Column& column : columns) {
    if (this->*column.text) return true;
  }
  return doorMode || program || pin;
}

void setReaderSettings(Installation& installation, Recordset& row, const ReaderSettingTexts& texts) {
  for (const Column& column : columns) {
    const auto& text = texts.*column.text;
    if (!text) continue;
    row.set(column.column, valueOf(column, *text));
    if (*column.mark != '\0') row.set(column.mark, true);
  }
  if (texts.doorMode) {
    row.set("DoorMode", checkedText("the door mode", *texts.doorMode, 2));
    row.set("DoorModeFlagD", true);
  }
  if (texts.program) {
    row.set("WeeklyProgType", "C");
    row.set("WeeklyProgNum", weeklyProgramNamed(installation, "C", *texts.program)->get("ProgNum"));
  }
  if (texts.pin) {
    row.set("PINCode", doorCode(*texts.pin));
    row.set("PINCodeFlagD", true);
  }
}

std::vector<ReaderSetting> readerSettings(Installation& installation, const Recordset& row) {
  std::vector<ReaderSetting> all;
  for (const Column& column : columns) {
    all.push_back(
        {column.name, row.get(column.column), *column.mark != '\0' && row.get(column.mark).toBool()});
  }
  all.push_back({"DoorMode", row.get("DoorMode"), row.get("DoorModeFlagD").toBool()});
  all.push_back({"DoorProgram", programName(installation, row)});
  all.push_back({"DoorCode", row.get("PINCode"), row.get("PINCodeFlagD").toBool(), true});
  return all;
}

}  // namespace voxa
