#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/schema.h"
#include "platform/value.h"

namespace voxa {

/// How rows are opened, with the numbers that callers of the data objects know.
enum class RecordsetKind : std::uint8_t {
  automatic = 0,   ///< asked for only: a table by its name, else a dynaset when the rows can be changed, else
                   ///< a snapshot
  table = 1,       ///< the rows of a table that is named; has an index and seek()
  dynaset = 2,     ///< live rows: a change by this database is seen at the next visit
  snapshot = 4,    ///< the rows as they were when they were opened; they cannot be changed
  forwardOnly = 8  ///< a snapshot that is walked through once
};

struct RowOptions {
  RecordsetKind kind = RecordsetKind::automatic;
  bool readOnly = false;  ///< a change of these rows raises 3027
};

/// What a row that is sought must be, compared with the keys: "=", ">=", ">", "<=", "<".
enum class SeekComparison : std::uint8_t { equal, greaterOrEqual, greater, lessOrEqual, less };

/// What has begun with the values of a row and waits for update().
enum class EditMode : std::uint8_t { none = 0, edit = 1, add = 2 };

/// A place among the rows of a recordset and of its clones. It outlives moves and changes, but neither
/// requery() nor setIndex().
using Bookmark = std::uint32_t;

/// Rows of a table or query, with one current row. Live rows (RecordsetKind) can be changed: update() writes
/// to the file, and a visit to a row that was deleted elsewhere raises 3167. A recordset holds no lock on the
/// file between calls. Field names are compared without regard to case. Two fields of a query with the same
/// name are named "table.field", with the table's alias.
///
/// 3251 of every member that the kind of the rows does not have. Forward-only rows have neither bookmarks nor
/// absolutePosition, find, clone and openFrom, and no move back: moveFirst() only while the first row is the
/// current one. A move abandons an edit.
class Recordset {
 public:
  virtual ~Recordset() = default;

  /// What the rows are, never automatic.
  [[nodiscard]] virtual RecordsetKind kind() const = 0;
  /// The statement or name that they were opened with.
  [[nodiscard]] virtual const std::string& name() const = 0;
  /// Whether edit(), addNew() and remove() are possible.
  [[nodiscard]] virtual bool updatable() const = 0;

  [[nodiscard]] virtual bool eof() const = 0;  ///< behind the last row, or no rows
  [[nodiscard]] virtual bool bof() const = 0;  ///< before the first row, or no rows
  virtual void moveFirst() = 0;                ///< on no rows: stays at eof, no error
  virtual void moveLast() = 0;
  virtual void moveNext() = 0;      ///< 3021 when already at eof
  virtual void movePrevious() = 0;  ///< 3021 when already at bof
  /// Moves by so many rows, back when it is negative; stops at eof and bof. 3021 when already there. 0 reads
  /// the current row again.
  virtual void move(std::ptrdiff_t rows) = 0;
  /// The number of rows; of forward-only rows the number of those that have been the current one.
  [[nodiscard]] virtual std::size_t recordCount() const = 0;

  /// The place of the current row; 3021 without one.
  [[nodiscard]] virtual Bookmark bookmark() const = 0;
  /// Makes the row at that place the current one. 3159 for a place that these rows do not have, 3167 when the
  /// row was deleted here.
  virtual void goTo(Bookmark place) = 0;
  /// The place of the row that update() stored last; 3021 before the first one.
  [[nodiscard]] virtual Bookmark lastModified() const = 0;
  /// How many rows are before the current one; rows that were deleted here do not count. -1 without a current
  /// row.
  [[nodiscard]] virtual std::ptrdiff_t absolutePosition() const = 0;
  /// 3001 when there is no such row.
  virtual void setAbsolutePosition(std::ptrdiff_t position) = 0;

  /// Moves to the first or last row, or to the next one behind or before the current row, that satisfies a
  /// condition on the fields of the result. Without such a row the result is false, and the current row
  /// stays. Of rows that can be changed the condition may name the other fields of their table, too. 3061 for
  /// a name that is no field.
  virtual bool findFirst(std::string_view condition) = 0;
  virtual bool findLast(std::string_view condition) = 0;
  virtual bool findNext(std::string_view condition) = 0;
  virtual bool findPrevious(std::string_view condition) = 0;

  /// The name of the index in whose order the rows are; "" for none. 3251 of rows that are not of table kind.
  [[nodiscard]] virtual const std::string& index() const = 0;
  /// Puts the rows in the order of an index of their table, or without one for "". The first row becomes the
  /// current one. Rows that are added later come last. 3015 for an index that the table has not.
  virtual void setIndex(std::string_view name) = 0;
  /// Moves to the first row, in the order of the index, whose values are so to the keys; of less and
  /// lessOrEqual to the last one. Without such a row the result is false, and the current row stays. The keys
  /// are for the first fields of the index; Null is equal to Null only. It finds rows that others have added
  /// meanwhile. 3019 without an index, 3001 for no keys, too many, or Null in another comparison than equal.
  virtual bool seek(SeekComparison comparison, const std::vector<Value>& keys) = 0;

  /// Reads the rows again, with the same parameters. The first row becomes the current one. Clones keep the
  /// rows that they have.
  virtual void requery() = 0;
  /// Another recordset over the same rows, with a current row of its own, at first the first one. It sees
  /// changes of this one, and the bookmarks of one hold in the other.
  [[nodiscard]] virtual std::unique_ptr<Recordset> clone() = 0;
  /// The rows of these that satisfy a condition (as for findFirst), in an order as behind ORDER BY. Either
  /// may be empty: all rows, the order of these. kind: of the new rows; automatic is the kind of these, or
  /// dynaset for a table's. 3219 for table kind.
  [[nodiscard]] virtual std::unique_ptr<Recordset> openFrom(std::string_view filter, std::string_view sort,
                                                            RowOptions options = {}) = 0;

  [[nodiscard]] virtual std::size_t fieldCount() const = 0;
  /// Definition of a field of the result: name, type, size. A column of a table has its whole definition.
  [[nodiscard]] virtual const FieldDef& field(std::size_t index) const = 0;
  /// The table and field that a field of the result shows; both empty for an expression, and for results of
  /// more than one table.
  struct Source {
    std::string table;
    std::string field;
  };
  [[nodiscard]] virtual Source source(std::size_t index) const = 0;
  /// Position of a field; 3265 when there is none of that name.
  [[nodiscard]] virtual std::size_t fieldIndex(std::string_view name) const = 0;

  /// Value in the current row, or in the row being edited or added; 3021 without a current row.
  [[nodiscard]] virtual Value get(std::size_t index) const = 0;
  [[nodiscard]] Value get(std::string_view name) const { return get(fieldIndex(name)); }

  /// To change a row: edit() or addNew(), set() for each field, update(). 3251 for rows that were opened as
  /// snapshot or forward-only, 3027 for others that cannot be changed (they come from more than one table,
  /// are grouped, were opened read-only, or the file is read-only). 3020 for set() or update() without edit()
  /// or addNew().
  virtual void edit() = 0;    ///< within a transaction it locks the file and reads the row again
  virtual void addNew() = 0;  ///< fills in defaults; update() leaves the current row where it was
  virtual void set(std::size_t index, const Value& value) = 0;  ///< converts: see convertForField (value.h)
  void set(std::string_view name, const Value& value) { set(fieldIndex(name), value); }
  virtual void update() = 0;
  virtual void cancelUpdate() = 0;
  [[nodiscard]] virtual EditMode editMode() const = 0;
  /// Deletes the current row. It stays current, without values (get raises 3167), until a move.
  virtual void remove() = 0;
};

/// Values of so many rows from the current one on, or of all that are left, as [field][row]; moves behind
/// them. 3021 without a current row.
[[nodiscard]] std::vector<std::vector<Value>> getRows(Recordset& rows, std::size_t most);

}  // namespace voxa
