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
  /// its own, with the reason in front of each row. It is made when the first one comes, with a number behind
  /// its name when there is one already, and is gone when the copy fails.
  RefusedRows(std::string folder, bool keepGoing) : folder_(std::move(folder)), keepGoing_(keepGoing) {}
  ~RefusedRows();
  RefusedRows(const RefusedRows&) = delete;
  RefusedRows& operator=(const RefusedRows&) = delete;

  void add(const RefusedRow& row);
  /// What a damaged file has lost, in sentences.
  void addDamage(const std::vector<std::string>& sentences);
  /// All rows have come. A Refusal with the first of them, unless the copy is to go on without them.
  void decide();
  /// The copy is made. What is left for a person is a Leftover, when there is something.
  void tell();

  [[nodiscard]] std::size_t count() const { return count_; }

 private:
  void makeFolder();

  std::string folder_;
  bool keepGoing_;
  bool made_ = false;  ///< the folder
  CsvNames names_;
  std::map<std::string, TableCsv> files_;
  std::size_t count_ = 0;
  std::vector<std::string> first_;  ///< a sentence each
  std::vector<std::string> damage_;
};

}  // namespace voxa
