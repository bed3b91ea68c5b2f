#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "work/row_copy.h"
#include "work/table_csv.h"

namespace voxa {

/// What a copy leaves out. Memory does not grow with it.
class RefusedRows {
 public:
  /// folder: full path, where they are written when the copy is to go on without them: a table in a file of
  /// its own, with the reason in front of each row. It is made when the first one comes; 75 when it exists.
  RefusedRows(std::string folder, bool keepGoing) : folder_(std::move(folder)), keepGoing_(keepGoing) {}

  void add(const RefusedRow& row);
  /// All rows have come. A Refusal with the first of them, unless the copy is to go on without them.
  void decide();
  /// What is left for a person: a Leftover, when there are any.
  void tell() const;

  [[nodiscard]] std::size_t count() const { return count_; }

 private:
  std::string folder_;
  bool keepGoing_;
  CsvNames names_;
  std::map<std::string, TableCsv> files_;
  std::size_t count_ = 0;
  std::vector<std::string> first_;
};

}  // namespace voxa
