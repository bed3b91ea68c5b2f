#include "access/card_block.h"

#include <charconv>
#include <set>

#include "access/access_context.h"
#include "access/card_record.h"
#include "comm/com.h"
#include "files/conversions.h"
#include "platform/database/database.h"
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

/// None when its writer did not come to the end: then nothing was sent.
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

/// The numbers of the block that no card of the table has on the controller.
std::vector<std::int32_t> strays(AccessContext& context, const Note& note, const ControllerPlace& place) {
  Database& database = context.database();
  std::set<std::int16_t> groups;
  for (const auto rows = database.openRecordset(
           "select a.AccessGroupId from AccGroupReaders as a, Readers as r where a.ReaderId = r.Id and "
           "r.StationId = " +
           std::to_string(place.station) + " and r.ControllerAddress = " + std::to_string(place.address));
       !rows->eof(); rows->moveNext()) {
    groups.insert(nullToInt(rows->get(std::size_t{0})));
  }
  std::set<std::int32_t> kept;
  for (const auto rows = database.openRecordset(
           "select CardNum, AccessGroupId from Cardholders where Deleted = false and CardNum between " +
           std::to_string(note.first) + " and " + std::to_string(note.last));
       !rows->eof(); rows->moveNext()) {
    if (groups.contains(nullToInt(rows->get("AccessGroupId")))) kept.insert(rows->get("CardNum").toInt32());
  }
  std::vector<std::int32_t> numbers;
  for (std::int32_t card = note.first; card <= note.last; ++card) {
    if (!kept.contains(card)) numbers.push_back(card);
  }
  return numbers;
}

/// Whether no controller failed; those that are still to be asked stay noted.
bool finish(AccessContext& context, files::OwnedFile& file) {
  bool good = true;
  if (const std::optional<Note> note = read(file.path())) {
    std::vector<ControllerPlace> open;
    for (const ControllerPlace& place : note->places) {
      const std::vector<std::int32_t> numbers = strays(context, *note, place);
      if (numbers.empty()) continue;
      const bool asked = canBeAsked(context, place);
      if (asked && eraseCards(context, place, numbers)) continue;
      good = good && !asked;
      open.push_back(place);
    }
    if (!open.empty() && open.size() == note->places.size()) return good;
    if (!open.empty()) const CardBlock rest(context, note->first, note->last, open);
  }
  file.remove();
  return good;
}

}  // namespace

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

CardBlock::CardBlock(AccessContext& context, std::int32_t first, std::int32_t last,
                     const std::vector<ControllerPlace>& places) {
  const auto line = [](std::int32_t one, std::int32_t other) {
    return std::to_string(one) + "," + std::to_string(other) + "\r\n";
  };
  std::string text = line(first, last);
  for (const auto& [station, address] : places) text += line(station, address);
  text += std::string(lastLine) + "\r\n";
  for (int n = 0; !note_; ++n) {
    note_ = files::OwnedFile::create(
        pathOf(context, std::string(namePrefix) + std::to_string(n) + std::string(nameSuffix)), text);
  }
}

std::vector<Notice> finishUnfinishedBlocks(AccessContext& context) {
  Com& com = context.Com();
  if (com.inhibitCom || !context.DB() || !files::folderExists(com.Chemin)) return {};
  bool good = true;
  std::vector<Notice> notices;
  const std::int16_t failed = context.attempt([&] {
    for (const std::string& name : files::list(com.Chemin)) {
      if (!isNote(name)) continue;
      if (auto note = files::OwnedFile::takeOver(pathOf(context, name)))
        good = finish(context, *note) && good;
    }
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
