#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engines/language/dialect.h"
#include "engines/sqlite/catalog.h"
#include "engines/sqlite/connection.h"
#include "engines/sqlite/session.h"
#include "engines/sqlite/statement_cache.h"
#include "platform/database/database.h"

namespace voxa {

class ResultRows;

/// One open database file of the embedded engine. Definitions (tables, relations, stored queries), their
/// version and copies of the file are in sqlite_schema.cpp, changes of tables that exist in
/// schema_changes.cpp, statements of definitions in definition_statements.cpp, the way from a text to a
/// statement in statement_texts.cpp, rows of another file in taking_rows.cpp, statements of one owner in
/// owned_statements.cpp, everything else in sqlite_database.cpp.
class SqliteDatabase final : public Database, public std::enable_shared_from_this<SqliteDatabase> {
 public:
  /// path: full and native, of a file that is known to be a database of this engine. connection: to it; in a
  /// transaction when the engine's has locked it.
  SqliteDatabase(std::shared_ptr<Session> session, std::string path, Connection connection);
  ~SqliteDatabase() override;
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  [[nodiscard]] const std::string& name() const override { return path_; }
  void close() override;
  [[nodiscard]] bool isOpen() const override { return file_.has_value(); }
  [[nodiscard]] bool updatable() const override { return !connection().readOnly(); }

  int execute(std::string_view sql, const Parameters& parameters) override;
  [[nodiscard]] std::unique_ptr<Command> prepare(std::string_view sql) override;
  void beginReading() override;
  void endReading() override;
  void lockForChanges() override;
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(std::string_view source,
                                                         const Parameters& parameters,
                                                         RowOptions options) override;
  void visitRows(std::string_view source, const std::function<bool(const Value* row)>& visit,
                 const Parameters& parameters) override;
  bool takeRows(Database& from, std::string_view table) override;
  [[nodiscard]] QueryInfo describe(std::string_view source) override;

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

  /// The room of a small result, empty, for the next one. Most results are one row.
  struct Room {
    std::vector<std::int64_t> rowids;
    std::vector<Value> values;
    std::string source;
  };
  [[nodiscard]] Room& room() { return room_; }

  [[nodiscard]] Session& session() const { return *session_; }
  [[nodiscard]] Connection& connection() const { return opened().connection; }  ///< 3420 when closed
  /// A statement of the engine's own on the rows of a table. It is prepared once; the reference holds until
  /// the next call.
  Statement& rowStatement(const std::string& sql);
  /// Whether a source is the name of a table.
  [[nodiscard]] bool isTable(std::string_view source);
  /// Reads rows later than openRecordset does. shown: what they were opened with. frozen: see ResultRows.
  [[nodiscard]] std::shared_ptr<ResultRows> readRows(std::string_view source, std::string_view shown,
                                                     const Parameters& parameters, bool frozen);
  /// A statement that is its owner's alone, not shared with others of the same text: a command's, or a test
  /// of rows.
  struct Owned {
    Prepared prepared;
    std::vector<Value> literals;
    std::vector<std::size_t>
        parameters;  ///< for each slot that is no literal, the index of its parameter or column
    std::vector<bool> descending{};  ///< of a test: its keys
  };
  Owned translateChange(std::string_view sql);
  /// Runs the statement with the values of its parameters. When the schema has changed, translates it anew
  /// and runs that.
  int run(Owned& change, std::string_view sql, const std::vector<Value>& values);
  /// text: see dialect::rowTestText.
  Owned translateTest(std::string_view text, const std::vector<FieldDef>& columns);
  /// The statement of a test, with the values of a row.
  Statement& bindRow(Owned& test, const Value* row);
  /// Must be called before each change. Calls lockForChanges, and outside of a transaction ends a reading.
  void beginChange();
  /// Runs a statement that changes rows of `table`, after beginChange. All of its changes are made, or none;
  /// the error names what broke.
  void change(Statement& statement, std::string_view table);
  /// Counts the changes made through this database. Rows that were read at another count may be out of date.
  [[nodiscard]] std::uint64_t generation() const { return generation_; }
  /// Must be called before a commit: does what the transaction has put off.
  void settle() { (void)file(); }
  /// These two end the part of the engine's transaction that is in this file, if there is one.
  void commit();
  void rollback();  ///< afterwards no definition, name or row that was read before can be relied on
  /// Whether SQLite has undone that part by itself.
  [[nodiscard]] bool lostTransaction() const { return opened().locked && !connection().inTransaction(); }
  /// Closes the file and gives up the uncommitted part of a transaction.
  void abandon();

 private:
  /// What exists while the file is open. The order matters: statements must be destroyed before the
  /// connection.
  struct OpenFile {
    OpenFile(Connection opened, const Session& session)
        : connection(std::move(opened)), catalog(connection, session), locked(connection.inTransaction()) {}
    Connection connection;
    Catalog catalog;
    StatementCache translated;
    StatementCache own;
    bool locked;            ///< the engine's transaction has locked the file
    std::string takenFrom;  ///< the file that rows were taken from at once in this transaction; "" for none
    /// Relations of this transaction that are not in the file yet. Several in a row are written together,
    /// since SQLite reads the whole schema again after each such change.
    std::vector<Relation> unwritten;
    /// The statements that names of tables and queries stand for. A stored query
    /// that goes changes the schema. That a table
    /// is gone shows when its statement runs.
    std::unordered_map<std::string, std::string> names;
  };

  OpenFile& opened() const;  ///< 3420 when closed
  void letGo();              ///< of the file that rows were taken from; when the transaction has ended
  OpenFile& file()
      const;  ///< the same, after the relations that were put off are written; for all that changes rows
  void writeRelations(const std::vector<Relation>& relations) const;
  /// Lets `write` change the rows of the schema, and has all users read it again.
  void writeSchema(const std::function<void(Connection&)>& write) const;
  /// Runs a change of definitions as one step: after a failure nothing of it is left.
  void redefine(const std::function<void(OpenFile&)>& change);
  [[nodiscard]] ddl::Table storedTable(std::string_view name) const;
  [[nodiscard]] bool hasIndexNamed(const std::string& name) const;
  /// Writes the text of a table anew. Its rows stay as they are. alongside: another statement on the schema.
  void rewrite(const ddl::Table& table, const std::string& alongside = {});
  /// 3112 when a field is secret: what indexes and relations refuse tells what rows hold.
  void requireUsable(const TableDef& table, const std::vector<std::string>& fields) const;
  void refuseIfBound(const TableDef& table, const std::string& field, const char* what) const;
  // Statements of definitions
  void define(std::string_view sql);
  [[nodiscard]] Relation completed(Relation relation) const;
  void requireField(std::string_view table, const std::string& name);
  void deleteConstraint(std::string_view table, const std::string& name);
  /// The statement for a text, a table name or a query name. Its literals are in scanned_.
  Prepared& prepared(std::string_view source);
  Prepared translate(std::string_view sql);
  /// The same for a text that was scanned. It is kept under the key in scanned_ and replaces one that was
  /// translated for other literals.
  Prepared& translateScanned(std::string_view sql);
  std::optional<std::string> textOfName(std::string_view name);
  /// Binds the values of all slots. They must stay where they are; converted ones are in converted_. inputOf:
  /// gives for a slot's number its value and, for a parameter, its declaration (else nullptr).
  template <typename InputOf>
  void bind(Statement& statement, const dialect::Translation& translation, InputOf&& inputOf);
  void schemaChanged();
  /// Makes a table of the rows of a query; its values are bound to what `bindTo` gets. An SQLite code.
  int makeTable(const dialect::Translation& translation, const std::function<void(Statement&)>& bindTo);
  /// Ends a step that changed definitions, which the catalog has taken over.
  void finish(Step& step);
  const TableDef& definition(std::string_view table) const;
  /// Runs `run`, which returns an SQLite code, on the prepared source. Runs it again when the schema has
  /// changed. rows: whether the statement must give rows. `run` can give another statement the same values
  /// with the function that it is passed.
  template <typename Run>
  int withPrepared(std::string_view source, bool rows, const Parameters& parameters, Run&& run);
  /// Reads the rows of a source into what `make` makes for its translation.
  template <typename Make>
  void read(std::string_view source, const Parameters& parameters, Make&& make);
  [[noreturn]] void failChange(int code, std::string_view table);

  std::shared_ptr<Session> session_;
  std::string path_;
  mutable std::optional<OpenFile> file_;
  dialect::Scanned scanned_;
  std::vector<Value> converted_;
  std::uint64_t generation_ = 0;
  Room room_;
};

}  // namespace voxa
