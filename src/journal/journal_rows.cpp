#include "journal/journal_rows.h"

#include "access/access_context.h"
#include "access/cardholder.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr std::size_t cardNumbers = 10'000;  // 0 to 9999, as four digits hold them

/// The statement of a station's rows. A station's name stands in it as it is: one that breaks the statement
/// makes the insert fail.
std::string insertOf(std::int16_t stationId, const std::string& stationName) {
  return "parameters pDate datetime, pReader long, pReaderName memo, pType memo, pCardholder memo, pData "
         "memo; "
         "insert into Journal ([Date], StationId, StationName, ReaderId, ReaderName, TransactionType, "
         "CardholderName, TransactionData) values (pDate, " +
         std::to_string(stationId) + ", '" + stationName +
         "', pReader, pReaderName, pType, pCardholder, pData)";
}
/// The places of the parameters.
enum Column : std::size_t { date, readerId, readerName, type, cardholderName, data, columns };

}  // namespace

std::string journalName(std::string_view name) {
  std::size_t end = 0;
  for (int characters = 0; end < name.size(); ++end) {
    const bool startsCharacter = (static_cast<unsigned char>(name[end]) & 0xC0U) != 0x80U;
    if (startsCharacter && ++characters > cardholderNameSize) break;
  }
  return std::string(name.substr(0, end));
}

JournalRows::JournalRows(AccessContext& context, Database& journal, std::int16_t stationId)
    : context_(context),
      journal_(journal),
      stationId_(stationId),
      today_(context.clock().now()),
      row_(columns) {
  const std::string name = context_.Stations().getName(stationId, true);
  sql_ = insertOf(stationId, name.empty() ? std::to_string(stationId) : name);
}

JournalRows::~JournalRows() = default;

const Value& JournalRows::cardholder(std::string_view cardNumber) {
  const std::int16_t number = digitsToNumber(cardNumber);
  if (number < 0) return noCard_ = journalName(fromCp1252(cardNumber));
  if (cardholders_.empty()) cardholders_.resize(cardNumbers);
  Value& known = cardholders_[static_cast<std::size_t>(number)];
  if (known.isNull()) {
    const std::string name = context_.Cardholders().getNameByCardNum(number);
    known = journalName(name.empty() ? cardNumber : name);
  }
  return known;
}

const JournalRows::Door& JournalRows::reader(std::int16_t controller, std::int16_t position) {
  constexpr int positions = 5;
  const auto [entry, isNew] = readers_.try_emplace(controller * positions + position);
  if (isNew) {
    Reader& readers = context_.Readers();
    const std::int16_t id = readers.getId(stationId_, controller, position, true);
    std::string name;
    if (id != -1) {
      name = readers.getName(id, true);
      if (name.empty()) name = std::to_string(id);
    }
    entry->second = {std::int32_t{id}, std::move(name)};
  }
  return entry->second;
}

std::string_view JournalRows::add(std::string_view line) {
  const std::string_view fault = decodeLine(line, today_, line_);
  if (!fault.empty()) {
    // Rather no door than the wrong one for a transaction that follows this line.
    position_ = 0;
    return fault;
  }
  if (line_.position != 0) position_ = line_.position;
  const Door& door = reader(line_.controller, position_);
  row_[date] = line_.date;
  row_[readerId] = door.id;
  row_[readerName] = door.name;
  row_[type] = line_.type;
  row_[cardholderName] = line_.ofCard ? cardholder(line_.cardNumber()) : noName_;
  row_[data] = fromCp1252(line_.data);
  if (!insert_) insert_ = journal_.prepare(sql_);
  (void)insert_->execute(row_);
  return "";
}

}  // namespace voxa
