#include "controllers/assumptions.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "access/access_context.h"
#include "access/card_doors.h"
#include "access/card_record.h"
#include "comm/com.h"
#include "controllers/card_state.h"
#include "controllers/controller_list.h"
#include "controllers/ledger_file.h"
#include "controllers/thing_slot.h"
#include "files/conversions.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"

namespace voxa {

namespace {

// The parts of a card's record that each have a flag, as the fields of its lines.
std::vector<CardField> fieldsOf(std::size_t part) {
  switch (part) {
    case cardCodePart:
      return {CardField::code};
    case accessGroupPart:
      return {CardField::weekly};
    case validatedPart:
      return {CardField::door1, CardField::door2};
    case pinCodePart:
      return {CardField::pin};
    case supervisorPart:
      return {CardField::supervisor};
    case validationDatePart:
      return {CardField::lastDay};
    default:
      return {CardField::credit};
  }
}

class Assumptions {
 public:
  Assumptions(const LedgerFile& file, AccessContext& context, Database& main)
      : file_(file), context_(context), main_(main), controllers_(file.database(), context) {}

  void programs() {
    std::set<ControllerPlace> places;
    const auto readers = main_.openRecordset("select StationId, ControllerAddress from Readers");
    for (; !readers->eof(); readers->moveNext()) {
      const ControllerPlace place{nullToInt(readers->get("StationId")),
                                  nullToInt(readers->get("ControllerAddress"))};
      if (isOfController(place.address)) places.insert(place);
    }
    const bool fourZones = context_.Com().pDailyPrograms4Zones == 1;
    const DateTime today = context_.clock().now();
    rows(places, "select * from DailyPrograms where Id <> 0", "DailyProgramFlagD",
         [&](const Recordset& row) { return linesOfDailyProgram(row, fourZones); });
    rows(places, "select * from WeeklyPrograms where ProgNum <> 0", "WeeklyProgramFlagD",
         [&](const Recordset& row) { return linesOfWeeklyProgram(row); });
    rows(places, "select * from Holidays", "HolidayFlagD",
         [&](const Recordset& row) { return linesOfHoliday(row, today); });
  }

  void cards() {
    std::map<std::int16_t, std::vector<Granted>> groups;
    // Deleted cards come last: a number that a live card has is that one's.
    const auto rows =
        main_.openRecordset("select * from Cardholders order by Deleted desc, AccessGroupId, CardNum");
    for (; !rows->eof(); rows->moveNext()) {
      const std::int16_t group = nullToInt(rows->get("AccessGroupId"));
      const auto [reached, added] = groups.try_emplace(group);
      if (added) reached->second = grantedBy(group, rows->get("Id").toInt32());
      const CardRecord card = cardRecord(*rows);
      if (card.number < 1 || card.number >= firstSlotBehindCards) continue;
      for (const Granted& granted : reached->second) assume(granted, card);
    }
  }

 private:
  struct Granted {
    GrantedController controller;
    std::vector<std::int16_t> lifts;
  };
  std::vector<Granted> grantedBy(std::int16_t group, std::int32_t cardholder) {
    std::vector<Granted> all;
    for (GrantedController& controller : controllersOf(main_, group)) {
      if (!isOfController(controller.address)) continue;
      std::vector<std::int16_t> lifts = liftOutputs(main_, cardholder, controller);
      all.push_back({std::move(controller), std::move(lifts)});
    }
    return all;
  }

  void rows(const std::set<ControllerPlace>& places, const char* query, const char* flag,
            const std::function<std::vector<std::string>(const Recordset&)>& linesOf) {
    for (auto row = main_.openRecordset(query); !row->eof(); row->moveNext()) {
      std::string text;
      try {
        text = linesOf(*row).front();
      } catch (const Error&) {
        continue;  // such a row was never sent
      }
      for (const ControllerPlace& place : places) {
        const LedgerController& controller = controllers_.at(place);
        const SentLine line = sentLine(text, controller.type);
        if (line.fit != SentLine::Fit::certain) continue;
        const Possible state = row->get(flag).toBool() ? Possible::unknown() : Possible::assumed(line.value);
        file_.insertThing().execute(
            {controller.id * slotsOfController + slotOf(line.kind, line.number), state.text()});
      }
    }
  }

  void assume(const Granted& granted, const CardRecord& card) {
    const LedgerController& controller = controllers_.at(granted.controller);
    const std::int32_t slot = controller.id * slotsOfController + slotOf(ThingKind::card, card.number);
    CardRecord whole = card;
    whole.parts.set();
    std::vector<std::string> lines;
    try {
      lines = cardLines(whole, granted.controller.rights(), granted.lifts, granted.controller.type,
                        context_.clock().now());
    } catch (const Error&) {
      return;  // such a row was never sent
    }
    if (!cards_.insert(slot).second) return;
    CardState state;
    for (const std::string& text : lines) {
      const SentLine line = sentLine(text, controller.type);
      if (line.field == CardField::lift) {
        state.setLift(line.output, card.parts.none() ? Possible::assumed("1") : Possible::unknown());
      } else {
        state.part(line.field) = Possible::assumed(line.value);
      }
    }
    for (std::size_t part = 0; part < cardPartCount; ++part) {
      if (!card.parts[part]) continue;
      for (const CardField field : fieldsOf(part)) state.part(field) = Possible::unknown();
    }
    file_.insertThing().execute({slot, state.text()});
  }

  const LedgerFile& file_;
  AccessContext& context_;
  Database& main_;
  ControllerList controllers_;
  std::set<std::int32_t> cards_;  // the rows of the ledger that have one
};

}  // namespace

void assumeRows(const LedgerFile& file, AccessContext& context) {
  const std::shared_ptr<Database> main = context.DB();
  if (!main) return;
  try {
    Assumptions assumptions(file, context, *main);
    assumptions.programs();
    assumptions.cards();
  } catch (const Error& error) {
    // What is no main database of ours says nothing of controllers.
    if (error.number() != err::dbUnknownTable && error.number() != err::dbTooFewParameters) throw;
  }
}

}  // namespace voxa
