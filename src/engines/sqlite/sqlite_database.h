#pragma once

#include <cstdint>
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

class SqliteDatabase final : public Database, public std::enable_shared_from_this<SqliteDatabase> {
 public:
  using Parameters = std::vector<std::pair<std::string, Value>>;

  /// path: full and native, of a file that is known to be a database of this engine.
  SqliteDatabase(std::shared_ptr<Session> session, std::string path);
  ~SqliteDatabase() override;
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  [[nodiscard]] const std::string& name() const override { return path_; }
  void close() override;
  [[nodiscard]] bool isOpen() const override { return file_.has_value(); }

  int execute(std::string_view sql) override;
  [[nodiscard]] std::unique_ptr<Command> prepare(std::string_view sql) override;
  void beginReading() override;
  void endReading() override;
  void lockForChanges() override;
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(std::string_view source,
                                                         const Parameters& parameters) override;

  [[nodiscard]] std::vector<std::string> tableNames() const override;
  [[nodiscard]] const TableDef& tableDef(std::string_view table) const override;
  void createTable(const TableDef& definition) override;
  void addField(std::string_view table, const FieldDef& definition) override;
  void deleteTable(std::string_view table) override;

  [[nodiscard]] std::vector<Relation> relations() const override;
  void createRelation(const Relation& relation) override;

  [[nodiscard]] std::vector<QueryDef> queries() const override;
  void createQuery(const QueryDef& query) override;

  // For the recordsets and the engine.

  [[nodiscard]] Session& session() const { return *session_; }
  [[nodiscard]] Connection& connection() const { return opened().connection; }  ///< 3420 when closed
  /// Statement of the engine's own on the rows of a table, prepared once; holds until the next call.
  Statement& rowStatement(const std::string& sql);
  /// What a command runs: a statement that changes rows, not shared with others of the same text.
  struct Change {
    Prepared prepared;
    std::vector<Value> literals;
    std::vector<std::size_t> parameters;  ///< for each slot that is no literal the declared one that it is
  };
  Change translateChange(std::string_view sql);
  /// Runs it with the values of its declared parameters; again, translated anew, when the schema has changed.
  int run(Change& change, std::string_view sql, const std::vector<Value>& values);
  /// To be called before each change: lockForChanges, and the end of a reading outside of a transaction too.
  void beginChange();
  /// Behind beginChange: runs a statement that changes rows of `table`, whole or not at all; the error names
  /// what broke.
  void change(Statement& statement, std::string_view table);
  /// Counts the changes made through this database: rows read at another count may be stale.
  [[nodiscard]] std::uint64_t generation() const { return generation_; }
  /// Before a commit: what the transaction put off until it was needed is done.
  void settle() { (void)file(); }
  /// End the part of the engine's transaction that is in this file, if it has one.
  void commit();
  void rollback();  ///< neither definitions, names nor rows read before can be relied on then
  /// Whether SQLite has undone that part by itself.
  [[nodiscard]] bool lostTransaction() const { return opened().locked && !connection().inTransaction(); }
  /// Closes without the part of a transaction that is not committed.
  void abandon();

 private:
  /// What exists while the file is open. In this order, so that statements go before the connection.
  struct OpenFile {
    OpenFile(const std::string& path, const Session& session)
        : connection(path, session.options, session.clock), catalog(connection, session.clock) {}
    Connection connection;
    Catalog catalog;
    StatementCache translated;
    StatementCache own;
    bool locked = false;  ///< by the engine's transaction
    /// Relations of this transaction that the file has not yet: those which follow each other are written at
    /// once, since SQLite reads the whole schema again after it.
    std::vector<Relation> unwritten;
    /// Texts that names of tables and queries stand for. Queries cannot change, and a table that is gone
    /// shows when its text runs.
    std::unordered_map<std::string, std::string> names;
  };

  OpenFile& opened() const;  ///< 3420 when closed
  OpenFile& file() const;    ///< the same, SQLite knowing all relations: for all that changes rows
  void writeRelations(const std::vector<Relation>& relations) const;
  /// The statement that a text, a table name or a query name stands for, its literals in scanned_.
  Prepared& prepared(std::string_view source);
  Prepared translate(std::string_view sql);
  /// The same, kept for the key in scanned_, in place of one whose literals were others.
  Prepared& translateScanned(std::string_view sql);
  std::optional<std::string> textOfName(std::string_view name);
  /// Binds the values of all slots, which stay where they are, or in converted_. inputOf: from a slot's
  /// number to its value and, for a parameter, what was declared (else nullptr).
  template <typename InputOf>
  void bind(Prepared& prepared, InputOf&& inputOf);
  void schemaChanged();
  /// Ends a step that changed definitions, the catalog knowing of it.
  void finish(Step& step);
  const TableDef& definition(std::string_view table) const;
  /// Runs `run`, which gives an SQLite code, on the prepared source; again when the schema has changed.
  /// rows: whether the statement has to give rows.
  template <typename Run>
  int withPrepared(std::string_view source, bool rows, const Parameters& parameters, Run&& run);
  [[noreturn]] void failChange(int code, std::string_view table);

  std::shared_ptr<Session> session_;
  std::string path_;
  mutable std::optional<OpenFile> file_;
  dialect::Scanned scanned_;
  std::vector<Value> converted_;
  std::uint64_t generation_ = 0;
};

}  // namespace voxa
