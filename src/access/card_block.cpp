#include "access/card_block.h"

#include <charconv>
#include <optional>
#include <set>

#include "access/access_context.h"
#include "access/card_record.h"
#include "comm/com.h"
#include "comm/send_ledger.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "platform/notice.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr std::string_view namePrefix = "CardBlock";
constexpr std::string_view nameSuffix = ".txt";
constexpr std::string_view lastLine = "end";

std::string pathOf(AccessContext& context, std::string_view name) {
  return context.Com().Chemin + "\\" + std::string(name);
}

bool isNote(std::string_view name) {
  return name.size() > namePrefix.size() + nameSuffix.size() && name.starts_with(namePrefix) &&
         name.ends_with(nameSuffix);
}

struct Note {
  std::int16_t first = 0;
  std::int16_t last = 0;
  std::vector<ControllerPlace> places;
};

struct TwoNumbers {
  std::int16_t first = 0;
  std::int16_t second = 0;
};

TwoNumbers twoNumbers(const std::string& line) {
  TwoNumbers numbers;
  const char* const end = line.data() + line.size();
  const auto comma = std::from_chars(line.data(), end, numbers.first).ptr;
  if (comma != end) (void)std::from_chars(comma + 1, end, numbers.second);
  return numbers;
}

/// A file "CardBlock0.txt" and so on: lines of two numbers, first and last card, then station and address of
/// each controller; the last line is "end". None when its writer did not come to the end: then nothing was
/// sent.
std::optional<Note> read(const std::string& path) {
  std::vector<TwoNumbers> lines;
  bool complete = false;
  for (files::Stream in(path, files::Stream::Mode::read); !in.atEnd() && !complete;) {
    const std::string line = in.readLine();
    complete = line == lastLine;
    if (!complete) lines.push_back(twoNumbers(line));
  }
  if (!complete || lines.empty()) return std::nullopt;
  Note note{lines[0].first, lines[0].second, {}};
  for (auto line = lines.begin() + 1; line != lines.end(); ++line) {
    note.places.push_back({line->first, line->second});
  }
  return note;
}

bool canBeAsked(AccessContext& context, const ControllerPlace& place) {
  return context.Com().isInUse(place.station) && context.Com().TestSend(place.station, place.address);
}

/// The numbers that no card of the table has on the controller.
std::vector<std::int32_t> strays(AccessContext& context, const UnfinishedCards& cards) {
  Database& database = context.database();
  std::set<std::int16_t> groups;
  for (const auto rows = database.openRecordset(
           "select a.AccessGroupId from AccGroupReaders as a, Readers as r where a.ReaderId = r.Id and "
           "r.StationId = " +
           std::to_string(cards.place.station) +
           " and r.ControllerAddress = " + std::to_string(cards.place.address));
       !rows->eof(); rows->moveNext()) {
    groups.insert(nullToInt(rows->get("AccessGroupId")));
  }
  std::set<std::int32_t> kept;
  for (const auto rows = database.openRecordset(
           "select CardNum, AccessGroupId from Cardholders where Deleted = false and CardNum between " +
           std::to_string(cards.numbers.front()) + " and " + std::to_string(cards.numbers.back()));
       !rows->eof(); rows->moveNext()) {
    if (groups.contains(nullToInt(rows->get("AccessGroupId")))) kept.insert(rows->get("CardNum").toInt32());
  }
  std::vector<std::int32_t> numbers;
  for (const std::int32_t card : cards.numbers) {
    if (!kept.contains(card)) numbers.push_back(card);
  }
  return numbers;
}

/// Notes of earlier versions of the system, which wrote files, go to the ledger.
void takeOverNotes(AccessContext& context) {
  for (const std::string& name : files::list(context.Com().Chemin)) {
    if (!isNote(name)) continue;
    auto file = files::OwnedFile::takeOver(pathOf(context, name));
    if (!file) continue;  // its process is still at work
    if (const std::optional<Note> note = read(file->path())) {
      std::vector<UnfinishedCards> cards;
      for (const ControllerPlace& place : note->places)
        cards.push_back({place, numbersOf(note->first, note->last)});
      if (!context.ledger().noteUnfinished(cards, false)) continue;  // the next one tries again
    }
    file->remove();
  }
}

/// Whether the controller did not fail; one that is still to be asked stays noted.
bool finish(AccessContext& context, const UnfinishedCards& cards) {
  const std::vector<std::int32_t> numbers = strays(context, cards);
  if (!numbers.empty()) {
    if (!canBeAsked(context, cards.place)) return true;
    if (!eraseCards(context, cards.place, numbers)) return false;
  }
  context.ledger().forgetUnfinished({cards});
  return true;
}

}  // namespace

std::vector<std::int32_t> numbersOf(std::int32_t first, std::int32_t last) {
  std::vector<std::int32_t> numbers;
  for (std::int32_t number = first; number <= last; ++number) numbers.push_back(number);
  return numbers;
}

bool eraseCards(AccessContext& context, const ControllerPlace& place,
                const std::vector<std::int32_t>& numbers) {
  Com& com = context.Com();
  bool confirmed = false;
  context.attempt([&] {
    if (!com.TestSend(place.station, place.address)) return;  // it would be passed over without a word
    confirmed = com.sendLinesTested(clearCardLines(numbers), place) == 0;
  });
  if (confirmed) return true;
  com.errorList += "\r\n" + context.messages().read("msgCantSendCommand") + " (" +
                   com.getName(place.station, place.address) + "): 09" + zeroPadded(numbers.front(), 4) +
                   " - " + zeroPadded(numbers.back(), 4);
  return false;
}

std::vector<Notice> finishUnfinishedBlocks(AccessContext& context) {
  Com& com = context.Com();
  if (com.inhibitCom || !context.DB() || !files::folderExists(com.Chemin)) return {};
  bool good = true;
  std::vector<Notice> notices;
  const std::int16_t failed = context.attempt([&] {
    takeOverNotes(context);
    for (const UnfinishedCards& cards : context.ledger().unfinished()) good = finish(context, cards) && good;
  });
  const Tell teller = into(notices);
  if (failed != 0) tell(context, teller, {"msgUnexpecErr", "Cardholders.createGroup"});
  if (!good) {
    tell(context, teller, {"msgCantSendCommand", "Cardholders.createGroup", Value(com.popErrorList())});
  }
  return notices;
}

bool eraseUnfinishedBlocks(AccessContext& context) {
  const std::vector<Notice> failures = finishUnfinishedBlocks(context);
  context.show(failures);
  return failures.empty();
}

}  // namespace voxa
