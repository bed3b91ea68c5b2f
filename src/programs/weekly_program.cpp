#include "programs/weekly_program.h"

#include "comm/com.h"
#include "comm/comm_context.h"
#include "comm/row_download.h"
#include "files/conversions.h"
#include "lines/weekly_program.h"
#include "platform/database/database.h"
#include "programs/daily_program.h"

namespace voxa {

namespace {

constexpr std::int16_t alwaysProgram = 0;
constexpr int days = 7;

std::string dayColumn(int day) {
  return "DailyProgDay" + std::to_string(day);
}

WeeklyProgramRecord recordOf(const std::string& family, const Recordset& row) {
  WeeklyProgramRecord program{
      family, row.get("ProgNum").toInt16(), {}, nullToInt(row.get("DailyProgHolidays"))};
  for (int day = 1; day <= days; ++day) {
    program.days.at(static_cast<std::size_t>(day - 1)) = nullToInt(row.get(dayColumn(day)));
  }
  return program;
}

}  // namespace

std::vector<std::string> linesOfWeeklyProgram(const Recordset& row) {
  return weeklyProgramLines(recordOf(row.get("ProgType").toText(), row));
}

void WeeklyProgram::createFields(TableDef& td) {
  addField(td, "ProgType", DataType::Text, 1);
  addField(td, "ProgNum", DataType::Integer);
  addField(td, "Name", DataType::Text, 50);
  for (int day = 1; day <= days; ++day) addField(td, dayColumn(day), DataType::Integer);
  addField(td, "DailyProgHolidays", DataType::Integer);
  addField(td, "WeeklyProgramFlagD", DataType::Boolean);
}

void WeeklyProgram::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"ProgType", "ProgNum"}, IndexKind::primary);
  addIndex(td, "Name", {"ProgType", "Name"}, IndexKind::uniqueRequired);
}

std::int16_t WeeklyProgram::createRelations() {
  for (int day = 1; day <= days; ++day) {
    relate("WeeklyProgDaily" + std::to_string(day), DailyProgram::tableName, "Id", dayColumn(day));
  }
  relate("WeeklyProgHolidays", DailyProgram::tableName, "Id", "DailyProgHolidays");
  return 0;
}

void WeeklyProgram::insertDefaultRecs() {
  const std::string name = context_.messages().read("nameWeeklyProgAlways");
  for (const char* family : {"C", "E"}) {
    database().execute(
        "Insert into WeeklyPrograms(ProgType, ProgNum, Name, DailyProgDay1, DailyProgDay2, DailyProgDay3, "
        "DailyProgDay4, DailyProgDay5, DailyProgDay6, DailyProgDay7, DailyProgHolidays ) values ('" +
        std::string(family) + "', 0, '" + name + "', 1, 1, 1, 1, 1, 1, 1, 1 )");
  }
}

std::string WeeklyProgram::DefaultName() {
  std::string name;
  lookUp("Select * from WeeklyPrograms Where ProgNum = 0",
         {"msgCantFindWeeklyProg", "WeeklyPrograms.DefaultName"}, true,
         [&](Recordset& row) { name = row.get("Name").toText(); });
  return name;
}

std::string WeeklyProgram::NeverName() {
  return context_.messages().read("nameWeeklyProgNever");
}

std::int16_t WeeklyProgram::getFreeId(const std::string& ProgType) {
  const std::int16_t number = gen_.getFreeValue("ProgNum", "ProgType = '" + ProgType + "'");
  const std::int16_t last = ProgType == "e" ? 80 : 31;
  return number > last ? std::int16_t{-1} : number;
}

std::string WeeklyProgram::getName(const std::string& ProgType, std::int16_t ProgNum) {
  std::string name;
  lookUp("select Name from WeeklyPrograms where ProgType = '" + ProgType +
             "' and ProgNum = " + std::to_string(ProgNum),
         {"msgCantFindWeeklyProg", "WeeklyPrograms.getName"}, false,
         [&](Recordset& row) { name = row.get("Name").toText(); });
  return name;
}

std::int16_t WeeklyProgram::getProgNum(const std::string& ProgType, const std::string& Name) {
  std::int16_t number = 0;
  lookUp("select ProgNum from WeeklyPrograms where ProgType = '" + ProgType + "' and Name = '" + Name + "'",
         {"msgCantFindWeeklyProg", "WeeklyPrograms.getProgNum"}, false,
         [&](Recordset& row) { number = row.get("ProgNum").toInt16(); });
  return number;
}

std::int16_t WeeklyProgram::download(const std::string& ProgType, std::int16_t ProgNum,
                                     ComponentType compType, const std::string& compName, std::int16_t Params,
                                     bool* AlreadyComTested) {
  if (ProgNum == alwaysProgram) return 0;
  if (!comm_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
  return send(ProgType, ProgNum, {compType, compName}, Params, showing(context_));
}

std::int16_t WeeklyProgram::send(const std::string& ProgType, std::int16_t ProgNum,
                                 const Component& component, std::int16_t Params, const Tell& teller) {
  if (ProgNum == alwaysProgram) return 0;
  RowDownload what;
  what.condition = " ProgType = '" + ProgType + "' and ProgNum = " + std::to_string(ProgNum);
  what.row = "Weekly program " + ProgType + " " + std::to_string(ProgNum);
  what.number = ProgNum;
  what.notFoundMnemonic = "msgCantFindWeeklyProg";
  what.notFoundMethod = "WeeklyProgram.download";
  what.notFoundResult = -1;
  what.failureMethod = "WeeklyPrograms.download";
  what.alwaysShowsFailure = true;
  what.clearsFlags = true;
  // The caller's spelling of the family decides, not the row's.
  what.lines = [&](const Recordset& row) { return weeklyProgramLines(recordOf(ProgType, row)); };
  return downloadRow(comm_, gen_, what, component, Params, teller);
}

std::int16_t WeeklyProgram::generalDownload(ComponentType compType, const std::string& compName,
                                            const std::string& whereExpr, bool* AlreadyComTested) {
  if (!comm_.Com().readyToSend(compType, compName, AlreadyComTested)) return 0;
  return sendAll({compType, compName}, whereExpr, showing(context_));
}

std::int16_t WeeklyProgram::sendAll(const Component& component, const std::string& whereExpr,
                                    const Tell& teller) {
  if (const std::int16_t failed = gen_.setTableFlagsD(true, whereExpr); failed != 0) return failed;
  bool failed = true;
  const std::int16_t status = context_.attempt([&] {
    const std::string where = whereExpr.empty() ? "" : " WHERE " + whereExpr;
    const auto sends =
        rowSends(comm_, component, "select * from WeeklyPrograms" + where, linesOfWeeklyProgram);
    const ExpectedSends expected(comm_.ledger(), sends);
    const std::int16_t first = downloadEach(
        comm_, "select ProgType, ProgNum from WeeklyPrograms" + where, [&](const Recordset& row) {
          return send(row.get("ProgType").toText(), row.get("ProgNum").toInt16(), component,
                      DLFull | DLNoMessage, teller);
        });
    failed = false;
    return first;
  });
  if (failed) tell(context_, teller, {"msgCantDownload", "WeeklyPrograms.generalDownload"});
  return status;
}

}  // namespace voxa
