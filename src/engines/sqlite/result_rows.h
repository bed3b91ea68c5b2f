#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engines/language/dialect.h"
#include "platform/database/recordset.h"
#include "platform/error.h"

namespace voxa {

class SqliteDatabase;
class Statement;

/// The rows of a result, which a recordset and its clones share. A row keeps its index for as long as they
/// exist; new rows come last.
///
/// In a live result every column is a field of one table. Of such a result the first rows are read at once,
/// and of the others only the row numbers. Their values are fetched in blocks when they are visited, and
/// again when this database has changed something since. Every other result is read whole at once: one that
/// was asked for as it is now (frozen), one whose rows cannot be changed, and one that shows expressions
/// beside fields.
class ResultRows {
 public:
  ResultRows(std::shared_ptr<SqliteDatabase> database,
             std::shared_ptr<const dialect::Translation> translation, std::string_view source, bool frozen);
  ~ResultRows();
  ResultRows(ResultRows&&) = default;
  ResultRows(const ResultRows&) = delete;
  ResultRows& operator=(const ResultRows&) = delete;

  /// Reads the result of the statement, whose values are bound. SQLITE_DONE when the whole of it is read and
  /// the statement is reset, or the code of a failure. SQLITE_ROW: there are more rows; the statement is to
  /// stay at this one until readNumbers() has read their row numbers.
  int read(Statement& statement);
  /// numbers: gives the row numbers alone of the same result; its values are bound.
  void readNumbers(Statement& numbers);
  /// Some of these rows, in that order. frozen: with their values of now.
  [[nodiscard]] std::shared_ptr<ResultRows> only(const std::vector<std::size_t>& rows, bool frozen) const;

  [[nodiscard]] SqliteDatabase& database() const { return *database_; }
  [[nodiscard]] const std::string& source() const { return source_; }  ///< what the rows were opened with
  [[nodiscard]] const dialect::Translation& translation() const { return *translation_; }
  [[nodiscard]] const std::vector<FieldDef>& columns() const { return translation_->columns; }
  [[nodiscard]] std::size_t width() const { return width_; }
  [[nodiscard]] bool editable() const { return editable_; }  ///< the rows of a table, known by their numbers
  [[nodiscard]] bool live() const { return live_; }
  [[nodiscard]] std::size_t size() const { return rows_; }  ///< deleted rows count, too
  [[nodiscard]] std::size_t deletedCount() const { return deleted_; }
  [[nodiscard]] bool isDeleted(std::size_t row) const { return deleted_ != 0 && rowids_[row] == deletedRow; }
  [[nodiscard]] const std::vector<std::int64_t>& numbers() const { return rowids_; }  ///< of editable rows

  /// Whether the values of the row are here, up to date, and nothing is to be said of any of them.
  [[nodiscard]] bool isHere(std::size_t row) const;
  /// A value of a row that is here.
  [[nodiscard]] const Value& valueHere(std::size_t row, std::size_t column) const {
    return values_[(row - blockStart_) * width_ + column];
  }
  /// The values of a row, fetched if they have to be; nullptr when somebody has deleted it. They hold until
  /// the next call.
  [[nodiscard]] const Value* find(std::size_t row) const;
  /// One of them; 3167 when the row is deleted, 3421 when it has not the type of its field.
  [[nodiscard]] const Value& value(std::size_t row, std::size_t column) const;
  /// Values are fetched again when they are visited next.
  void forget() { blockRows_ = live_ ? 0 : blockRows_; }

  [[nodiscard]] static Error rowGone();
  /// What is raised for a value that has not the type of its field.
  [[nodiscard]] static Error misfit(const dialect::Translation& translation, std::size_t column);

  // For who has changed the rows.

  /// Runs a change that this result makes itself: rows that were up to date before still are.
  void change(Statement& statement);
  void rowChanged(std::size_t row, const std::vector<std::size_t>& columns, const std::vector<Value>& values);
  /// values: those of the new row, as far as they are known.
  void rowAdded(std::int64_t number, std::vector<Value> values);
  /// A row of the table that is not among these; returns its index.
  std::size_t add(std::int64_t number);
  void rowDeleted(std::size_t row);

 private:
  static constexpr std::int64_t deletedRow = INT64_MIN;

  [[nodiscard]] bool numbered() const;
  /// Adds the values of the row at which a statement stands to those that are here.
  void take(Statement& statement, int firstColumn) const;
  void requireFit(const Value& value, std::size_t column) const;
  void fetch(std::size_t row) const;
  [[nodiscard]] bool follows(std::size_t start, std::size_t end) const;
  void fetchTogether(std::size_t start, std::size_t end) const;
  void fetchEach(std::size_t start, std::size_t end) const;
  /// Notes that the next row of the block, which ends at `end`, is deleted.
  void missing(std::size_t row, std::size_t end) const;

  std::shared_ptr<SqliteDatabase> database_;
  std::shared_ptr<const dialect::Translation> translation_;
  std::string source_;
  std::size_t width_;  ///< number of columns
  bool editable_;
  bool live_;  ///< values can be fetched by row number

  std::size_t rows_ = 0;
  std::size_t deleted_ = 0;
  std::vector<std::int64_t> rowids_;  ///< of every row when the rows are editable

  // The rows whose values are here, one after the other: blockRows_ rows from blockStart_ on.
  mutable std::vector<Value> values_;
  /// Places in values_ of values that do not have their field's type. Only another program can have written
  /// them; to read one raises 3421.
  mutable std::vector<std::size_t> misfits_;
  mutable std::vector<bool>
      gone_;  ///< rows of the block that somebody has deleted; empty when there are none
  mutable std::size_t blockStart_ = 0;
  mutable std::size_t blockRows_ = 0;
  mutable std::size_t fetchRows_ = 256;  ///< so many are fetched next when nothing changed meanwhile
  mutable std::uint64_t generation_;
  mutable std::string fetchSql_;  ///< one row
  mutable std::string rangeSql_;  ///< rows that follow each other
};

}  // namespace voxa
