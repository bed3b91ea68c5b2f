#include "work/journal_follow.h"

#include <chrono>
#include <thread>
#include <vector>

#include "comm/com.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "journal/journal.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"

namespace voxa {

namespace {

std::vector<std::int16_t> stationsInUse(Installation& installation) {
  std::vector<std::int16_t> stations;
  const auto rows = installation.database().openRecordset("select Id from Stations order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int16_t station = rows->get("Id").toInt16();
    if (installation.Com().isInUse(station)) stations.push_back(station);
  }
  return stations;
}

/// A failure of several lines in one, without the last one, which names the controller again.
std::string inOneLine(std::string failure, const std::string& name) {
  if (failure.ends_with(name)) failure.resize(failure.size() - name.size());
  for (std::size_t at = 0; (at = failure.find("\r\n", at)) != std::string::npos;)
    failure.replace(at, 2, at + 2 < failure.size() ? ", " : "");
  return failure;
}

/// Another program works on the installation, which passes.
bool isBusy(int result) {
  return result == err::permissionDenied || result == err::dbLocked;
}

}  // namespace

JournalFollow::JournalFollow(Installation& installation, JournalFilter filter)
    : installation_(installation), filter_(std::move(filter)) {
  if (!filter_.until.empty()) throw Refusal("what comes is followed without an end: leave --until out");
  filter_.last.clear();
  filter_.since.clear();
  JournalList(installation_, filter_).requireKnown();
  if (!filter_.reader.empty()) reader_ = readerNamed(installation_, filter_.reader)->get("Id").toInt16();
  if (!filter_.station.empty()) station_ = stationNamed(installation_, filter_.station)->get("Id").toInt16();
  filter_.after = lastJournalRow(*openedJournal(installation_));
}

void JournalFollow::round(const Seen& seen) {
  try {
    readControllers(seen);
    showNew(seen);
    note("The installation", "", seen);
  } catch (const Error& failure) {
    if (!isBusy(failure.number())) throw;
    note("The installation", failure.description(), seen);
  }
}

void JournalFollow::note(const std::string& name, const std::string& failure, const Seen& seen) {
  const auto told = failing_.find(name);
  if (failure.empty()) {
    if (told == failing_.end()) return;
    failing_.erase(told);
    return seen.told(name + " is read again");
  }
  if (told != failing_.end()) return;
  failing_[name] = failure;
  seen.told(name + " cannot be read, and is tried again: " + inOneLine(failure, name));
}

void JournalFollow::readControllers(const Seen& seen) {
  Journal& journal = installation_.Journal();
  const auto goesOn = [&] {
    constexpr std::chrono::milliseconds forOthers{5};
    std::this_thread::sleep_for(forOthers);
    return seen.goesOn();
  };
  for (const std::int16_t station : stationsInUse(installation_)) {
    journal.passesEmptyOver = true;
    const std::vector<Journal::ControllerRead> reads = journal.readStation(station, goesOn);
    journal.passesEmptyOver = false;
    for (const Journal::ControllerRead& read : reads) {
      if (read.result == err::permissionDenied) throw Error(read.result, read.failure);
      note(read.name, read.failure, seen);
    }
    if (!seen.goesOn()) return;
  }
}

void JournalFollow::showNew(const Seen& seen) {
  const std::int32_t last = lastJournalRow(*openedJournal(installation_));
  if (last <= filter_.after.value_or(last)) return;
  // It is followed under a name that it gets meanwhile, too.
  const auto nameNow = [](std::string& name, const std::string& now) {
    if (!name.empty() && !now.empty()) name = now;
  };
  nameNow(filter_.reader, installation_.Readers().getName(reader_, true));
  nameNow(filter_.station, installation_.Stations().getName(station_, true));
  JournalList(installation_, filter_).each([&](const JournalRow& row) {
    if (row.id <= last) seen.transaction(row);
  });
  filter_.after = last;
}

}  // namespace voxa
