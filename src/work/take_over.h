#pragma once

#include <map>
#include <string>
#include <vector>

#include "work/transfer.h"

namespace voxa {

/// Takes the rows of an old table over into an empty one of this system. Columns meet by their names, in any
/// case. Values are converted, and tried for the range of their new type. A column that this system does not
/// have is kept behind the others; one that the old table does not have gets its default.
/// notes: gets a sentence for each column that is kept.
TransferredTable takeOver(Database& from, const TableDef& old, Database& to, const std::string& table,
                          const OnRefused& refused, Observer& observer, std::vector<std::string>& notes);

/// The rows that a new database begins with. While old ones come they are out of the way.
class BuiltInRows {
 public:
  /// Takes all rows out of these tables, which stand behind those that they refer to.
  BuiltInRows(Database& database, const std::vector<std::string>& tables);
  /// Puts those of a table back that it does not have.
  void putBack(const std::string& table);

 private:
  Database& database_;
  std::map<std::string, std::vector<std::vector<Value>>> rows_;
};

}  // namespace voxa
