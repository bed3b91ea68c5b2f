// Download: access groups and cards. The library keeps their marks where a controller was left out.

#include <set>

#include "access/access_group.h"
#include "access/card_download.h"
#include "access/card_record.h"
#include "access/cardholder.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "download.h"
#include "messages/strings.h"
#include "session.h"
#include "work/card_values.h"
#include "work/group_reach.h"

namespace voxa::cli {

namespace {

std::set<std::int16_t> markedGroups(Session& session) {
  std::set<std::int16_t> groups;
  const auto take = [&](const char* column, const char* query) {
    for (auto rows = session.rows(query); !rows->eof(); rows->moveNext()) {
      groups.insert(rows->get(column).toInt16());
    }
  };
  take("Id", "select Id from AccessGroups where FlagD = true");
  take("AccessGroupId", "select AccessGroupId from AccGroupReaders where FlagD = true");
  return groups;
}

std::set<std::int32_t> markedCards(Session& session, const std::string& condition) {
  std::set<std::int32_t> cards;
  const auto rows = session.rows("select * from Cardholders where " + condition);
  for (; !rows->eof(); rows->moveNext()) {
    if (cardRecord(*rows).parts.any()) cards.insert(rows->get("Id").toInt32());
  }
  return cards;
}

}  // namespace

DownloadCount Download::sendGroups(bool full) {
  DownloadCount count;
  const std::set<std::int16_t> marked = markedGroups(session_);
  std::vector<std::int16_t> groups;
  for (auto rows = session_.rows("select Id from AccessGroups order by Id"); !rows->eof(); rows->moveNext()) {
    const std::int16_t id = rows->get("Id").toInt16();
    if (component_.type == CTActiveStations && (full || marked.contains(id))) {
      groups.push_back(id);
    } else {
      ++count.unchanged;
    }
  }
  // Each group is tested again; the person has answered for all of them.
  if (!leftOut_.empty()) session_.prompts().assume(Answer::ignore);
  for (const std::int16_t id : groups) {
    const std::vector<std::int32_t> cards = cardsOf(session_.library(), id).live;
    markWhole(session_.library(), {cards.begin(), cards.end()});
    const std::int16_t status = session_.qdb().AccessGroups().download(id, DLFull);
    const bool waits = leftOut_.empty() && markedGroups(session_).contains(id);
    ++(status != 0 ? count.failed : waits ? count.waiting : count.sent);
  }
  return count;
}

DownloadCount Download::sendCards(bool full) {
  const bool everywhere = component_.type == CTActiveStations;
  DownloadCount count;
  Cardholder& cardholders = session_.qdb().Cardholders();
  const auto live = session_.rows("select Id from Cardholders where Deleted = false")->recordCount();
  const auto marked = markedCards(session_, "Deleted = false").size();
  // Those that a controller has yet to erase; a component alone is not sent them.
  const std::set<std::int32_t> deleted =
      everywhere ? markedCards(session_, "Deleted = true") : std::set<std::int32_t>{};
  const auto chosen = (full ? live : marked) + deleted.size();
  bool tested = true;
  bool failed = false;
  bool inactive = false;
  if (chosen > deleted.size()) {
    constexpr std::int16_t notInUse = 1;
    const std::int16_t status =
        cardholders.generalDownload(component_.type, component_.name, full ? DLFull : DLDefault, &tested);
    inactive = status == notInUse;
    failed = status != 0 && !inactive;
  }
  // One by one, since a download of all passes them over.
  CardDownload erasing(session_.library(), {});
  for (const std::int32_t id : deleted) erasing.send(id, {});
  erasing.finish();
  session_.show(erasing.failures());
  if (erasing.status() != 0 && erasing.failures().empty()) {
    session_.strings().display("msgCantDownload", "voxa download", Value(session_.com().popErrorList()));
  }
  failed = failed || erasing.status() != 0;
  std::size_t waiting = 0;
  if (!everywhere) {
    waiting = failed || inactive ? chosen : 0;
  } else if (failed || leftOut_.empty()) {
    waiting = markedCards(session_, "Deleted = false or Deleted = true").size();
  }
  count.sent = static_cast<int>(chosen - std::min(chosen, waiting));
  (failed ? count.failed : count.waiting) = static_cast<int>(waiting);
  count.unchanged = static_cast<int>(live - (full ? live : marked));
  return count;
}

}  // namespace voxa::cli
