#include "links.h"

#include <algorithm>

#include "access/access_group.h"
#include "app/qdb.h"
#include "forget_cards.h"
#include "installation.h"

namespace voxa::cli {

namespace {

constexpr std::int16_t defaultGroup = 0;
constexpr std::int16_t always = 0;

}  // namespace

std::unique_ptr<Recordset> linkOf(const Installation& installation, std::int16_t group, std::int32_t reader) {
  return installation.rows("select * from AccGroupReaders where AccessGroupId = " + std::to_string(group) +
                           " and ReaderId = " + std::to_string(reader));
}

void linkReader(Installation& installation, std::int16_t group, std::int32_t reader, std::int16_t program) {
  const bool cards = !cardsOf(installation, group).live.empty();
  Transaction transaction(installation.library().engine(), installation.qdb().database());
  const auto before = reachOf(installation, group);
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
  markGroup(installation, group, reachOf(installation, group).size() > before.size());
  transaction.commit();
}

void linkNewReader(Installation& installation, std::int16_t reader) {
  const auto row = installation.rows("select * from Readers where Id = " + std::to_string(reader));
  // Without cards there is nothing to send, and no controller to ask for.
  if (cardsOf(installation, defaultGroup).live.empty()) {
    return linkReader(installation, defaultGroup, reader, always);
  }
  const auto reach = reachOf(installation, defaultGroup);
  const bool known = std::any_of(reach.begin(), reach.end(), [&](const ReachedController& reached) {
    return reached.controller.station == row->get("StationId").toInt16() &&
           reached.controller.address == row->get("ControllerAddress").toInt16();
  });
  // The download below adds code, rights and validity to what is marked: a new controller wants all of it.
  if (!known) markGroup(installation, defaultGroup, true);
  installation.qdb().AccessGroups().addReaderToDefaultGroup(reader);
}

}  // namespace voxa::cli
