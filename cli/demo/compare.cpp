#include "compare.h"

#include <algorithm>
#include <iostream>

#include "commands/held_programs.h"
#include "commands/session.h"
#include "output/table_output.h"
#include "platform/database/database.h"
#include "site/site.h"

namespace voxa::cli {

namespace {

/// Programs by kind and number ("daily 02", "weekly C1"), as text that can be compared.
using Programs = std::map<std::string, std::string>;

std::string dailyKey(int number) {
  return std::string("daily ") + (number < 10 ? " " : "") + std::to_string(number);
}

std::string weeklyKey(const std::string& family, int number) {
  return "weekly " + family + std::to_string(number);
}

std::string wantedIntervals(const Recordset& row) {
  std::string text;
  for (const auto& [startColumn, endColumn] : {std::pair("StartFirstInterval", "EndFirstInterval"),
                                               std::pair("StartSecondInterval", "EndSecondInterval")}) {
    const std::string start = row.get(startColumn).toText();
    const std::string end = row.get(endColumn).toText();
    if (start == end) continue;
    if (!text.empty()) text += ' ';
    text += start + "-" + (end == "23:59" ? "24:00" : end);  // the last minute belongs to the day
  }
  return text.empty() ? "none" : text;
}

std::string wantedDays(const Recordset& row) {
  std::string text;
  for (int day = 1; day <= 7; ++day) {
    text += (day == 1 ? "" : " ") + row.get("DailyProgDay" + std::to_string(day)).toText();
  }
  return text + ", holidays " + row.get("DailyProgHolidays").toText();
}

Programs ofDatabase(Session& session, std::map<std::string, std::string>& names) {
  Programs programs;
  const auto add = [&](const std::string& key, const Recordset& row, const std::string& text) {
    programs[key] = text;
    names[key] = key + " " + row.get("Name").toText();
  };
  // Programs 0 (never, always) are known to every controller and not sent.
  for (auto rows = session.rows("select * from DailyPrograms where Id > 0"); !rows->eof(); rows->moveNext()) {
    add(dailyKey(rows->get("Id").toInt16()), *rows, wantedIntervals(*rows));
  }
  for (auto rows = session.rows("select * from WeeklyPrograms where ProgNum > 0"); !rows->eof();
       rows->moveNext()) {
    add(weeklyKey(rows->get("ProgType").toText(), rows->get("ProgNum").toInt16()), *rows, wantedDays(*rows));
  }
  return programs;
}

Programs ofController(const site::Snapshot& snapshot) {
  Programs programs;
  for (const auto& program : snapshot.dailyPrograms)
    programs[dailyKey(program.number)] = intervalsText(program);
  for (const auto& program : snapshot.weeklyPrograms) {
    programs[weeklyKey(std::string(1, program.family), program.number)] = daysText(program);
  }
  return programs;
}

std::string textOf(const Programs& programs, const std::string& key) {
  const auto found = programs.find(key);
  return found == programs.end() ? "" : found->second;
}

}  // namespace

std::vector<Verdict> compareWithControllers(Session& session, site::Site& site) {
  std::map<std::string, std::string> names;
  const Programs wanted = ofDatabase(session, names);
  std::vector<Verdict> verdicts;
  const auto controllers = session.rows(
      "select distinct StationId, ControllerAddress, Stations.Name as Station from Readers inner join "
      "Stations on Readers.StationId = Stations.Id where Stations.Active = true "
      "order by StationId, ControllerAddress");
  for (; !controllers->eof(); controllers->moveNext()) {
    const std::int16_t address = controllers->get("ControllerAddress").toInt16();
    const Programs held = ofController(site.snapshot(controllers->get("StationId").toInt16(), address));
    Programs all = wanted;
    all.insert(held.begin(), held.end());
    for (const auto& [key, text] : all) {
      const auto name = names.find(key);
      verdicts.push_back({controllers->get("Station").toText() + " " + std::to_string(address),
                          name == names.end() ? key : name->second, textOf(wanted, key), textOf(held, key)});
    }
  }
  return verdicts;
}

int printVerdicts(const std::vector<Verdict>& verdicts, bool onlyDifferences) {
  TableOutput table({"Controller", "Program", "Database", "Controller holds", "Verdict"});
  const auto cell = [](const std::string& text) { return text.empty() ? Value() : Value(text); };
  for (const Verdict& verdict : verdicts) {
    if (onlyDifferences && verdict.same()) continue;
    table.add({verdict.controller, verdict.program, cell(verdict.wanted), cell(verdict.held),
               verdict.same() ? "same" : "DIFFERS"});
  }
  if (!table.empty()) table.print(std::cout, false);
  const auto same =
      std::count_if(verdicts.begin(), verdicts.end(), [](const Verdict& v) { return v.same(); });
  std::cout << same << " of " << verdicts.size() << " are the same.\n";
  return static_cast<int>(verdicts.size()) - static_cast<int>(same);
}

}  // namespace voxa::cli
