#include "installation.h"

#include "app/qdb.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "commands/component.h"
#include "commands/session.h"
#include "programs/daily_program.h"
#include "programs/weekly_program.h"
#include "site/site.h"
#include "work/look_up.h"

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
  const char* times[4];  // start and end of two intervals; 23:59 to 23:59 is none
};
constexpr DemoDaily dailyPrograms[] = {{"Office", {"08:00", "12:00", "13:00", "17:00"}},
                                       {"Early shift", {"06:00", "14:00", "23:59", "23:59"}},
                                       {"Late shift", {"14:00", "22:00", "23:59", "23:59"}},
                                       {"Cleaning", {"05:30", "07:30", "20:00", "23:59"}}};

struct DemoWeekly {
  const char* family;
  const char* name;
  std::int16_t days[7];
  std::int16_t holidays;
};
// Daily programs: 0 never, 1 the whole day, from 2 on those above.
constexpr DemoWeekly weeklyPrograms[] = {{"C", "Staff", {2, 2, 2, 2, 2, 0, 0}, 0},
                                         {"C", "Production", {3, 3, 4, 4, 3, 3, 0}, 0},
                                         {"E", "Caretaker", {1, 5, 5, 5, 5, 5, 1}, 5}};

void addAnnex(Session& session) {
  const std::int16_t id = session.qdb().Stations().getFreeId();
  const auto rows = session.rows("select * from Stations");
  rows->addNew();
  rows->set("Id", id);
  rows->set("Name", "Annex");
  rows->set("ComPort", std::int16_t{1});
  rows->set("ComSpeed", std::int32_t{9600});
  rows->set("Active", true);
  rows->update();
}

void addReaders(Session& session) {
  const auto rows = session.rows("select * from Readers");
  for (const DemoReader& reader : readers) {
    const std::int16_t station = stationNamed(session.library(), reader.station)->get("Id").toInt16();
    const std::int16_t id = session.qdb().Readers().getFreeId();
    rows->addNew();
    rows->set("Id", id);
    rows->set("Name", reader.name);
    rows->set("StationId", station);
    rows->set("ControllerType", reader.type);
    rows->set("ControllerAddress", reader.address);
    rows->set("Position", reader.position);
    rows->update();
  }
}

void addPrograms(Session& session) {
  const auto daily = session.rows("select * from DailyPrograms");
  constexpr const char* bounds[] = {"StartFirstInterval", "EndFirstInterval", "StartSecondInterval",
                                    "EndSecondInterval"};
  for (const DemoDaily& program : dailyPrograms) {
    const std::int16_t id = session.qdb().DailyPrograms().getFreeId();
    daily->addNew();
    daily->set("Id", id);
    daily->set("Name", program.name);
    for (std::size_t i = 0; i < std::size(bounds); ++i) daily->set(bounds[i], program.times[i]);
    daily->set("DailyProgramFlagD", true);
    daily->update();
  }
  const auto weekly = session.rows("select * from WeeklyPrograms");
  for (const DemoWeekly& program : weeklyPrograms) {
    const std::int16_t number = session.qdb().WeeklyPrograms().getFreeId(program.family);
    weekly->addNew();
    weekly->set("ProgType", program.family);
    weekly->set("ProgNum", number);
    weekly->set("Name", program.name);
    for (std::size_t day = 0; day < std::size(program.days); ++day) {
      weekly->set("DailyProgDay" + std::to_string(day + 1), program.days[day]);
    }
    weekly->set("DailyProgHolidays", program.holidays);
    weekly->set("WeeklyProgramFlagD", true);
    weekly->update();
  }
}

void addControllers(Session& session, site::Site& site) {
  site::ControllerInfo previous;
  for (const DemoReader& reader : readers) {
    const auto station = stationNamed(session.library(), reader.station);
    site::ControllerInfo info;
    info.station = station->get("Id").toInt16();
    info.address = reader.address;
    info.type = reader.type;
    info.speed = station->get("ComSpeed").toInt32();
    if (info.station != previous.station || info.address != previous.address) site.addController(info);
    previous = info;
  }
}

}  // namespace

void fillDemoInstallation(Session& session, site::Site& site) {
  Transaction transaction(session.library().engine(), session.qdb().database());
  addAnnex(session);
  addReaders(session);
  addPrograms(session);
  transaction.commit();
  const auto stations = session.rows("select Id from Stations");
  for (; !stations->eof(); stations->moveNext()) {
    session.qdb().Stations().createIniFile(stations->get("Id").toInt16());
  }
  addControllers(session, site);
}

void changeDaily(Session& session, const std::string& name, const std::string& firstStart) {
  const auto row = session.rows("select * from DailyPrograms");
  moveToNumberOrName(*row, "Id", name, "msgCantFindDailyProg");
  row->edit();
  row->set("StartFirstInterval", firstStart);
  row->set("DailyProgramFlagD", true);
  row->update();
}

void changeWeekly(Session& session, const std::string& name, std::int16_t holidays) {
  const auto row = session.rows("select * from WeeklyPrograms where ProgType = 'C'");
  moveToNumberOrName(*row, "ProgNum", name, "msgCantFindWeeklyProg");
  row->edit();
  row->set("DailyProgHolidays", holidays);
  row->set("WeeklyProgramFlagD", true);
  row->update();
}

}  // namespace voxa::cli
