#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace voxa {

class Database;
struct TableDef;

/// The contract of every table class, by which a new database is built, filled and related in one loop.
class ITable {
 public:
  virtual ~ITable() = default;

  [[nodiscard]] virtual std::string Name() const = 0;
  virtual void Name(const std::string& name) = 0;  ///< accepted and ignored: a table's name is fixed
  [[nodiscard]] virtual std::shared_ptr<Database> getDB() = 0;  ///< empty when it is not open
  /// Builds the table (createFields, createIndexes, append). Returns 0 even when that failed: the person was
  /// told, and the next table is built all the same.
  virtual std::int16_t create() = 0;
  virtual void createFields(TableDef& td) = 0;   ///< appends the table's columns
  virtual void createIndexes(TableDef& td) = 0;  ///< appends its indexes
  /// Creates the relations in which this table is the foreign side; all tables exist by then. Failures are
  /// raised.
  virtual std::int16_t createRelations() = 0;
  virtual void insertDefaultRecs() = 0;
  /// Sets every FlagD column of every row; 0 or the number of the error that was shown.
  virtual std::int16_t setTableFlagsD(bool value) = 0;
};

}  // namespace voxa
