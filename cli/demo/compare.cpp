#include "compare.h"

#include <algorithm>
#include <iostream>

#include "commands/held_programs.h"
#include "output/table_output.h"
#include "site/site.h"
#include "work/daily_programs.h"
#include "work/installation.h"
#include "work/readers.h"
#include "work/stations.h"
#include "work/weekly_programs.h"

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

std::string wantedIntervals(const DailyProgramRow& program) {
  std::string text;
  for (const std::string& interval : program.intervals) {
    if (interval != "none") text += (text.empty() ? "" : " ") + interval;
  }
  return text.empty() ? "none" : text;
}

std::string wantedDays(const WeeklyProgramRow& program) {
  std::string text;
  for (std::size_t day = 0; day < daysAWeek; ++day) {
    text += (text.empty() ? "" : " ") + std::to_string(program.week.at(day).id);
  }
  return text + ", holidays " + std::to_string(program.week.at(holidaysPlace).id);
}

Programs ofDatabase(Installation& installation, std::map<std::string, std::string>& names) {
  Programs programs;
  const auto add = [&](const std::string& key, const std::string& name, const std::string& text) {
    programs[key] = text;
    names[key] = key + " " + name;
  };
  // Programs 0 (never, always) are known to every controller and not sent.
  for (const DailyProgramRow& program : listDailyPrograms(installation)) {
    if (program.id != 0) add(dailyKey(program.id), program.name, wantedIntervals(program));
  }
  for (const WeeklyProgramRow& program : listWeeklyPrograms(installation)) {
    if (program.number != 0) {
      add(weeklyKey(program.family, program.number), program.name, wantedDays(program));
    }
  }
  return programs;
}

/// The controllers on stations in use, with the station's name.
std::map<ControllerPlace, std::string> controllersInUse(Installation& installation) {
  std::map<std::int16_t, bool> inUse;
  for (const StationRow& station : listStations(installation)) inUse[station.id] = station.active;
  std::map<ControllerPlace, std::string> controllers;
  for (const ReaderRow& reader : listReaders(installation)) {
    if (inUse.at(reader.stationId)) {
      controllers[{reader.stationId, reader.address.toInt16()}] = reader.station;
    }
  }
  return controllers;
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

std::vector<Verdict> compareWithControllers(Installation& installation, site::Site& site) {
  std::map<std::string, std::string> names;
  const Programs wanted = ofDatabase(installation, names);
  std::vector<Verdict> verdicts;
  for (const auto& [place, station] : controllersInUse(installation)) {
    const Programs held = ofController(site.snapshot(place.station, place.address));
    Programs all = wanted;
    all.insert(held.begin(), held.end());
    for (const auto& [key, text] : all) {
      const auto name = names.find(key);
      verdicts.push_back({station + " " + std::to_string(place.address),
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
