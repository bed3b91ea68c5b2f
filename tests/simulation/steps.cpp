#include "simulation/steps.h"

#include <unistd.h>

#include <fstream>
#include <stdexcept>

#include "access/access_group.h"
#include "access/badge_format.h"
#include "access/cardholder.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "comm/inter.h"
#include "comm/station.h"
#include "controllers/ledger.h"
#include "files/command_file.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"
#include "simulation/raw_lines.h"
#include "site/site.h"

namespace voxa::simulation {

namespace {

ControllerPlace anyController(World& world) {
  auto chosen = world.controllers.begin();
  std::advance(chosen, world.chance.below(static_cast<int>(world.controllers.size())));
  return chosen->first;
}

// A row is changed and marked, as a program does that has the tables open.
Step editOf(World& world) {
  Chance& chance = world.chance;
  const std::string card = std::to_string(chance.from(1, World::greatestCard));
  const std::string few = std::to_string(chance.from(2, 4));
  std::string sql;
  switch (chance.below(9)) {
    case 0:
      sql = "update Cardholders set CardCode = '" + zeroPadded(200 + chance.below(50), 8) +
            "', CardCodeFlagD = True where CardNum = " + card;
      break;
    case 1:
      sql = "update Cardholders set AccessGroupId = " + std::to_string(chance.from(1, 3)) +
            ", AccessGroupIdFlagD = True, ValidatedFlagD = True where CardNum = " + card;
      break;
    case 2:
      sql = "update Cardholders set Validated = not Validated, ValidatedFlagD = True where CardNum = " + card;
      break;
    case 3:
      sql = "update Cardholders set PINCode = " + std::to_string(chance.below(10'000)) +
            ", PINCodeFlagD = True, Supervisor = not Supervisor, SupervisorFlagD = True, Credit = " + few +
            ", CreditFlagD = True where CardNum = " + card;
      break;
    case 4:
      sql =
          "update Cardholders set ValidationDate = #12/31/2027#, ValidationDateFlagD = True where CardNum "
          "= " +
          card;
      break;
    case 5:
      sql = "update Cardholders set Deleted = not Deleted where CardNum = " + card;
      break;
    case 6:
      sql = "update DailyPrograms set EndFirstInterval = '1" + few +
            ":30', DailyProgramFlagD = True where Id = " + few;
      break;
    case 7:
      sql = "update WeeklyPrograms set DailyProgDay3 = " + few +
            ", WeeklyProgramFlagD = True where ProgNum = 2";
      break;
    default:
      sql = "update AccGroupReaders set WeeklyProgNum = " + few + " where ReaderId = " + card;
  }
  return {"edit: " + sql, [sql](Session& session) { session.execute(sql); }};
}

// The classes that programs drive.
Step download(World& world) {
  const int kind = world.chance.below(10);
  const std::int32_t number = world.chance.from(1, World::greatestCard);
  const bool full = world.chance.once(3);
  const auto group = static_cast<std::int16_t>(world.chance.from(1, 3));
  Step step{"download " + std::to_string(kind) + " of " + std::to_string(number)};
  step.sends = true;
  step.work = [=](Session& session) {
    QDB& qdb = session.glob().QDB();
    const std::int16_t how = full ? DLFull : DLDefault;
    const auto small = static_cast<std::int16_t>(number);
    switch (kind) {
      case 0:
      case 1:
        return void(qdb.Cardholders().generalDownload(CTActiveStations, "", how));
      case 2:
        if (const std::int32_t id = qdb.Cardholders().getCardNumId(small))
          (void)qdb.Cardholders().download(static_cast<std::int16_t>(id));
        return;
      case 3:
        return void(qdb.Cardholders().createGroup(number, zeroPadded(300 + number, 8), 3, group));
      case 4:
        return void(qdb.Cardholders().delete_(small));
      case 5:
        return void(qdb.DailyPrograms().generalDownload());
      case 6:
        return void(qdb.WeeklyPrograms().generalDownload(CTStation, "Local"));
      case 7:
        return void(qdb.Holidays().generalDownload());
      case 8:
        return void(qdb.AccessGroups().download(group, how));
      default:
        return void(qdb.Cardholders().invalidate(small));
    }
  };
  return step;
}

// A client's own use of the road to the controllers: any address, any lines.
Step raw(World& world) {
  static const std::vector<std::int16_t> others = {0, 0, 95, 17, 41, 42, 43};
  const ControllerPlace place = anyController(world);
  const std::int16_t address =
      world.chance.once(2) ? static_cast<std::int16_t>(place.address + 40) : world.chance.of(others);
  const std::vector<std::string> lines = rawLines(world.chance, world.controllers.at(place) == "VRMD1");
  std::string what = "send to " + nameOf({place.station, address}) + ":";
  for (const std::string& line : lines) what += " '" + line + "'";
  Step step{what};
  step.sends = true;
  const bool gone = world.chance.once(12);
  if (gone) step.what += " without a file";
  step.work = [=](Session& session) {
    session.glob().CommandFile().write(lines);
    if (gone) fs::remove("COMMAND.TXT");
    (void)Inter(session.library()).sendCommand(place.station, address);
  };
  return step;
}

Step dial(World& world) {
  const std::int16_t station = world.chance.of(world.lines).station;
  const bool up = world.chance.below(4) != 0;
  return {(up ? "dial " : "hang up ") + std::to_string(station), [=](Session& session) {
            const Inter inter(session.library());
            (void)(up ? inter.connect(station) : inter.disconnect(station));
          }};
}

Step faultOf(World& world) {
  const ControllerPlace place = anyController(world);
  site::Faults faults;
  switch (world.chance.below(5)) {
    case 0:
      faults.silent = true;
      break;
    case 1:
      faults.refuse = static_cast<std::int16_t>(world.chance.from(2, 6));
      break;
    case 2:
      faults.goodCalls = world.chance.below(6);
      break;
    case 3:
      faults.loseAnswer = true;
      break;
    default:
      faults.stopBehind = world.chance.below(4);
  }
  if ((faults.loseAnswer || faults.stopBehind) && world.chance.once(2))
    faults.times = world.chance.from(1, 3);
  return {"fault at " + nameOf(place), {}, [place, faults, site = world.site] {
            site::Site(site).setFaults(place.station, place.address, faults);
          }};
}

// Sometimes the old one has forgotten before what it acknowledged.
Step replace(World& world) {
  const ControllerPlace place = anyController(world);
  const bool forgot = !world.planned && world.chance.once(2);
  world.assumed[place] = true;
  return {"another controller at " + nameOf(place), [=, &world](Session& session) {
            site::Site site(world.site);
            site::Faults faults;
            faults.forgets = true;
            if (forgot) {
              site.setFaults(place.station, place.address, faults);
              session.glob().CommandFile().write({"0900010000999", "31020000240000002400"});
              (void)Inter(session.library())
                  .sendCommand(place.station, static_cast<std::int16_t>(place.address + 40));
              site.clearFaults(place.station, place.address);
            }
            site.replace(place.station, place.address);
            session.library().ledger().replace(place, false);
          }};
}

// Its stations' controllers are others for the ledger then, whatever is on the line.
Step otherStation(World& world) {
  const std::int16_t station = world.chance.of(world.lines).station;
  const bool another = world.chance.once(2);
  const std::string id = std::to_string(station);
  for (auto& [place, right] : world.assumed) {
    if (place.station == station && another) right = false;
  }
  const std::string port =
      another ? ", ComPort = ComPort + 10, Phone = iif(Phone is null, null, Phone & '7')" : "";
  return {(another ? "another station " : "another name for ") + id, [=](Session& session) {
            session.execute("update Stations set Name = Name & ' new'" + port + " where Id = " + id);
          }};
}

// The row names the other type, or the right one again.
Step otherType(World& world) {
  const ControllerPlace place = anyController(world);
  const bool wrong = world.wrongType.insert(place).second;
  if (!wrong) world.wrongType.erase(place);
  const std::string type = (world.controllers.at(place) == "VRMD1") != wrong ? "VRMD1" : "QSX3";
  return {"type of " + nameOf(place) + " is " + type, [=](Session& session) {
            session.execute("update Readers set ControllerType = '" + type +
                            "' where StationId = " + std::to_string(place.station) +
                            " and ControllerAddress = " + std::to_string(place.address));
          }};
}

Step command(World& world) {
  Chance& chance = world.chance;
  const std::string card = std::to_string(chance.from(1, World::greatestCard));
  const std::vector<std::vector<std::string>> commands = {
      {"download", "all"},
      {"download", "all", "--full"},
      {"download", "cards"},
      {"card", "delete", card, "--yes"},
      {"card", "add", "Added " + card, "--number", card, "--code", "4" + card, "--group", "Group 1"},
      {"group", "revoke", "Group 2", "Door " + card},
      {"group", "grant", "Group 1", "Door " + card, "--program", "Week C2"},
      {"daily", "delete", "Day 4", "--yes"},
      {"db", "save", "saved.mdb", "--force"},
      {"db", "restore", "saved.mdb", "--yes"},
      {"db", "restore", "saved.mdb", "--yes"},
  };
  std::vector<std::string> words = chance.of(commands);
  Step step{"voxa"};
  for (const std::string& word : words) step.what += " " + word;
  words.insert(words.begin(), {world.program.string(), "--dir", world.folder.string()});
  step.alone = [words, folder = world.folder]() mutable {
    fs::current_path(folder);
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    ::execv(pointers.front(), pointers.data());
    throw std::runtime_error("cannot run " + words.front());
  };
  return step;
}

Step damage(World& world) {
  const bool gone = world.chance.once(2);
  for (auto& [place, right] : world.assumed) right = false;
  return {gone ? "the ledger is gone" : "the ledger is damaged", {}, [gone, folder = world.folder] {
            for (const char* part : {"Ledger.MDB-wal", "Ledger.MDB-shm", "Ledger.MDB"})
              fs::remove(folder / part);
            if (!gone) std::ofstream(folder / "Ledger.MDB") << "rubbish";
          }};
}

}  // namespace

Step editStep(World& world) {
  return editOf(world);
}

Step faultStep(World& world) {
  return faultOf(world);
}

Step replacedStep(World& world) {
  return replace(world);
}

void mend(const World& world) {
  site::Site site(world.site);
  for (const auto& [place, type] : world.controllers) {
    site.clearFaults(place.station, place.address);
    site.setSpeed(place.station, place.address, 4800);
  }
}

Step disturbance(World& world) {
  return raw(world);
}

Step nextStep(World& world) {
  switch (world.chance.below(24)) {
    case 0:
    case 1:
    case 2:
    case 3:
      return editStep(world);
    case 4:
    case 5:
      return faultStep(world);
    case 6:
      return {"all faults are mended", {}, [&world] { mend(world); }};
    case 7:
      return replace(world);
    case 8:
    case 9:
      return dial(world);
    case 10:
      world.clockOffset += std::int64_t{86'400} * world.chance.from(-400, 400);
      return {"the clock jumps"};
    case 11:
    case 12:
      return command(world);
    case 13:
      if (world.chance.once(4)) return damage(world);
      return world.chance.once(2) ? otherType(world) : otherStation(world);
    case 14:
    case 15:
    case 16:
    case 17:
      return raw(world);
    default:
      return download(world);
  }
}

Step sendEverything(const World& world) {
  return {"everything is sent", [&world](Session& session) {
            mend(world);
            const Inter inter(session.library());
            for (const Line& line : world.lines) (void)inter.connect(line.station);
            QDB& qdb = session.glob().QDB();
            bool tested = false;
            (void)qdb.DailyPrograms().generalDownload();
            (void)qdb.WeeklyPrograms().generalDownload();
            (void)qdb.Cardholders().generalDownload(CTActiveStations, "", DLFull, &tested);
          }};
}

}  // namespace voxa::simulation
