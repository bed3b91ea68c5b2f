#pragma once

#include <functional>
#include <string>

#include "tables/gen_table.h"
#include "tables/itable.h"
#include "tables/table_context.h"

namespace voxa {

class Database;
class Recordset;
struct Relation;
struct TableDef;

/// What the table classes of the main database share: the fixed name, the database, the GenTable.
class Table : public ITable {
 public:
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  [[nodiscard]] std::string Name() const override { return name_; }
  void Name(const std::string& name) override;
  [[nodiscard]] std::shared_ptr<Database> getDB() override;
  std::int16_t create() override;
  std::int16_t createRelations() override { return 0; }  ///< none, unless a table says otherwise
  void insertDefaultRecs() override {}                   ///< none, unless a table says otherwise
  std::int16_t setTableFlagsD(bool flagD) override;
  /// The first free `Id`. A table with another key, or fewer numbers, has a getFreeId of its own.
  std::int16_t getFreeId();

  /// The tables that create() makes.
  [[nodiscard]] virtual std::vector<TableDef> definitions();

 protected:
  Table(TableContext& context, std::string name);

  /// The open database of this table. Raises `err::objectNotSet` when none is open.
  [[nodiscard]] Database& database();
  [[nodiscard]] std::unique_ptr<Recordset> rows(const std::string& sql);

  /// Passes the first row of a query to `take`. Without a row it shows `notFound` (unless `silent`). When the
  /// query fails it shows `notFound` with the error. Returns whether a row was found.
  bool lookUp(const std::string& sql, const FailureMessage& notFound, bool silent,
              const std::function<void(Recordset&)>& take);

  /// getFreeId for a table whose numbers end at `last`: the first free `Id`, or -1 when that is greater.
  std::int16_t freeId(std::int16_t last);

  /// Creates a relation with referential integrity from `primary`.`primaryField` to this table's
  /// `foreignField`.
  void relate(const std::string& relationName, const std::string& primary, const std::string& primaryField,
              const std::string& foreignField);

  TableContext& context_;
  GenTable gen_;

 private:
  std::string name_;
};

}  // namespace voxa
