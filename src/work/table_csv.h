#pragma once

#include <string>
#include <vector>

#include "platform/database/schema.h"
#include "platform/files.h"

namespace voxa {

/// A table of rows for a spreadsheet, in a new file that only its owner can use: a line of names, then a line
/// for each row (csv.h), ended with CR LF. Null is an empty field, a moment is as ISO 8601 has it, bytes are
/// in base 16.
class TableCsv {
 public:
  TableCsv(const std::string& path, const std::vector<std::string>& columns);  ///< 58 when the file exists
  void write(const Value* row, std::size_t columns);
  /// The same with a text in front.
  void write(const std::string& first, const Value* row, std::size_t columns);
  void close();

 private:
  files::Stream file_;
};

/// Names of files for tables, in one folder. A table of a stranger's can have a name that leads elsewhere.
class CsvNames {
 public:
  /// "Cards.csv"; other characters than those of a name become "_", and a name that is taken gets a number.
  std::string of(const std::string& table);

 private:
  std::vector<std::string> taken_;
};

}  // namespace voxa
