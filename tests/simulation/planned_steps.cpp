#include "simulation/planned_steps.h"

#include "comm/inter.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "work/carry_out.h"

namespace voxa::simulation {

namespace {

Step statement(const std::string& sql) {
  return {"edit: " + sql, [sql](Session& session) { session.execute(sql); }};
}

/// A reader that was deleted is put up again, at the other door of its controller, and granted to group 1.
void restoreReader(Session& session, const std::string& id) {
  const int number = std::stoi(id);
  const std::string other = std::to_string(number % 2 == 0 ? number - 1 : number + 1);
  const auto beside = session.db().openRecordset("select * from Readers where Id = " + other);
  if (beside->eof() || !session.db().openRecordset("select Id from Readers where Id = " + id)->eof()) return;
  session.execute(
      "insert into Readers (Id, Name, StationId, ControllerAddress, Position, ControllerType) values (" + id +
      ", 'Door " + id + "', " + beside->get("StationId").toText() + ", " +
      beside->get("ControllerAddress").toText() + ", " + std::to_string(2 - number % 2) + ", '" +
      beside->get("ControllerType").toText() + "')");
  session.execute(
      "insert into AccGroupReaders (AccessGroupId, ReaderId, WeeklyProgType, WeeklyProgNum) values (1, " +
      id + ", 'C', 2)");
}

/// What edits of one row do not reach: rows that come and go, numbers and codes that are used again.
Step rowsStep(World& world) {
  Chance& chance = world.chance;
  const int number = chance.from(1, World::greatestCard);
  const std::string card = std::to_string(number);
  const std::string few = std::to_string(chance.from(2, 4));
  switch (chance.below(10)) {
    case 7:
      return statement("delete from Readers where Id = " + few);
    case 8:
      return {"reader " + few + " is back", [few](Session& session) { restoreReader(session, few); }};
    case 9:
      return statement("update Cardholders set PINCode = iif(PINCode = 12000, 5, 12000) where CardNum = " +
                       card);
    case 0:
      return {"row " + card + " is another person's", [card, few, number](Session& session) {
                session.execute("delete from Cardholders where CardNum = " + card);
                session.execute("insert into Cardholders (CardNum, Name, CardCode, AccessGroupId) values (" +
                                card + ", 'New " + card + "', '" + zeroPadded(100 + number % 5 + 1, 8) +
                                "', " + std::to_string(number % 3 + 1) + ")");
              }};
    case 1:
      return statement("delete from Cardholders where CardNum = " + card);
    case 2:
      return statement("update Holidays set [Date] = #5/" + few + "/2027# where Id = 5");
    case 3:
      return statement("delete from Holidays where Id = 1");
    case 4:
      return statement("delete from LiftGroup where AccessGroup = 1");
    case 5:
      return {"no row is marked", [](Session& session) {
                session.execute(
                    "update Cardholders set CardCodeFlagD = False, AccessGroupIdFlagD = False, "
                    "ValidatedFlagD = False, "
                    "PINCodeFlagD = False, SupervisorFlagD = False, ValidationDateFlagD = False, CreditFlagD "
                    "= False");
                session.execute("update WeeklyPrograms set WeeklyProgramFlagD = False");
              }};
    default:
      return statement("update DailyPrograms set StartFirstInterval = '0" + few +
                       ":00', EndFirstInterval = '1" + few + ":00' where Id in (2, 3)");
  }
}

Step carrying(CarryOut how, const std::string& what) {
  Step step{"carry out" + what};
  step.sends = true;
  step.work = [how](Session& session) { (void)carryOut(session.library(), how); };
  return step;
}

}  // namespace

Step carryOutStep(World& world) {
  Chance& chance = world.chance;
  CarryOut how;
  how.dial = chance.once(2);
  std::string what = how.dial ? ", dialling" : "";
  switch (chance.below(8)) {
    case 0:
      how.scope.full = true;
      what += ", everything";
      break;
    case 1:
    case 3:
    case 4:  // one card while all else is behind mixes most
      how.scope.card = chance.from(1, World::greatestCard);
      what += ", card " + std::to_string(*how.scope.card);
      break;
    case 2:
      how.scope.places = std::set<ControllerPlace>{world.controllers.begin()->first};
      what += ", the first controller";
      break;
    default:
      break;
  }
  return carrying(how, what);
}

Step nextPlannedStep(World& world) {
  switch (world.chance.below(16)) {
    case 0:
    case 1:
    case 2:
    case 3:
    case 4:
      return editStep(world);
    case 5:
    case 6:
      return rowsStep(world);
    case 7:
    case 8:
      return faultStep(world);
    case 9:
      return {"all faults are mended", {}, [&world] { mend(world); }};
    case 10:
      return replacedStep(world);
    default:
      return carryOutStep(world);
  }
}

Step plannedDisturbance(World& world) {
  if (world.chance.once(4)) return carryOutStep(world);
  return world.chance.once(3) ? rowsStep(world) : editStep(world);
}

Step carryOutEverything(const World& world) {
  Step step = carrying({{}, true}, " everything at the end");
  step.work = [&world, work = step.work](Session& session) {
    mend(world);
    const Inter inter(session.library());
    if (!world.planned) {
      for (const Line& line : world.lines) (void)inter.connect(line.station);
    }
    work(session);
  };
  return step;
}

}  // namespace voxa::simulation
