#include "work/links.h"

#include "access/access_group.h"
#include "access/card_download.h"
#include "platform/database/database.h"
#include "work/group_reach.h"
#include "work/installation.h"

namespace voxa {

namespace {

constexpr std::int16_t defaultGroup = 0;
constexpr std::int16_t always = 0;

}  // namespace

std::unique_ptr<Recordset> linkOf(Installation& installation, std::int16_t group, std::int32_t reader) {
  return installation.database().openRecordset(
      "parameters pGroup long, pReader long; select * from AccGroupReaders where AccessGroupId = pGroup and "
      "ReaderId = pReader",
      {{"pGroup", group}, {"pReader", reader}});
}

void linkReaders(Installation& installation, std::int16_t group, const std::set<std::int32_t>& readers,
                 std::int16_t program) {
  Transaction transaction(installation.engine(), installation.database());
  const bool cards = !cardsOf(installation, group).live.empty();
  for (const std::int32_t reader : readers) {
    const auto link = linkOf(installation, group, reader);
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
  }
  markGroup(installation, group);
  transaction.commit();
}

bool isKnownController(Installation& installation, std::int16_t station, std::int16_t address,
                       std::int32_t otherThan) {
  return !installation.database()
              .openRecordset(
                  "parameters pStation long, pAddress long, pOther long; select Id from Readers where "
                  "StationId = pStation and ControllerAddress = pAddress and Id <> pOther",
                  {{"pStation", station}, {"pAddress", address}, {"pOther", otherThan}})
              ->eof();
}

void markProgramsForNewController(Installation& installation) {
  Transaction transaction(installation.engine(), installation.database());
  Database& database = installation.database();
  database.execute("update DailyPrograms set DailyProgramFlagD = True where Id <> 0");
  database.execute("update WeeklyPrograms set WeeklyProgramFlagD = True where ProgNum <> 0");
  database.execute("update Holidays set HolidayFlagD = True");
  transaction.commit();
}

bool linkNewReader(Installation& installation, std::int16_t reader) {
  linkReaders(installation, defaultGroup, {reader}, always);
  return !cardsOf(installation, defaultGroup).live.empty();
}

std::vector<Notice> sendDefaultGroup(Installation& installation, std::int16_t reader) {
  return installation.AccessGroups().send(defaultGroup, DLFull, reader).notices;
}

}  // namespace voxa
