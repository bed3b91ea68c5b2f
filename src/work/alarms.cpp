#include "work/alarms.h"

#include "platform/database/database.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/readers.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::int16_t lastNumber = 99;
constexpr const char* liftType = "M";

std::string alarmType(const std::string& text) {
  const std::string type = toUpper(text);
  if (type.size() != 1 || type < "A" || type > "Z") {
    throw Refusal("the type of an alarm is a letter from A to Z, not " + text);
  }
  if (type == liftType) throw Refusal("type M is a lift output: add it with 'voxa lift add'");
  return type;
}

std::vector<AlarmRow> alarmRows(Installation& installation, const Value& only) {
  std::vector<AlarmRow> alarms;
  const auto rows = installation.database().openRecordset(
      "parameters pOnly long; select Alarms.Id, Alarms.Name as Alarm, Type, Stations.Name as Station, "
      "ControllerAddress, Num, AlarmFlagD from Alarms inner join Stations on Alarms.StationId = Stations.Id "
      "where (Type <> 'M' or Type is null) and (Alarms.Id = pOnly or pOnly is null) order by Alarms.Id",
      {{"pOnly", only}});
  for (; !rows->eof(); rows->moveNext()) {
    alarms.push_back({rows->get("Id"), rows->get("Alarm"), rows->get("Type"), rows->get("Station"),
                      rows->get("ControllerAddress"), rows->get("Num"), rows->get("AlarmFlagD").toBool()});
  }
  return alarms;
}

}  // namespace

void setAlarmRow(Installation& installation, Recordset& row, const AlarmTexts& texts) {
  if (texts.name) row.set("Name", checkedName(*texts.name));
  if (texts.station) row.set("StationId", stationNamed(installation, *texts.station)->get("Id"));
  if (texts.address) row.set("ControllerAddress", controllerAddress(*texts.address));
  if (texts.number) row.set("Num", numberWithin("the output", *texts.number, 1, lastNumber));
}

std::int32_t addAlarmRow(Installation& installation, const AlarmTexts& texts, const std::string& type,
                         const std::string& noun) {
  std::int32_t id = 1;
  const auto alarms = installation.database().openRecordset("select * from Alarms order by Id");
  for (; !alarms->eof() && alarms->get("Id").toInt32() == id; alarms->moveNext()) ++id;
  alarms->addNew();
  alarms->set("Id", id);
  alarms->set("Type", type);
  alarms->set("AlarmFlagD", type != liftType);
  setAlarmRow(installation, *alarms, texts);
  storeRow(installation, *alarms, "Alarms", noun);
  return id;
}

std::int32_t addAlarm(Installation& installation, const AlarmTexts& texts) {
  if (!texts.name || !texts.type || !texts.station || !texts.address || !texts.number) {
    throw Refusal("an alarm needs a name, a type, a station, the address of its controller and its number");
  }
  return addAlarmRow(installation, texts, alarmType(*texts.type), "alarm");
}

void changeAlarm(Installation& installation, const std::string& alarm, const AlarmTexts& texts) {
  const auto row = alarmNamed(installation, AlarmKind::alarm, alarm);
  row->edit();
  setAlarmRow(installation, *row, texts);
  if (texts.type) row->set("Type", alarmType(*texts.type));
  if (texts.type || texts.station || texts.address || texts.number) row->set("AlarmFlagD", true);
  storeRow(installation, *row, "Alarms", "alarm");
}

void deleteAlarm(Installation& installation, const std::string& alarm) {
  alarmNamed(installation, AlarmKind::alarm, alarm)->remove();
}

AlarmRow findAlarm(Installation& installation, const std::string& alarm) {
  const Value id = alarmNamed(installation, AlarmKind::alarm, alarm)->get("Id");
  const auto rows = alarmRows(installation, id);
  if (rows.empty()) throw Refusal("the alarm " + alarm + " is on no station: give it one with --station");
  return rows.front();
}

std::vector<AlarmRow> listAlarms(Installation& installation) {
  return alarmRows(installation, Value());
}

}  // namespace voxa
