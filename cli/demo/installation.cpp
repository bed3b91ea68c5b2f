#include "installation.h"

#include "site/site.h"
#include "work/daily_programs.h"
#include "work/installation.h"
#include "work/readers.h"
#include "work/stations.h"
#include "work/weekly_programs.h"

namespace voxa::cli {

namespace {

struct DemoReader {
  const char* name;
  const char* station;
  std::int16_t address;
  std::int16_t position;
  const char* type;
};
constexpr DemoReader readers[] = {{"Main entrance in", "Local", 1, 1, "QSX3"},
                                  {"Main entrance out", "Local", 1, 2, "QSX3"},
                                  {"Warehouse", "Local", 2, 1, "QSX3"},
                                  {"Loading ramp", "Local", 2, 2, "QSX3"},
                                  {"Server room", "Local", 3, 1, "VRMD1"},
                                  {"Annex north", "Annex", 1, 1, "QSX3"},
                                  {"Annex south", "Annex", 1, 2, "QSX3"},
                                  {"Laboratory", "Annex", 2, 1, "VRMD1"},
                                  {"Garage", "Annex", 5, 1, "QSX3"}};

struct DemoDaily {
  const char* name;
  const char* first;
  const char* second;
};
constexpr DemoDaily dailyPrograms[] = {{"Office", "08:00-12:00", "13:00-17:00"},
                                       {"Early shift", "06:00-14:00", "none"},
                                       {"Late shift", "14:00-22:00", "none"},
                                       {"Cleaning", "05:30-07:30", "20:00-24:00"}};

struct DemoWeekly {
  const char* family;
  const char* name;
  std::vector<std::string> days;
  const char* holidays;
};
// Daily programs: 0 never, 1 the whole day, from 2 on those above.
const DemoWeekly weeklyPrograms[] = {{"C", "Staff", {"2", "2", "2", "2", "2", "0", "0"}, "0"},
                                     {"C", "Production", {"3", "3", "4", "4", "3", "3", "0"}, "0"},
                                     {"E", "Caretaker", {"1", "5", "5", "5", "5", "5", "1"}, "5"}};

void addPrograms(Installation& installation) {
  for (const DemoDaily& program : dailyPrograms) {
    addDailyProgram(installation, {program.name, {program.first, program.second}});
  }
  for (const DemoWeekly& program : weeklyPrograms) {
    addWeeklyProgram(installation, program.family, {program.name, program.days, program.holidays});
  }
}

void addDoors(Installation& installation) {
  StationTexts annex;
  annex.name = "Annex";
  annex.speed = "9600";
  addStation(installation, annex);
  for (const DemoReader& reader : readers) {
    addReader(installation, {reader.name, reader.station, std::to_string(reader.address),
                             std::to_string(reader.position), reader.type});
  }
}

void addControllers(Installation& installation, site::Site& site) {
  site::ControllerInfo previous;
  for (const DemoReader& reader : readers) {
    const StationRow station = findStation(installation, reader.station);
    site::ControllerInfo info;
    info.station = station.id;
    info.address = reader.address;
    info.type = reader.type;
    info.speed = station.speed.toInt32();
    if (info.station != previous.station || info.address != previous.address) site.addController(info);
    previous = info;
  }
}

}  // namespace

void fillDemoInstallation(Installation& installation, site::Site& site) {
  addDoors(installation);
  addPrograms(installation);
  addControllers(installation, site);
}

}  // namespace voxa::cli
