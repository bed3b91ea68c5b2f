#include "journal/journal_rows.h"

#include "access/cardholder.h"
#include "app/library.h"
#include "app/qdb.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "platform/database/database.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr std::size_t cardNumbers = 10'000;  // 0 to 9999, as four digits hold them

constexpr std::string_view insertInto =
    "insert into Journal ([Date], StationId, StationName, ReaderId, ReaderName,"
    "TransactionType, CardholderName, TransactionData ) values ( '";

/// The first characters of a name, apostrophes doubled for a text literal.
std::string nameLiteral(std::string_view name) {
  std::string out;
  int characters = 0;
  for (const char c : name) {
    const bool startsCharacter = (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    if (startsCharacter && ++characters > cardholderNameSize) break;
    out.append(c == '\'' ? 2 : 1, c);
  }
  return out;
}

}  // namespace

JournalRows::JournalRows(Library& library, Database& journal, std::int16_t stationId)
    : library_(library), journal_(journal), stationId_(stationId), sql_(insertInto) {
  const std::string id = std::to_string(stationId);
  const std::string name = library_.QDB().Stations().getName(stationId, true);
  station_ = id + ",'" + (name.empty() ? id : name) + "',";
}

const std::string& JournalRows::cardholder(std::string_view cardNumber) {
  const std::int16_t number = digitsToNumber(cardNumber);
  if (number < 0) return noCard_ = nameLiteral(fromCp1252(cardNumber));
  if (cardholders_.empty()) cardholders_.resize(cardNumbers);
  std::optional<std::string>& known = cardholders_[static_cast<std::size_t>(number)];
  if (!known) {
    const std::string name = library_.QDB().Cardholders().getNameByCardNum(number);
    known = nameLiteral(name.empty() ? cardNumber : name);
  }
  return *known;
}

const std::string& JournalRows::reader(std::int16_t controller, std::int16_t position) {
  constexpr int positions = 5;
  const auto [entry, isNew] = readers_.try_emplace(controller * positions + position);
  if (isNew) {
    Reader& readers = library_.QDB().Readers();
    const std::int16_t id = readers.getId(stationId_, controller, position, true);
    std::string name;
    if (id != -1) {
      name = readers.getName(id, true);
      if (name.empty()) name = std::to_string(id);
    }
    entry->second = std::to_string(id) + ",'" + name + "','";
  }
  return entry->second;
}

std::string_view JournalRows::add(std::string_view line) {
  const std::string_view fault = decodeLine(line, line_);
  if (!fault.empty()) {
    // Rather no door than the wrong one for a transaction that follows this line.
    position_ = 0;
    return fault;
  }
  if (line_.position != 0) position_ = line_.position;
  sql_.resize(insertInto.size());
  sql_.append(line_.date).append("',").append(station_).append(reader(line_.controller, position_));
  sql_.append(line_.type).append("','");
  if (line_.ofCard) sql_.append(cardholder(line_.cardNumber()));
  sql_.append("','").append(fromCp1252(line_.data)).append("')");
  journal_.execute(sql_);
  return "";
}

}  // namespace voxa
