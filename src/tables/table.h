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

/// What the table classes of the main database share: the fixed name, the database, the generic helper.
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
  std::int16_t getFreeId();  ///< first free `Id`; some tables end sooner, or have another key, and say so

  /// The tables that create() makes.
  [[nodiscard]] virtual std::vector<TableDef> definitions();

 protected:
  Table(TableContext& context, std::string name);

  /// The open database of this table; raises `err::objectNotSet` when there is none.
  [[nodiscard]] Database& database();
  [[nodiscard]] std::unique_ptr<Recordset> rows(const std::string& sql);

  /// Hands the first row of a query to `take`. When there is none, shows `notFound` (unless `silent`); when
  /// the query fails, shows `notFound` with the error. Returns whether a row was found.
  bool lookUp(const std::string& sql, const FailureMessage& notFound, bool silent,
              const std::function<void(Recordset&)>& take);

  /// getFreeId of a table that ends: first free `Id`, or -1 when it would exceed `last`.
  std::int16_t freeId(std::int16_t last);

  /// A relation with referential integrity from `primary`.`primaryField` to this table's `foreignField`.
  void relate(const std::string& relationName, const std::string& primary, const std::string& primaryField,
              const std::string& foreignField);

  TableContext& context_;
  GenTable gen_;

 private:
  std::string name_;
};

}  // namespace voxa
