#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engines/dao/object.h"
#include "engines/dao/session.h"
#include "platform/database/database.h"

namespace voxa {

/// One open database file of the installed engine. Definitions, relations, the version and copies are in
/// table_definitions.cpp, database_definitions.cpp and copy.cpp, what a statement is in statements.cpp,
/// everything else in dao_database.cpp.
class DaoDatabase final : public Database, public std::enable_shared_from_this<DaoDatabase> {
 public:
  DaoDatabase(std::shared_ptr<DaoSession> session, std::string path, dao::Object database);
  ~DaoDatabase() override;
  DaoDatabase(const DaoDatabase&) = delete;
  DaoDatabase& operator=(const DaoDatabase&) = delete;

  [[nodiscard]] const std::string& name() const override { return path_; }
  void close() override;
  [[nodiscard]] bool isOpen() const override { return static_cast<bool>(database_); }
  [[nodiscard]] bool updatable() const override;

  int execute(std::string_view sql, const Parameters& parameters) override;
  [[nodiscard]] std::unique_ptr<Command> prepare(std::string_view sql) override;
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(std::string_view source,
                                                         const Parameters& parameters,
                                                         RowOptions options) override;
  void visitRows(std::string_view source, const std::function<bool(const Value* row)>& visit,
                 const Parameters& parameters) override;
  [[nodiscard]] QueryInfo describe(std::string_view source) override;

  void beginReading() override {}  // the library has none
  void endReading() override {}
  void lockForChanges() override;

  [[nodiscard]] std::size_t schemaVersion() const override;
  void setSchemaVersion(std::size_t version) override;
  void copyTo(std::string_view path) const override;

  [[nodiscard]] std::vector<std::string> tableNames() const override;
  [[nodiscard]] const TableDef& tableDef(std::string_view table) const override;
  void createTable(const TableDef& definition) override;
  void addField(std::string_view table, const FieldDef& definition) override;
  void deleteTable(std::string_view table) override;
  void addIndex(std::string_view table, const IndexDef& index) override;
  void deleteIndex(std::string_view table, std::string_view index) override;
  void alterField(std::string_view table, const FieldDef& definition) override;
  void deleteField(std::string_view table, std::string_view field) override;

  [[nodiscard]] std::vector<Relation> relations() const override;
  void createRelation(const Relation& relation) override;
  void deleteRelation(std::string_view name) override;

  [[nodiscard]] std::vector<QueryDef> queries() const override;
  void createQuery(const QueryDef& query) override;
  void deleteQuery(std::string_view name) override;

  // For the recordsets and the engine.

  [[nodiscard]] DaoSession& session() const { return *session_; }
  [[nodiscard]] const dao::Object& opened() const;  ///< 3420 when closed
  /// The library's rows of a source.
  [[nodiscard]] dao::Object openRows(std::string_view source, const Parameters& parameters,
                                     RowOptions options) const;

 private:
  /// A collection as the file has it now, with what statements and others have added.
  [[nodiscard]] dao::Object current(dao::Kind kind, const char* collection) const;
  [[nodiscard]] dao::Object tableObject(std::string_view table) const;  ///< 3078 when there is none
  /// The stored query of that name, or else one of that text that is stored nowhere.
  [[nodiscard]] dao::Object queryFor(std::string_view source) const;
  void requireRows(const std::string& table, const FieldDef& old, const FieldDef& next);
  void copyInto(Database& copy);

  std::shared_ptr<DaoSession> session_;
  std::string path_;
  dao::Object database_;
  mutable std::map<std::string, TableDef> definitions_;  ///< those that were handed out
};

}  // namespace voxa
