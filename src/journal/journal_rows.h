#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "journal/journal_line.h"

namespace voxa {

class Database;
class Library;

/// Width of the journal's column for cardholder names, in characters; longer names are cut.
inline constexpr int cardholderNameSize = 40;

/// Turns the lines of one dump into rows of the journal. Names are those at the time of reading; each is
/// looked up once a file.
class JournalRows {
 public:
  JournalRows(Library& library, Database& journal, std::int16_t stationId);

  /// Inserts the transaction that a line starts with. line: code page 1252. Returns why there is none, ""
  /// when it was inserted. A failing insert is raised.
  [[nodiscard]] std::string_view add(std::string_view line);

 private:
  const std::string& cardholder(std::string_view cardNumber);
  const std::string& reader(std::int16_t controller, std::int16_t position);

  Library& library_;
  Database& journal_;
  std::int16_t stationId_;
  std::string station_;  // id and name, as the statement has them
  JournalLine line_;
  std::string sql_;
  std::int16_t position_ = 0;                            // of the line before, 0 when that is not known
  std::vector<std::optional<std::string>> cardholders_;  // by card number, apostrophes doubled
  std::unordered_map<int, std::string> readers_;         // by controller and position: id and name
  std::string noCard_;
};

}  // namespace voxa
