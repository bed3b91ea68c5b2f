#include "programs/daily_program.h"

#include "comm/com.h"
#include "lines/daily_program.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

constexpr std::int16_t neverProgram = 0;
constexpr std::int16_t lastId = 99;
constexpr int timeSize = 5;  // "hh:mm"
constexpr const char* bounds[] = {"StartFirstInterval", "EndFirstInterval", "StartSecondInterval",
                                  "EndSecondInterval"};
constexpr const char* furtherBounds[] = {"Start3Interval", "End3Interval", "Start4Interval", "End4Interval"};

FieldDef furtherField(const char* bound) {
  FieldDef field;
  field.name = bound;
  field.size = timeSize;
  field.defaultValue = "23:59";
  field.allowZeroLength = true;
  return field;
}

}  // namespace

std::vector<std::string> linesOfDailyProgram(const Recordset& row, bool fourZones) {
  std::vector<DateTime> moments;
  for (const char* bound : bounds) moments.push_back(row.get(bound).toDateTime());
  if (fourZones) {
    for (const char* bound : furtherBounds) moments.push_back(row.get(bound).toDateTime());
  }
  return {dailyProgramLine(row.get("Id").toInt16(), moments)};
}

void DailyProgram::createWithFourZones() {
  fourZones_ = true;
  create();
  fourZones_ = false;
}

void DailyProgram::createFields(TableDef& td) {
  addField(td, "Id", DataType::Integer);
  addField(td, "Name", DataType::Text, 50);
  for (const char* bound : bounds) addField(td, bound, DataType::Text, timeSize);
  addField(td, "DailyProgramFlagD", DataType::Boolean);
  if (!fourZones_) return;
  for (const char* bound : furtherBounds) td.fields.push_back(furtherField(bound));
}

void DailyProgram::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
  addIndex(td, "Name", {"Name"}, IndexKind::uniqueRequired);
}

void DailyProgram::insertDefaultRecs() {
  Messages& strings = context_.messages();
  const std::string into =
      "Insert into DailyPrograms ( Id, Name, StartFirstInterval, EndFirstInterval, StartSecondInterval, "
      "EndSecondInterval";
  database().execute(into + " ) values ( 0, '" + strings.read("nameDailyProgNever") +
                     "', '00:00', '00:00', '00:00', '00:00' )");
  database().execute(into + ",DailyProgramFlagD ) values ( 1, '" + strings.read("nameDailyProgAnyTime") +
                     "', '00:00', '23:59', '23:59', '23:59', '-1' )");
}

void DailyProgram::provideFourZones() {
  const TableDef present = database().tableDef(Name());
  for (const char* bound : furtherBounds) {
    if (present.field(bound) == nullptr) database().addField(Name(), furtherField(bound));
  }
}

std::int16_t DailyProgram::getFreeId() {
  return freeId(lastId);
}

std::int16_t DailyProgram::download(std::int16_t Id, ComponentType compType, const std::string& compName,
                                    std::int16_t Params, bool* AlreadyComTested) {
  if (Id == neverProgram) return 0;
  if (!comm_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
  return send(Id, {compType, compName}, Params, showing(context_));
}

std::int16_t DailyProgram::send(std::int16_t Id, const Component& component, std::int16_t Params,
                                const Tell& teller) {
  if (Id == neverProgram) return 0;
  RowDownload what;
  what.condition = "Id = " + std::to_string(Id);
  what.row = "Daily program " + std::to_string(Id);
  what.number = Id;
  what.notFoundMnemonic = "msgCantFindDailyProg";
  what.notFoundMethod = "DailyProgram.download";
  what.notFoundResult = -1;
  what.failureMethod = "DailyProgram.download";
  what.alwaysShowsFailure = false;
  what.clearsFlags = true;
  what.lines = lines();
  return downloadRow(comm_, gen_, what, component, Params, teller);
}

std::int16_t DailyProgram::generalDownload(ComponentType compType, const std::string& compName,
                                           bool* AlreadyComTested) {
  if (!comm_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
  return sendAll({compType, compName}, showing(context_));
}

RowLines DailyProgram::lines() {
  return [this](const Recordset& row) {
    return linesOfDailyProgram(row, comm_.Com().pDailyPrograms4Zones == 1);
  };
}

std::int16_t DailyProgram::sendAll(const Component& component, const Tell& teller) {
  const auto sends = rowSends(comm_, component, "select * from DailyPrograms where Id <> 0", lines());
  const ExpectedSends expected(comm_.ledger(), sends);
  return downloadTable(comm_, "select Id from DailyPrograms", "DailyPrograms.generalDownload", teller,
                       [&](const Recordset& row) {
                         return send(row.get("Id").toInt16(), component, DLFull | DLNoMessage, teller);
                       });
}

}  // namespace voxa
