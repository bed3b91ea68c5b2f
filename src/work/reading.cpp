#include "work/reading.h"

#include "comm/com.h"
#include "journal/journal.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/journal_list.h"
#include "work/look_up.h"

namespace voxa {

namespace {

void add(Report& report, const Journal::ControllerRead& read) {
  const Outcome outcome = read.failure.empty() ? Outcome::done : Outcome::failed;
  report.controllers.push_back({read.place, read.name, outcome, read.failure});
}

}  // namespace

Report readAll(Installation& installation, Observer* observer) {
  Com& com = installation.Com();
  Report report;
  // Writes the ini files, which a restored database may want otherwise.
  (void)com.refresh({}, into(report.notices));
  (void)com.popErrorList();
  const Journal::Run run = installation.Journal().readEach(observer);
  for (const Journal::ControllerRead& read : run.reads) add(report, read);
  report.notices.insert(report.notices.end(), run.notices.begin(), run.notices.end());
  report.broken = run.status != 0;
  return report;
}

Report readStation(Installation& installation, const std::string& station) {
  const std::int16_t id = stationNamed(installation, station)->get("Id").toInt16();
  Report report;
  for (const Journal::ControllerRead& read : installation.Journal().readStation(id)) {
    add(report, read);
    report.broken = report.broken || !read.failure.empty();
  }
  return report;
}

Report readReader(Installation& installation, const std::string& reader) {
  Report report;
  const std::int16_t status = installation.Journal().readTested({CTReader, reader}, into(report.notices));
  report.broken = status != 0;
  return report;
}

UnknownCard takeLastUnknownCard(Installation& installation, const std::string& reader, bool answers) {
  UnknownCard card;
  if (answers) card.report = readReader(installation, reader);
  card.code = installation.Journal().takeLastCardCode(reader, into(card.report.notices));
  return card;
}

std::int32_t journalSize(Installation& installation) {
  return openedJournal(installation)
      ->openRecordset("select count(*) as Transactions from Journal")
      ->get("Transactions")
      .toInt32();
}

}  // namespace voxa
