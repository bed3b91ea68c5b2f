#include "links.h"

#include "access/access_group.h"
#include "app/qdb.h"
#include "forget_cards.h"
#include "session.h"

namespace voxa::cli {

namespace {

constexpr std::int16_t defaultGroup = 0;
constexpr std::int16_t always = 0;

}  // namespace

std::unique_ptr<Recordset> linkOf(Session& session, std::int16_t group, std::int32_t reader) {
  return session.rows("select * from AccGroupReaders where AccessGroupId = " + std::to_string(group) +
                      " and ReaderId = " + std::to_string(reader));
}

void linkReader(Session& session, std::int16_t group, std::int32_t reader, std::int16_t program) {
  const bool cards = !cardsOf(session, group).live.empty();
  Transaction transaction(session.library().engine(), session.qdb().database());
  const auto link = linkOf(session, group, reader);
  if (link->eof()) {
    link->addNew();
    link->set("AccessGroupId", group);
    link->set("ReaderId", reader);
  } else {
    link->edit();
  }
  link->set("WeeklyProgType", "C");
  link->set("WeeklyProgNum", program);
  link->set("FlagD", cards);
  link->update();
  markGroup(session, group);
  transaction.commit();
}

bool isKnownController(Session& session, std::int16_t station, std::int16_t address, std::int32_t otherThan) {
  return !session
              .rows("select Id from Readers where StationId = " + std::to_string(station) +
                    " and ControllerAddress = " + std::to_string(address) + " and Id <> " +
                    std::to_string(otherThan))
              ->eof();
}

void markProgramsForNewController(Session& session) {
  Transaction transaction(session.library().engine(), session.qdb().database());
  Database& database = session.qdb().database();
  database.execute("update DailyPrograms set DailyProgramFlagD = True where Id <> 0");
  database.execute("update WeeklyPrograms set WeeklyProgramFlagD = True where ProgNum <> 0");
  database.execute("update Holidays set HolidayFlagD = True");
  transaction.commit();
}

void linkNewReader(Session& session, std::int16_t reader) {
  // Without cards there is nothing to send, and no controller to ask for.
  if (cardsOf(session, defaultGroup).live.empty()) {
    return linkReader(session, defaultGroup, reader, always);
  }
  markGroup(session, defaultGroup);
  session.qdb().AccessGroups().addReaderToDefaultGroup(reader);
}

}  // namespace voxa::cli
