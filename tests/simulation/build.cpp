#include "simulation/build.h"

#include "app/qdb.h"
#include "comm/station.h"
#include "controllers/ledger.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "simulation/session.h"
#include "site/site.h"

namespace voxa::simulation {

namespace {

constexpr int groups = 3;
constexpr int programs = 3;

std::string numbers(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) (text += text.empty() ? "" : ", ") += std::to_string(value);
  return text;
}

void addLines(const World& world, Session& session) {
  for (const Line& line : world.lines) {
    const std::string id = std::to_string(line.station);
    if (line.station != 1) {
      session.execute("insert into Stations (Id, Name, Active, ComPort) values (" + id + ", 'Line " + id +
                      "', True, " + id + ")");
    }
    if (line.dialled)
      session.execute("update Stations set Phone = '55" + id + "', ModemIniFile = 'm.ini', Active = " +
                      (world.planned ? "False" : "True") + " where Id = " + id);
    session.glob().QDB().Stations().createIniFile(line.station);
  }
  site::Site site(world.site);
  int reader = 0;
  for (const auto& [place, type] : world.controllers) {
    site.addController({place.station, place.address, type});
    for (int position = 1; position <= 2; ++position) {
      ++reader;
      session.execute(
          "insert into Readers (Id, Name, StationId, ControllerAddress, Position, ControllerType) values (" +
          std::to_string(reader) + ", 'Door " + std::to_string(reader) + "', " +
          numbers({place.station, place.address, position}) + ", '" + type + "')");
    }
    session.execute("insert into Alarms (Id, Num, Type, Name, StationId, ControllerAddress) values (" +
                    numbers({reader, 3 + reader % 5}) + ", 'M', 'Lift " + std::to_string(reader) + "', " +
                    numbers({place.station, place.address}) + ")");
  }
}

void addTimes(Session& session, Chance& chance, bool planned) {
  for (int n = 2; n < 2 + programs; ++n) {
    session.execute(
        "insert into DailyPrograms (Id, Name, StartFirstInterval, EndFirstInterval, "
        "StartSecondInterval, EndSecondInterval, "
        "DailyProgramFlagD) values (" +
        std::to_string(n) + ", 'Day " + std::to_string(n) + "', '08:00', '12:00', '13:00', '1" +
        std::to_string(chance.from(4, 9)) + ":00', True)");
  }
  for (const char* family : {"C", "E"}) {
    for (int n = 1; n <= programs; ++n) {
      std::string days;
      for (int day = 0; day < 8; ++day) days += ", " + std::to_string(chance.from(1, programs + 1));
      session.execute(
          "insert into WeeklyPrograms (ProgType, ProgNum, Name, DailyProgDay1, DailyProgDay2, "
          "DailyProgDay3, DailyProgDay4, DailyProgDay5, DailyProgDay6, DailyProgDay7, "
          "DailyProgHolidays, WeeklyProgramFlagD) values ('" +
          std::string(family) + "', " + std::to_string(n) + ", 'Week " + family + std::to_string(n) + "'" +
          days + ", True)");
    }
  }
  session.execute(
      "insert into Holidays (Id, Name, [Date], EachYear, HolidayFlagD) values (1, 'Winter', "
      "#12/25/2026#, True, True)");
  session.execute("insert into Holidays (Id, Name, [Date], EachYear, HolidayFlagD) values (" +
                  std::string(planned ? "5" : "25") + ", 'Spring', #5/3/2027#, False, True)");
}

// Doors of one controller are often granted under different programs: one of the two then stays shut.
void addCards(Session& session, Chance& chance) {
  for (int group = 1; group <= groups; ++group) {
    session.execute("insert into AccessGroups (Id, Name) values (" + std::to_string(group) + ", 'Group " +
                    std::to_string(group) + "')");
  }
  const auto readers = session.db().openRecordset("select Id from Readers order by Id");
  for (; !readers->eof(); readers->moveNext()) {
    for (int group = 1; group <= groups; ++group) {
      const int reader = readers->get("Id").toInt32();
      if (chance.once(3)) continue;
      session.execute(
          "insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum) values (" +
          numbers({group, reader}) + ", 'C', " + std::to_string(chance.from(0, programs)) + ")");
      if (reader % 2 == 0 && chance.once(2))
        session.execute("insert into LiftGroup (AccessGroup, LiftNum) values (" + numbers({group, reader}) +
                        ")");
    }
  }
  for (int number = 1; number <= World::greatestCard; ++number) {
    if (chance.once(3)) continue;
    session.execute(
        "insert into Cardholders (CardNum, Name, CardCode, AccessGroupId, PINCode, CardCodeFlagD, "
        "AccessGroupIdFlagD, ValidatedFlagD, PINCodeFlagD) values (" +
        std::to_string(number) + ", 'Holder " + std::to_string(number) + "', '" +
        zeroPadded(100 + number, 8) + "', " + numbers({chance.from(1, groups), chance.below(10'000)}) +
        ", True, True, True, True)");
  }
}

}  // namespace

void choose(World& world) {
  world.planned = world.chance.once(2);
  const int lines = world.chance.from(1, 3);
  for (int n = 1; n <= lines; ++n) {
    const auto station = static_cast<std::int16_t>(n);
    world.lines.push_back({station, n > 1 && world.chance.once(2)});
    const int controllers = world.chance.from(1, 3);
    for (int address = 1; address <= controllers; ++address) {
      const ControllerPlace place{station, static_cast<std::int16_t>(address)};
      world.controllers[place] = world.chance.once(3) ? "VRMD1" : "QSX3";
      world.assumed[place] = true;
    }
  }
}

void build(const World& world, Chance rows) {
  Session session(world, 0);
  session.makeDatabase();
  // Before there is any card: it assumes nothing of controllers that hold nothing.
  if (!session.library().ledger().open()) throw std::runtime_error("there is no ledger");
  Transaction transaction(session.library().engine());
  addLines(world, session);
  addTimes(session, rows, world.planned);
  addCards(session, rows);
  transaction.commit();
}

}  // namespace voxa::simulation
