#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/recordset.h"
#include "platform/database/schema.h"
#include "platform/error.h"
#include "platform/value.h"

namespace voxa {

/// The database engine seam. It has the shape of the Jet engine's own objects, since statements and callers
/// have that shape, too. Every failure fills the engine's error collection, then raises an Error with the
/// engine's published number (error.h). One thread.

/// A statement that changes rows and is run many times with other values. Its text is read once.
class Command {
 public:
  virtual ~Command() = default;
  /// Runs it as Database::execute does. values: one for each parameter, in the order of QueryInfo.
  virtual int execute(const std::vector<Value>& values) = 0;
};

/// What a statement or stored query is, without running it.
struct QueryInfo {
  enum class Kind : std::uint8_t { select, unite, append, update, remove, makeTable, definition };
  Kind kind = Kind::select;
  /// The declared parameters, with those that its stored queries declare, and behind them the names that are
  /// neither fields nor declared.
  std::vector<FieldDef> parameters{};
  std::size_t declared = 0;         ///< how many are declared; the types of the others are not known
  std::vector<FieldDef> columns{};  ///< of the rows that it gives
};

/// One open database file. Calls after close() raise 3420.
class Database {
 public:
  /// Values by the names of parameters; names of others are left alone.
  using Parameters = std::vector<std::pair<std::string, Value>>;

  virtual ~Database() = default;

  /// Full path of the file, native separators.
  [[nodiscard]] virtual const std::string& name() const = 0;
  /// Closes the file. Its recordsets become useless (3420). Closing twice does nothing.
  virtual void close() = 0;
  [[nodiscard]] virtual bool isOpen() const = 0;
  /// Whether the file can be changed.
  [[nodiscard]] virtual bool updatable() const = 0;

  /// Runs one statement that changes rows or definitions (CREATE, ALTER, DROP), or the stored query of that
  /// name. All of its changes are made, or none. Returns the number of rows that it changed. Text behind the
  /// statement's end is an error (3075). parameters: as for openRecordset.
  virtual int execute(std::string_view sql, const Parameters& parameters = {}) = 0;
  /// Prepares a statement that changes rows for many runs.
  [[nodiscard]] virtual std::unique_ptr<Command> prepare(std::string_view sql) = 0;
  /// Opens the rows of a SELECT statement, or of the table or stored query of that name. parameters: a value
  /// for each parameter. One without a value raises 3061. 3219 for table kind when the source is no table
  /// whose rows can be changed, and for a statement that gives no rows.
  [[nodiscard]] virtual std::unique_ptr<Recordset> openRecordset(std::string_view source,
                                                                 const Parameters& parameters = {},
                                                                 RowOptions options = {}) = 0;
  /// Gives the values of each row of a source, as openRecordset takes it, to `visit`, in the order of the
  /// result and as they were at one moment. None is kept, so that any number of rows takes the same memory.
  /// `visit` does nothing with this database, and says whether it wants the next row. Others wait with their
  /// changes meanwhile. 3421 for a value that has not the type of its field.
  virtual void visitRows(std::string_view source, const std::function<bool(const Value* row)>& visit,
                         const Parameters& parameters = {}) = 0;
  /// Takes all rows of a table of another database into the empty table of that name, within a transaction.
  /// False: the engine cannot do that at once for these two, or a row cannot be; then none was taken.
  virtual bool takeRows(Database& /*from*/, std::string_view /*table*/) { return false; }
  /// What a statement, or the table or stored query of that name, is. Errors as when it is run.
  [[nodiscard]] virtual QueryInfo describe(std::string_view source) = 0;

  /// Begins a reading: what is read until endReading() is the state of one moment, and the file is locked
  /// once for all of it. Others wait with their changes meanwhile. So it must end before anything that may
  /// take long, such as a driver call or a question to a person. A change by this program ends it, and so
  /// does a transaction. beginReading() does nothing within a reading, or in a file that a transaction has
  /// locked.
  virtual void beginReading() = 0;
  virtual void
  endReading() = 0;  ///< ends the reading, no matter who began it; does nothing when there is none
  /// Within a transaction: keeps the changes of others out of this file until the transaction ends, so that
  /// what was read still holds when it is changed. It waits for another program that is changing the file, as
  /// a statement does. It does nothing outside of a transaction.
  virtual void lockForChanges() = 0;

  /// The number that setSchemaVersion has put into the file; 0 in one without. Others can go on reading and
  /// changing the file.
  [[nodiscard]] virtual std::size_t schemaVersion() const = 0;
  /// A change of the file, as execute makes one: a part of the running transaction, or made at once.
  virtual void setSchemaVersion(std::size_t version) = 0;
  /// Copies what is committed, the version with it, into a new database file that only its owner can use;
  /// 3204 when a file of that name exists. The whole file is there or none, and it is on the disk. To have a
  /// copy that is still the newest afterwards, lock the file first (lockForChanges), and make no change
  /// before.
  virtual void copyTo(std::string_view path) const = 0;

  [[nodiscard]] virtual std::vector<std::string> tableNames() const = 0;  ///< in order of creation
  /// The definition as the file holds it; 3078 when there is no such table.
  [[nodiscard]] virtual const TableDef& tableDef(std::string_view table) const = 0;
  virtual void createTable(const TableDef& definition) = 0;  ///< 3010 when the name is taken
  virtual void addField(std::string_view table,
                        const FieldDef& definition) = 0;  ///< existing rows get its default
  virtual void deleteTable(std::string_view table) = 0;
  /// 3022 when rows have the same values in a unique index, 3058 when they have none in a primary or required
  /// one, 3001 for a second primary key or a name that is taken, 3265 for an unknown field.
  virtual void addIndex(std::string_view table, const IndexDef& index) = 0;
  /// 3265 when there is none of that name, 3281 when a relation needs it.
  virtual void deleteIndex(std::string_view table, std::string_view index) = 0;
  /// Gives the field of that name another definition, and converts the values of its rows as if they were
  /// stored anew. Nothing is lost: 3421, 6 or 3163 for a value that the other type or size cannot hold, 3314,
  /// 3315, 3317 for one that the definition forbids, 3280 for another type while an index or relation needs
  /// the field, 3001 when it would become a numbered field, or cease to be one.
  virtual void alterField(std::string_view table, const FieldDef& definition) = 0;
  /// 3265 when there is none, 3280 when an index or relation needs it, 3001 for the last field.
  virtual void deleteField(std::string_view table, std::string_view field) = 0;

  [[nodiscard]] virtual std::vector<Relation> relations() const = 0;
  /// 3366 without a unique index on the primary side, 3201 when existing rows break it.
  virtual void createRelation(const Relation& relation) = 0;
  virtual void deleteRelation(std::string_view name) = 0;  ///< 3265 when there is none

  [[nodiscard]] virtual std::vector<QueryDef> queries() const = 0;
  virtual void createQuery(const QueryDef& query) = 0;  ///< the text is checked at first use
  virtual void deleteQuery(std::string_view name) = 0;  ///< 3265 when there is none
};

/// Returns the handle itself; raises `err::objectNotSet` when it is empty or its database is closed.
[[nodiscard]] const std::shared_ptr<Database>& requireOpen(const std::shared_ptr<Database>& handle);

/// What a file is opened for.
enum class FileUse : std::uint8_t { changing, reading };

/// The engine: creates and opens database files, and runs transactions over all open ones.
class DatabaseEngine {
 public:
  virtual ~DatabaseEngine() = default;

  /// Creates a database file; 3204 when a file of that name exists. General sort order, code page 1252.
  virtual std::shared_ptr<Database> create(std::string_view path) = 0;
  /// Opens a file, shared and for writing, or for reading only when the file allows no more. 3024 missing,
  /// 3343 not a database of this engine, 3051 cannot be opened, 3260 locked for longer than the engine waits.
  /// A file that fails to open keeps every byte. reading: changes raise 3027.
  virtual std::shared_ptr<Database> open(std::string_view path, FileUse use = FileUse::changing) = 0;
  /// The open databases in the order they were opened.
  [[nodiscard]] virtual std::vector<std::shared_ptr<Database>> databases() const = 0;

  /// One transaction over all open databases, and over those opened within it. Transactions do not nest: a
  /// second begin raises 3001. The first change of a file locks that file; Recordset::edit is where the
  /// change of a row begins. Until then others can change the file, and what is read is what they have
  /// committed, just as outside of a transaction. commit makes the changes of each file durable; 3034 without
  /// begin.
  virtual void begin() = 0;
  virtual void commit() = 0;
  virtual void rollback() = 0;
  [[nodiscard]] virtual bool inTransaction() const = 0;

  /// What the last failed call reported, first entry first. A later failure replaces it.
  [[nodiscard]] virtual const std::vector<ErrorInfo>& errors() const = 0;
  /// The number of that failure (Failures); 0 before the first one.
  [[nodiscard]] virtual std::uint64_t lastFailure() const { return 0; }
};

// What engines ask before they begin or end a transaction: 3034 without one, 3001 for a second one.
void requireTransaction(const DatabaseEngine& engine);
void requireNoTransaction(const DatabaseEngine& engine);

/// A reading for the lifetime of this object, unless something ends it before (Database::beginReading).
class Reading {
 public:
  explicit Reading(Database& database) : database_(database) { database_.beginReading(); }
  ~Reading() { database_.endReading(); }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  Database& database_;
};

/// A transaction that is rolled back unless it is committed. Within a running transaction it becomes a part
/// of that one, which then decides.
class Transaction {
 public:
  explicit Transaction(DatabaseEngine& engine) : engine_(engine), owner_(!engine.inTransaction()) {
    if (owner_) engine_.begin();
  }
  /// A transaction that reads what it is going to change: `changed` is locked from the beginning.
  Transaction(DatabaseEngine& engine, Database& changed);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void commit() {
    if (owner_) engine_.commit();
    owner_ = false;
  }

 private:
  DatabaseEngine& engine_;
  bool owner_;
};

}  // namespace voxa
