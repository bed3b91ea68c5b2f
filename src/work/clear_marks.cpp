#include "work/clear_marks.h"

#include <algorithm>
#include <set>

#include "access/card_record.h"
#include "comm/com.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "work/installation.h"

namespace voxa {

namespace {

/// What is planned anywhere.
struct Open {
  std::set<std::pair<ThingKind, std::int32_t>> things;
  std::set<std::int16_t> groups;  ///< that a controller cannot be told of
  bool times = false;             ///< there is a controller that can be told of no program
};

Open openOf(const WholePlan& plan) {
  Open open;
  const auto leave = [&](const LeftOut& row) { open.things.insert({row.kind, row.number}); };
  for (const LeftOut& row : plan.leftOut) leave(row);
  open.groups = plan.groupsLeftOut;
  for (const PlannedController& controller : plan.controllers) {
    for (const LeftOut& row : controller.plan.leftOut) leave(row);
    for (const PlanItem& item : controller.plan.items) open.things.insert({item.kind, item.number});
    open.times = open.times || controller.plan.hasNoForm;
    open.groups.insert(controller.plan.groupsLeftOut.begin(), controller.plan.groupsLeftOut.end());
  }
  return open;
}

void clear(Recordset& row, const std::vector<std::string>& flags) {
  row.edit();
  for (const std::string& flag : flags) row.set(flag, false);
  row.update();
}

void clearCards(Database& database, const Open& open, std::optional<std::int32_t> only) {
  static const std::string marked =
      "(CardCodeFlagD = true or AccessGroupIdFlagD = true or ValidatedFlagD = true or PINCodeFlagD = true or "
      "SupervisorFlagD = true or ValidationDateFlagD = true or CreditFlagD = true)";
  std::vector<std::string> flags;
  for (std::size_t part = 0; part < cardPartCount; ++part) flags.emplace_back(flagColumn(part));
  const auto rows =
      only ? database.openRecordset(
                 "parameters pNumber long; select * from Cardholders where CardNum = pNumber and " + marked,
                 {{"pNumber", *only}})
           : database.openRecordset("select * from Cardholders where " + marked);
  for (; !rows->eof(); rows->moveNext()) {
    const Value number = rows->get("CardNum");
    if (!number.isNull() && open.things.contains({ThingKind::card, number.toInt32()})) continue;
    const bool deleted = rows->get("Deleted").toBool();
    if (!deleted && open.groups.contains(nullToInt(rows->get("AccessGroupId")))) continue;
    clear(*rows, flags);
  }
}

void clearPrograms(Database& database, const Open& open) {
  const auto clearRows = [&](const char* query, const char* column, const char* flag, const auto& kindOf) {
    for (const auto rows = database.openRecordset(query); !rows->eof(); rows->moveNext()) {
      if (!open.things.contains({kindOf(*rows), rows->get(column).toInt32()})) clear(*rows, {flag});
    }
  };
  clearRows("select * from DailyPrograms where Id <> 0 and DailyProgramFlagD = true", "Id",
            "DailyProgramFlagD", [](const Recordset&) { return ThingKind::daily; });
  clearRows("select * from WeeklyPrograms where ProgNum <> 0 and WeeklyProgramFlagD = true", "ProgNum",
            "WeeklyProgramFlagD", [](const Recordset& row) {
              return row.get("ProgType") == Value("C") ? ThingKind::weeklyC : ThingKind::weeklyE;
            });
  clearRows("select * from Holidays where HolidayFlagD = true", "Id", "HolidayFlagD",
            [](const Recordset&) { return ThingKind::holiday; });
}

/// A group's mark stands for those of its cards.
void clearGroups(Database& database) {
  std::set<std::int16_t> marked;
  const auto cards = database.openRecordset(
      "select distinct AccessGroupId from Cardholders where Deleted = false and (CardCodeFlagD = true or "
      "AccessGroupIdFlagD = true or ValidatedFlagD = true)");
  for (; !cards->eof(); cards->moveNext()) marked.insert(nullToInt(cards->get("AccessGroupId")));
  const auto clearRows = [&](const char* query, const char* column) {
    for (const auto rows = database.openRecordset(query); !rows->eof(); rows->moveNext()) {
      if (!marked.contains(rows->get(column).toInt16())) clear(*rows, {"FlagD"});
    }
  };
  clearRows("select * from AccessGroups where FlagD = true", "Id");
  clearRows("select * from AccGroupReaders where FlagD = true", "AccessGroupId");
}

}  // namespace

void endCredits(Installation& installation, const std::set<std::int32_t>& onTheirWay) {
  std::vector<std::int32_t> ended;
  for (const std::int32_t number : onTheirWay) {
    const auto row = installation.database().openRecordset(
        "parameters pNumber long; select Id from Cardholders where CardNum = pNumber and Deleted = false and "
        "CreditFlagD = true",
        {{"pNumber", number}});
    if (row->eof()) ended.push_back(number);
  }
  installation.ledger().endCredits(ended);
}

WholePlan clearMarks(Installation& installation, const PlanScope& scope) {
  Database& database = installation.database();
  PlanScope everywhere = scope;
  everywhere.places.reset();
  Transaction transaction(installation.engine(), database);
  WholePlan plan = planAll(installation, everywhere);
  const Open open = openOf(plan);
  clearCards(database, open, scope.card);
  if (!scope.card) {
    if (!open.times) clearPrograms(database, open);
    clearGroups(database);
  }
  transaction.commit();
  endCredits(installation, plan.creditsOnTheirWay);
  if (scope.places) {
    std::erase_if(plan.controllers, [&](const PlannedController& controller) {
      return !scope.places->contains(controller.plan.place);
    });
  }
  return plan;
}

}  // namespace voxa
