#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/schema.h"
#include "platform/error.h"
#include "platform/value.h"

namespace voxa {

/// The database engine seam. It has the shape of the Jet engine's own objects, since statements and callers
/// have that shape, too. Every failure fills the engine's error collection, then raises an Error with the
/// engine's published number (error.h). One thread.

/// Rows of a table or query, with one current row. The rows are live: update() writes to the file, and a
/// visit to a row that was deleted elsewhere raises 3167. A recordset holds no lock on the file between
/// calls. Field names are compared without regard to case. Two fields of a query with the same name are named
/// "table.field", with the table's alias.
class Recordset {
 public:
  virtual ~Recordset() = default;

  [[nodiscard]] virtual bool eof() const = 0;  ///< behind the last row, or no rows
  [[nodiscard]] virtual bool bof() const = 0;  ///< before the first row, or no rows
  virtual void moveFirst() = 0;                ///< on no rows: stays at eof, no error
  virtual void moveLast() = 0;
  virtual void moveNext() = 0;      ///< 3021 when already at eof. Abandons an edit
  virtual void movePrevious() = 0;  ///< 3021 when already at bof
  [[nodiscard]] virtual std::size_t recordCount() const = 0;
  /// Moves to the first row, or to the next one behind the current row, that satisfies a condition on the
  /// fields of its table. Without such a row the result is false, and the current row stays. 3251 when the
  /// rows cannot be changed.
  virtual bool findFirst(std::string_view condition) = 0;
  virtual bool findNext(std::string_view condition) = 0;

  [[nodiscard]] virtual std::size_t fieldCount() const = 0;
  /// Definition of a field of the result: name, type, size. A column of a table has its whole definition.
  [[nodiscard]] virtual const FieldDef& field(std::size_t index) const = 0;
  /// Position of a field; 3265 when there is none of that name.
  [[nodiscard]] virtual std::size_t fieldIndex(std::string_view name) const = 0;

  /// Value in the current row, or in the row being edited or added; 3021 without a current row.
  [[nodiscard]] virtual Value get(std::size_t index) const = 0;
  [[nodiscard]] Value get(std::string_view name) const { return get(fieldIndex(name)); }

  /// To change a row: edit() or addNew(), set() for each field, update(). 3027 when the rows cannot be
  /// changed (they come from more than one table, are grouped, or the file is read-only). 3020 for set() or
  /// update() without edit() or addNew().
  virtual void edit() = 0;    ///< within a transaction it locks the file and reads the row again
  virtual void addNew() = 0;  ///< fills in defaults; update() leaves the current row where it was
  virtual void set(std::size_t index, const Value& value) = 0;  ///< converts: see convertForField (value.h)
  void set(std::string_view name, const Value& value) { set(fieldIndex(name), value); }
  virtual void update() = 0;
  virtual void cancelUpdate() = 0;
  [[nodiscard]] virtual bool editing() const = 0;  ///< between edit() or addNew() and update()
  /// Deletes the current row. It stays current, without values (get raises 3167), until a move.
  virtual void remove() = 0;
};

/// A statement that changes rows and is run many times with other values. Its text is read once.
class Command {
 public:
  virtual ~Command() = default;
  /// Runs it as Database::execute does. values: one for each declared parameter, in their order.
  virtual int execute(const std::vector<Value>& values) = 0;
};

/// One open database file. Calls after close() raise 3420.
class Database {
 public:
  virtual ~Database() = default;

  /// Full path of the file, native separators.
  [[nodiscard]] virtual const std::string& name() const = 0;
  /// Closes the file. Its recordsets become useless (3420). Closing twice does nothing.
  virtual void close() = 0;
  [[nodiscard]] virtual bool isOpen() const = 0;

  /// Runs one statement that changes rows or definitions (CREATE, ALTER, DROP), or the stored query of that
  /// name. All of its changes are made, or none. Returns the number of rows that it changed. Text behind the
  /// statement's end is an error (3075).
  virtual int execute(std::string_view sql) = 0;
  /// Prepares such a statement for many runs. Its values are literals, or parameters that it declares.
  [[nodiscard]] virtual std::unique_ptr<Command> prepare(std::string_view sql) = 0;
  /// Opens the rows of a SELECT statement, or of the table or stored query of that name. parameters: values
  /// for the declared parameters, by name. A parameter without a value raises 3061.
  [[nodiscard]] virtual std::unique_ptr<Recordset> openRecordset(
      std::string_view source, const std::vector<std::pair<std::string, Value>>& parameters = {}) = 0;

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

/// The engine: creates and opens database files, and runs transactions over all open ones.
class DatabaseEngine {
 public:
  virtual ~DatabaseEngine() = default;

  /// Creates a database file; 3204 when a file of that name exists. General sort order, code page 1252.
  virtual std::shared_ptr<Database> create(std::string_view path) = 0;
  /// Opens a file, shared and for writing, or for reading only when the file allows no more. 3024 missing,
  /// 3343 not a database of this engine, 3051 cannot be opened, 3260 locked for longer than the engine waits.
  /// A file that fails to open keeps every byte.
  virtual std::shared_ptr<Database> open(std::string_view path) = 0;
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
};

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
