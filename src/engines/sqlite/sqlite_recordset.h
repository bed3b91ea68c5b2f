#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engines/language/dialect.h"
#include "platform/database/database.h"

namespace voxa {

class SqliteDatabase;
class Statement;

/// Rows of a result. In a live result the rows can be changed and every column is a field of their table. Of
/// such a result the first rows are read at once, and of the others only the row numbers. Their values are
/// fetched in blocks when they are visited, and again when this database has changed something since. Every
/// other result is read whole at once. A result that shows expressions beside fields keeps the values of that
/// moment. How rows are read is in recordset_reading.cpp, everything else in sqlite_recordset.cpp.
class SqliteRecordset final : public Recordset {
 public:
  SqliteRecordset(std::shared_ptr<SqliteDatabase> database,
                  std::shared_ptr<const dialect::Translation> translation, std::string_view source,
                  RowOptions options);

  ~SqliteRecordset() override;
  SqliteRecordset(const SqliteRecordset&) = delete;
  SqliteRecordset& operator=(const SqliteRecordset&) = delete;

  /// Reads the result of the statement, whose values are bound. SQLITE_DONE when the whole of it is read and
  /// the statement is reset, or the code of a failure. SQLITE_ROW: there are more rows; the statement is to
  /// stay at this one until readNumbers() has read their row numbers.
  int read(Statement& statement);
  /// numbers: gives the row numbers alone of the same result; its values are bound.
  void readNumbers(Statement& numbers);

  [[nodiscard]] bool eof() const override;
  [[nodiscard]] bool bof() const override;
  void moveFirst() override;
  void moveLast() override;
  void moveNext() override;
  void movePrevious() override;
  [[nodiscard]] std::size_t recordCount() const override { return rows_ - deleted_; }

  [[nodiscard]] RecordsetKind kind() const override;
  [[nodiscard]] const std::string& name() const override { return source_; }
  [[nodiscard]] bool updatable() const override;
  void move(std::ptrdiff_t rows) override;
  [[nodiscard]] Bookmark bookmark() const override;
  void goTo(Bookmark place) override;
  [[nodiscard]] Bookmark lastModified() const override;
  [[nodiscard]] std::ptrdiff_t absolutePosition() const override;
  void setAbsolutePosition(std::ptrdiff_t position) override;

  bool findFirst(std::string_view condition) override { return find(condition, 0, 1); }
  bool findLast(std::string_view condition) override;
  bool findNext(std::string_view condition) override { return find(condition, position_ + 1, 1); }
  bool findPrevious(std::string_view condition) override { return find(condition, position_ - 1, -1); }

  [[nodiscard]] const std::string& index() const override;
  void setIndex(std::string_view name) override;
  bool seek(SeekComparison comparison, const std::vector<Value>& keys) override;
  void requery() override;
  [[nodiscard]] std::unique_ptr<Recordset> clone() override;
  [[nodiscard]] std::unique_ptr<Recordset> openFrom(std::string_view filter, std::string_view sort,
                                                    RowOptions options) override;

  [[nodiscard]] std::size_t fieldCount() const override { return width_; }
  [[nodiscard]] const FieldDef& field(std::size_t index) const override;
  [[nodiscard]] std::size_t fieldIndex(std::string_view name) const override;
  [[nodiscard]] Value get(std::size_t index) const override;

  void edit() override;
  void addNew() override;
  void set(std::size_t index, const Value& value) override;
  void update() override;
  void cancelUpdate() override { mode_ = EditMode::none; }
  [[nodiscard]] EditMode editMode() const override { return mode_; }
  void remove() override;

 private:
  [[nodiscard]] const std::vector<FieldDef>& columns() const { return translation_->columns; }
  [[nodiscard]] bool editable() const { return !translation_->table.empty(); }
  [[nodiscard]] static Error rowGone();
  [[nodiscard]] bool numbered() const;
  [[nodiscard]] bool isDeleted(std::size_t row) const;
  [[nodiscard]] bool isHere(std::size_t row) const;
  void moveTo(std::ptrdiff_t row, std::ptrdiff_t direction);
  bool find(std::string_view condition, std::ptrdiff_t from, std::ptrdiff_t direction);
  void requireCurrent() const;
  void requireEditable() const;
  void checkColumn(std::size_t index) const;
  [[nodiscard]] Value initial(std::size_t index) const;

  /// Adds the values of the row at which a statement stands to those that are here.
  void take(Statement& statement, int firstColumn) const;
  void requireFit(const Value& value, std::size_t index) const;
  const Value* values(std::size_t row) const;
  void fetch(std::size_t row) const;
  [[nodiscard]] bool follows(std::size_t start, std::size_t end) const;
  void fetchTogether(std::size_t start, std::size_t end) const;
  void fetchEach(std::size_t start, std::size_t end) const;
  /// Notes that the next row of the block, which ends at `end`, is deleted.
  void missing(std::size_t row, std::size_t end) const;
  void startEditing(EditMode mode);
  void updateRow();
  void insertRow();
  void change(Statement& statement);

  std::shared_ptr<SqliteDatabase> database_;
  std::shared_ptr<const dialect::Translation> translation_;
  std::string source_;
  RowOptions options_;
  std::optional<Bookmark> lastModified_;
  std::size_t width_;  ///< number of columns
  bool live_;          ///< values can be fetched by row number

  std::size_t rows_ = 0;  ///< deleted rows count, too
  std::size_t deleted_ = 0;
  std::vector<std::int64_t> rowids_;  ///< of every row when the rows can be edited
  std::ptrdiff_t position_ = 0;       ///< -1 before the first row, rows_ behind the last

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

  EditMode mode_ = EditMode::none;
  std::vector<Value> edited_;
  std::vector<std::size_t> set_;  ///< columns that set() was called for
  std::string editSql_;           ///< statement of the last update, for the columns editColumns_
  std::vector<std::size_t> editColumns_;
  EditMode builtFor_ = EditMode::none;
};

}  // namespace voxa
