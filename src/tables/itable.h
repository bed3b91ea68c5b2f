#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace voxa {

class Database;
struct TableDef;

/// The contract of every table class. One loop builds, fills and relates all tables of a new database by it.
class ITable {
 public:
  virtual ~ITable() = default;

  [[nodiscard]] virtual std::string Name() const = 0;
  /// Clients may assign a name. It is ignored, since a table's name is fixed.
  virtual void Name(const std::string& name) = 0;
  [[nodiscard]] virtual std::shared_ptr<Database> getDB() = 0;  ///< empty when it is not open
  /// Builds the table (createFields, createIndexes, append). Returns 0 even after a failure: the person was
  /// told, and the next table is still built.
  virtual std::int16_t create() = 0;
  virtual void createFields(TableDef& td) = 0;   ///< appends the table's columns
  virtual void createIndexes(TableDef& td) = 0;  ///< appends its indexes
  /// Creates the relations in which this table is the foreign side. All tables exist by then. Failures are
  /// raised.
  virtual std::int16_t createRelations() = 0;
  virtual void insertDefaultRecs() = 0;
  /// Sets every FlagD column of every row. 0, or the number of the error that was shown.
  virtual std::int16_t setTableFlagsD(bool value) = 0;
};

}  // namespace voxa
