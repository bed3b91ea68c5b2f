#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engines/sqlite/result_rows.h"
#include "platform/database/database.h"

namespace voxa {

class SqliteDatabase;
class Statement;

/// A row that is being changed or added.
struct EditedRow {
  std::vector<Value> values;
  std::vector<std::size_t> set;  ///< columns that set() was called for
  std::string sql;               ///< statement of the last update, for these columns and that mode
  std::vector<std::size_t> columns;
  EditMode builtFor = EditMode::none;

  [[nodiscard]] bool sets(std::size_t column) const {
    return std::find(set.begin(), set.end(), column) != set.end();
  }
};

/// A current row over the rows of a result (result_rows.h). Moves and values are in sqlite_recordset.cpp,
/// changes in recordset_editing.cpp, conditions and orderings in recordset_finding.cpp, indexes in
/// recordset_index.cpp.
class SqliteRecordset final : public Recordset {
 public:
  SqliteRecordset(std::shared_ptr<ResultRows> rows, RowOptions options);
  /// Rows that are still to be read: into rows(), and then start() makes the first one the current one.
  SqliteRecordset(std::shared_ptr<SqliteDatabase> database,
                  std::shared_ptr<const dialect::Translation> translation, std::string_view source,
                  const Database::Parameters& parameters, RowOptions options);
  [[nodiscard]] ResultRows& rows() { return *rows_; }
  void start() { moveTo(0, 1); }

  /// Whether rows of that kind are kept as they were when they were opened.
  static bool freezes(RecordsetKind kind) {
    return kind == RecordsetKind::snapshot || kind == RecordsetKind::forwardOnly;
  }

  [[nodiscard]] RecordsetKind kind() const override;
  [[nodiscard]] const std::string& name() const override { return rows_->source(); }
  [[nodiscard]] bool updatable() const override;

  [[nodiscard]] bool eof() const override { return position_ == behind; }
  [[nodiscard]] bool bof() const override { return position_ < 0 || (eof() && rowCount() == 0); }
  void moveFirst() override;
  void moveLast() override;
  void moveNext() override;
  void movePrevious() override;
  void move(std::ptrdiff_t rows) override;
  [[nodiscard]] std::size_t recordCount() const override;
  [[nodiscard]] Bookmark bookmark() const override;
  void goTo(Bookmark place) override;
  [[nodiscard]] Bookmark lastModified() const override;
  [[nodiscard]] std::ptrdiff_t absolutePosition() const override;
  void setAbsolutePosition(std::ptrdiff_t position) override;

  bool findFirst(std::string_view condition) override { return find(condition, 0, 1); }
  bool findLast(std::string_view condition) override { return find(condition, lastRow(), -1); }
  bool findNext(std::string_view condition) override { return find(condition, next(), 1); }
  bool findPrevious(std::string_view condition) override { return find(condition, previous(), -1); }

  [[nodiscard]] const std::string& index() const override;
  void setIndex(std::string_view name) override;
  bool seek(SeekComparison comparison, const std::vector<Value>& keys) override;

  void requery() override;
  [[nodiscard]] std::unique_ptr<Recordset> clone() override;
  [[nodiscard]] std::unique_ptr<Recordset> openFrom(std::string_view filter, std::string_view sort,
                                                    RowOptions options) override;

  [[nodiscard]] std::size_t fieldCount() const override { return rows_->width(); }
  [[nodiscard]] const FieldDef& field(std::size_t index) const override;
  [[nodiscard]] Source source(std::size_t index) const override;
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
  static constexpr std::ptrdiff_t behind = std::numeric_limits<std::ptrdiff_t>::max();

  /// Rows that were opened from others.
  struct Narrowing {
    std::string filter;
    std::string sort;
    bool frozen = false;
  };
  /// What requery() reads, besides the source.
  struct Origin {
    Database::Parameters parameters{};
    bool frozen = false;
    std::string index{};
    std::vector<Narrowing> narrowings{};
  };

  [[nodiscard]] bool isFrozen() const { return freezes(options_.kind); }
  [[nodiscard]] bool isForwardOnly() const { return options_.kind == RecordsetKind::forwardOnly; }
  [[nodiscard]] SqliteDatabase& database() const { return rows_->database(); }
  [[nodiscard]] Origin origin() const { return origin_ ? *origin_ : Origin{.frozen = isFrozen()}; }
  void share(std::shared_ptr<ResultRows> rows);
  [[nodiscard]] std::size_t rowCount() const { return rows_->size() - rows_->deletedCount(); }
  [[nodiscard]] std::ptrdiff_t end() const { return static_cast<std::ptrdiff_t>(rows_->size()); }
  [[nodiscard]] std::ptrdiff_t lastRow() const { return end() - 1; }
  [[nodiscard]] std::ptrdiff_t next() const { return eof() ? behind : position_ + 1; }
  [[nodiscard]] std::ptrdiff_t previous() const { return eof() ? lastRow() : position_ - 1; }
  [[nodiscard]] std::size_t current() const { return static_cast<std::size_t>(position_); }
  void moveTo(std::ptrdiff_t row, std::ptrdiff_t direction);
  void requireScrolling() const;
  void requireCurrent() const;
  void requireEditable() const;
  void checkColumn(std::size_t index) const;
  [[nodiscard]] Value initial(std::size_t index) const;
  void read(Origin origin);

  // Finding
  bool find(std::string_view condition, std::ptrdiff_t from, std::ptrdiff_t direction);
  [[nodiscard]] std::shared_ptr<ResultRows> narrowed(const ResultRows& rows, const Narrowing& by) const;

  // Indexes
  [[nodiscard]] const TableDef& requireTable() const;
  [[nodiscard]] const IndexDef& indexDef(std::string_view name) const;
  /// The statement for the rows of the table in the order of one of its indexes.
  [[nodiscard]] std::string inOrderOf(const std::string& index) const;

  // Editing
  void startEditing(EditMode mode);
  void updateRow();
  void insertRow();

  std::optional<ResultRows> own_;       ///< the rows, until there is a clone
  std::shared_ptr<ResultRows> shared_;  ///< the rows from then on, and others that were read later
  ResultRows* rows_;                    ///< those of the two that there are
  std::optional<Origin> origin_;        ///< none: the source alone
  RowOptions options_;
  std::ptrdiff_t position_ = 0;  ///< index of the current row; -1 before the first one
  std::optional<Bookmark> lastModified_;

  EditMode mode_ = EditMode::none;
  std::optional<EditedRow> edited_;  ///< since the first edit() or addNew()
};

}  // namespace voxa
