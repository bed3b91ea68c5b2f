#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "lines/transaction.h"
#include "platform/value.h"

namespace voxa {

class Command;
class Database;
class AccessContext;

/// Width of the journal's column for cardholder names, in characters; longer names are cut.
inline constexpr int cardholderNameSize = 40;
/// A cardholder's name as the journal has it: as many characters as the column takes.
[[nodiscard]] std::string journalName(std::string_view name);

/// Turns the lines of one dump into rows of the journal. Names are those at the time of reading; each is
/// looked up once a file.
class JournalRows {
 public:
  JournalRows(AccessContext& context, Database& journal, std::int16_t stationId);
  ~JournalRows();

  /// Inserts the transaction that a line starts with. line: code page 1252. Returns why there is none, ""
  /// when it was inserted. A failing insert is raised.
  [[nodiscard]] std::string_view add(std::string_view line);

 private:
  struct Door {
    Value id;
    Value name;
  };

  const Value& cardholder(std::string_view cardNumber);
  const Door& reader(std::int16_t controller, std::int16_t position);

  AccessContext& context_;
  Database& journal_;
  std::string sql_;
  std::unique_ptr<Command> insert_;  // of sql_, prepared for the first row
  std::int16_t stationId_;
  DateTime today_;  // of the whole dump
  TransactionLine line_;
  std::vector<Value> row_;                 // the values of insert_
  std::int16_t position_ = 0;              // of the line before, 0 when that is not known
  std::vector<Value> cardholders_;         // names by card number, Null until they are asked for
  std::unordered_map<int, Door> readers_;  // by controller and position
  Value noCard_;
  Value noName_ = "";
};

}  // namespace voxa
