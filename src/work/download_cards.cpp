// The download of groups and cards. Their members keep the marks where a controller was passed over.

#include <set>

#include "access/access_group.h"
#include "access/card_download.h"
#include "access/card_record.h"
#include "access/cardholder.h"
#include "comm/com.h"
#include "platform/database/database.h"
#include "work/card_values.h"
#include "work/download_steps.h"
#include "work/group_reach.h"
#include "work/installation.h"

namespace voxa {

namespace {

std::set<std::int16_t> markedGroups(Installation& installation) {
  std::set<std::int16_t> groups;
  const auto take = [&](const char* column, const char* query) {
    for (auto rows = installation.database().openRecordset(query); !rows->eof(); rows->moveNext()) {
      groups.insert(rows->get(column).toInt16());
    }
  };
  take("Id", "select Id from AccessGroups where FlagD = true");
  take("AccessGroupId", "select AccessGroupId from AccGroupReaders where FlagD = true");
  return groups;
}

/// A card that a download has to do with.
struct Card {
  std::int32_t id = 0;
  std::string name;
  bool deleted = false;
  bool marked = false;
};

std::vector<Card> cards(Installation& installation) {
  std::vector<Card> all;
  const auto rows = installation.database().openRecordset("select * from Cardholders");
  for (; !rows->eof(); rows->moveNext()) {
    all.push_back({rows->get("Id").toInt32(), rows->get("Name").toText(), rows->get("Deleted").toBool(),
                   cardRecord(*rows).parts.any()});
  }
  return all;
}

std::set<std::int32_t> markedCards(Installation& installation) {
  std::set<std::int32_t> marked;
  for (const Card& card : cards(installation)) {
    if (card.marked) marked.insert(card.id);
  }
  return marked;
}

/// One by one, since a download of all passes them over. Whether every controller could be told.
bool eraseDeleted(Installation& installation, const std::vector<Card>& chosen, Report& report) {
  CardDownload erasing(installation, {});
  for (const Card& card : chosen) {
    if (card.deleted) erasing.send(card.id, {});
  }
  erasing.finish();
  const std::vector<Notice>& failures = erasing.failures();
  report.notices.insert(report.notices.end(), failures.begin(), failures.end());
  if (erasing.status() != 0 && failures.empty()) {
    tell(installation, into(report.notices),
         {"msgCantDownload", "voxa download", Value(installation.Com().popErrorList())});
  }
  return erasing.status() == 0;
}

}  // namespace

Report downloadGroups(Installation& installation, const DownloadTarget& target) {
  Report report;
  const std::set<std::int16_t> marked = markedGroups(installation);
  std::vector<std::pair<std::int16_t, std::string>> groups;
  const auto rows = installation.database().openRecordset("select Id, Name from AccessGroups order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t id = rows->get("Id").toInt16();
    if (target.component.type == CTActiveStations && (target.full || marked.contains(id))) {
      groups.emplace_back(id, rows->get("Name").toText());
    } else {
      report.rows.push_back({rows->get("Name").toText(), Outcome::unchanged});
    }
  }
  for (const auto& [id, name] : groups) {
    const std::vector<std::int32_t> live = cardsOf(installation, id).live;
    markWhole(installation, {live.begin(), live.end()});
    Report::Row& row = report.rows.emplace_back(Report::Row{name});
    SentCards sent = installation.AccessGroups().send(id, DLFull, 0);
    row.notices = std::move(sent.notices);
    const bool waits = target.silent.empty() && markedGroups(installation).contains(id);
    row.outcome = sent.status != 0 ? Outcome::failed : waits ? Outcome::waiting : Outcome::done;
  }
  return report;
}

Report downloadCards(Installation& installation, const DownloadTarget& target) {
  const bool everywhere = target.component.type == CTActiveStations;
  Report report;
  std::vector<Card> chosen;
  bool anyLive = false;
  for (Card& card : cards(installation)) {
    // A deleted one is erased everywhere; a component alone is not sent it.
    if (card.deleted ? everywhere && card.marked : target.full || card.marked) {
      anyLive = anyLive || !card.deleted;
      chosen.push_back(std::move(card));
    } else if (!card.deleted) {
      report.rows.push_back({card.name, Outcome::unchanged});
    }
  }
  bool failed = false;
  bool inactive = false;
  if (anyLive) {
    constexpr std::int16_t notInUse = 1;
    SentCards sent = installation.Cardholders().sendAll(target.component, target.full ? DLFull : DLDefault);
    report.notices = std::move(sent.notices);
    inactive = sent.status == notInUse;
    failed = sent.status != 0 && !inactive;
  }
  failed = !eraseDeleted(installation, chosen, report) || failed;
  // Of a component alone the marks stay, and say nothing; where a controller was silent they stay for it.
  const bool marksTell = everywhere && (failed || target.silent.empty());
  const std::set<std::int32_t> left = marksTell ? markedCards(installation) : std::set<std::int32_t>{};
  for (const Card& card : chosen) {
    const bool waits = everywhere ? left.contains(card.id) : failed || inactive;
    report.rows.push_back({card.name, !waits ? Outcome::done : failed ? Outcome::failed : Outcome::waiting});
  }
  report.broken = failed;
  return report;
}

}  // namespace voxa
