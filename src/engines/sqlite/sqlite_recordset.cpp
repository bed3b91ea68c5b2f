#include "engines/sqlite/sqlite_recordset.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr std::int64_t deletedRow = std::numeric_limits<std::int64_t>::min();

bool showsFieldsOnly(const dialect::Translation& translation) {
  return !translation.table.empty() &&
         std::none_of(translation.sourceFields.begin(), translation.sourceFields.end(),
                      [](const std::string& field) { return field.empty(); });
}

}  // namespace

SqliteRecordset::SqliteRecordset(std::shared_ptr<SqliteDatabase> database,
                                 std::shared_ptr<const dialect::Translation> translation,
                                 std::string_view source, RowOptions options)
    : database_(std::move(database)),
      translation_(std::move(translation)),
      source_(source),
      options_(options),
      width_(translation_->columns.size()),
      live_(showsFieldsOnly(*translation_)),
      generation_(database_->generation()) {
  SqliteDatabase::Room room = database_->takeRoom();
  rowids_ = std::move(room.rowids);
  values_ = std::move(room.values);
}

SqliteRecordset::~SqliteRecordset() {
  constexpr std::size_t small = 64;
  if (values_.capacity() > small || rowids_.capacity() > small) return;
  rowids_.clear();
  values_.clear();
  database_->giveRoom({std::move(rowids_), std::move(values_)});
}

Error SqliteRecordset::rowGone() {
  return {err::dbRecordDeleted, "The record has been deleted"};
}

bool SqliteRecordset::isDeleted(std::size_t row) const {
  return deleted_ != 0 && rowids_[row] == deletedRow;
}

bool SqliteRecordset::eof() const {
  return position_ == static_cast<std::ptrdiff_t>(rows_);
}

bool SqliteRecordset::bof() const {
  return position_ < 0 || (eof() && recordCount() == 0);
}

/// Makes `row` the current one, or else the next row in that direction that is not deleted.
void SqliteRecordset::moveTo(std::ptrdiff_t row, std::ptrdiff_t direction) {
  mode_ = EditMode::none;
  const auto end = static_cast<std::ptrdiff_t>(rows_);
  while (row >= 0 && row < end && isDeleted(static_cast<std::size_t>(row))) row += direction;
  position_ = recordCount() == 0 ? end : row;
}

void SqliteRecordset::moveFirst() {
  moveTo(0, 1);
}

void SqliteRecordset::moveLast() {
  moveTo(static_cast<std::ptrdiff_t>(rows_) - 1, -1);
}

void SqliteRecordset::moveNext() {
  database_->session().guarded([&] {
    if (eof()) throw Error(err::dbNoCurrentRecord, "There is no record behind the last one");
    moveTo(position_ + 1, 1);
  });
}

void SqliteRecordset::movePrevious() {
  database_->session().guarded([&] {
    if (bof()) throw Error(err::dbNoCurrentRecord, "There is no record before the first one");
    moveTo(position_ - 1, -1);
  });
}

/// Asks once for the numbers of all rows that satisfy the condition.
bool SqliteRecordset::find(std::string_view condition, std::ptrdiff_t from, std::ptrdiff_t direction) {
  return database_->session().guarded([&] {
    if (!editable()) throw Error(err::dbNotSupported, "Rows of this query cannot be searched");
    const std::string sql =
        "select * from [" + translation_->table + "] where (" + std::string(condition) + ")";
    const auto found = database_->openRecordset(sql, {}, {});
    std::vector<std::int64_t> numbers = dynamic_cast<const SqliteRecordset&>(*found).rowids_;
    std::sort(numbers.begin(), numbers.end());
    for (std::ptrdiff_t row = from; row >= 0 && row < static_cast<std::ptrdiff_t>(rows_); row += direction) {
      const auto at = static_cast<std::size_t>(row);
      if (isDeleted(at) || !std::binary_search(numbers.begin(), numbers.end(), rowids_[at])) continue;
      moveTo(row, direction);
      return true;
    }
    return false;
  });
}

bool SqliteRecordset::findLast(std::string_view condition) {
  return find(condition, static_cast<std::ptrdiff_t>(rows_) - 1, -1);
}

RecordsetKind SqliteRecordset::kind() const {
  if (options_.kind != RecordsetKind::automatic) return options_.kind;
  return editable() ? RecordsetKind::dynaset : RecordsetKind::snapshot;
}

bool SqliteRecordset::updatable() const {
  return editable() && !options_.readOnly && !database_->connection().readOnly();
}

void SqliteRecordset::move(std::ptrdiff_t rows) {
  for (; rows > 0; --rows) {
    moveNext();
    if (eof()) return;
  }
  for (; rows < 0; ++rows) {
    movePrevious();
    if (bof()) return;
  }
}

Bookmark SqliteRecordset::bookmark() const {
  return database_->session().guarded([&] {
    requireCurrent();
    return static_cast<Bookmark>(position_);
  });
}

void SqliteRecordset::goTo(Bookmark place) {
  database_->session().guarded([&] {
    if (place >= rows_) throw Error(err::dbNotABookmark, "This is not the bookmark of one of these rows");
    if (isDeleted(place)) throw rowGone();
    moveTo(static_cast<std::ptrdiff_t>(place), 1);
  });
}

Bookmark SqliteRecordset::lastModified() const {
  return database_->session().guarded([&] {
    if (!lastModified_) throw Error(err::dbNoCurrentRecord, "No row has been changed yet");
    return *lastModified_;
  });
}

std::ptrdiff_t SqliteRecordset::absolutePosition() const {
  if (eof() || bof()) return -1;
  std::ptrdiff_t before = 0;
  for (std::ptrdiff_t row = 0; row < position_; ++row)
    before += isDeleted(static_cast<std::size_t>(row)) ? 0 : 1;
  return before;
}

void SqliteRecordset::setAbsolutePosition(std::ptrdiff_t position) {
  database_->session().guarded([&] {
    if (position < 0 || static_cast<std::size_t>(position) >= recordCount())
      throw Error(err::dbInvalidArgument, "There are not so many rows");
    moveFirst();
    move(position);
  });
}

namespace {
[[noreturn]] void notYet() {
  throw Error(err::dbNotSupported, "Rows of this kind cannot do this");
}
}  // namespace

const std::string& SqliteRecordset::index() const {
  notYet();
}
void SqliteRecordset::setIndex(std::string_view) {
  notYet();
}
bool SqliteRecordset::seek(SeekComparison, const std::vector<Value>&) {
  notYet();
}
void SqliteRecordset::requery() {
  notYet();
}
std::unique_ptr<Recordset> SqliteRecordset::clone() {
  notYet();
}
std::unique_ptr<Recordset> SqliteRecordset::openFrom(std::string_view, std::string_view, RowOptions) {
  notYet();
}

void SqliteRecordset::requireCurrent() const {
  if (eof() || bof()) throw Error(err::dbNoCurrentRecord, "There is no current record");
  if (isDeleted(static_cast<std::size_t>(position_))) throw rowGone();
}

void SqliteRecordset::requireEditable() const {
  if (editable() && !database_->connection().readOnly()) return;
  throw Error(err::dbNotUpdatable, editable() ? "The database is read-only: " + database_->name()
                                              : "The rows of this query cannot be changed");
}

void SqliteRecordset::checkColumn(std::size_t index) const {
  if (index < width_) return;
  throw Error(err::dbNotInCollection, "The rows have no field number " + std::to_string(index));
}

const FieldDef& SqliteRecordset::field(std::size_t index) const {
  return database_->session().guarded([&]() -> const FieldDef& {
    checkColumn(index);
    return columns()[index];
  });
}

std::size_t SqliteRecordset::fieldIndex(std::string_view name) const {
  const std::vector<FieldDef>& fields = columns();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].name == name) return i;
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (equalNoCase(fields[i].name, name)) return i;
  }
  return database_->session().guarded([&]() -> std::size_t {
    throw Error(err::dbNotInCollection, "The rows have no field '" + std::string(name) + "'");
  });
}

Value SqliteRecordset::initial(std::size_t index) const {
  const FieldDef& field = columns()[index];
  if (field.defaultValue.isNull() && field.type == DataType::Boolean) return false;
  return field.defaultValue;
}

Value SqliteRecordset::get(std::size_t index) const {
  const auto current = static_cast<std::size_t>(position_);
  if (mode_ == EditMode::none && index < width_ && isHere(current) && database_->isOpen())
    return values_[(current - blockStart_) * width_ + index];
  return database_->session().guarded([&] {
    if (!database_->isOpen()) (void)database_->connection();
    checkColumn(index);
    if (mode_ == EditMode::add) return edited_[index];
    requireCurrent();
    if (mode_ == EditMode::edit && std::find(set_.begin(), set_.end(), index) != set_.end()) {
      return edited_[index];
    }
    const Value* value = values(static_cast<std::size_t>(position_)) + index;
    if (!misfits_.empty()) requireFit(*value, index);
    return *value;
  });
}

/// Whether the values of the row are here, up to date, and nothing is to be said of any of them.
bool SqliteRecordset::isHere(std::size_t row) const {
  return row - blockStart_ < blockRows_ && deleted_ == 0 && misfits_.empty() && gone_.empty() &&
         (!live_ || generation_ == database_->generation());
}

void SqliteRecordset::requireFit(const Value& value, std::size_t index) const {
  const auto place = static_cast<std::size_t>(&value - values_.data());
  if (!std::binary_search(misfits_.begin(), misfits_.end(), place)) return;
  throw Error(err::dbConversion,
              "Data type conversion error: the column " + columns()[index].name +
                  (translation_->table.empty() ? "" : " of the table " + translation_->table) +
                  " holds a value of another type");
}

void SqliteRecordset::startEditing(EditMode mode) {
  mode_ = mode;
  set_.clear();
  edited_.resize(width_);
}

void SqliteRecordset::edit() {
  database_->session().guarded([&] {
    requireEditable();
    requireCurrent();
    database_->lockForChanges();
    startEditing(EditMode::edit);
  });
}

void SqliteRecordset::addNew() {
  database_->session().guarded([&] {
    requireEditable();
    startEditing(EditMode::add);
    for (std::size_t i = 0; i < edited_.size(); ++i) edited_[i] = initial(i);
  });
}

void SqliteRecordset::set(std::size_t index, const Value& value) {
  database_->session().guarded([&] {
    if (mode_ == EditMode::none) throw Error(err::dbUpdateWithoutEdit, "A field was set without edit or add");
    checkColumn(index);
    const FieldDef& field = columns()[index];
    if (translation_->sourceFields[index].empty()) {
      throw Error(err::dbNotUpdatable, "Column '" + field.name + "' is an expression and cannot be set");
    }
    try {
      edited_[index] = convertForField(value, field.type, field.size, &database_->session().clock);
    } catch (const Error& error) {
      throw Error(error.number(), "Field '" + field.name + "' of table '" + translation_->table +
                                      "': " + error.description());
    }
    if (std::find(set_.begin(), set_.end(), index) == set_.end()) set_.push_back(index);
  });
}

void SqliteRecordset::update() {
  database_->session().guarded([&] {
    if (mode_ == EditMode::none) throw Error(err::dbUpdateWithoutEdit, "Update without edit or add");
    if (mode_ == EditMode::add) {
      insertRow();
    } else if (!set_.empty()) {
      updateRow();
    }
    mode_ = EditMode::none;
  });
}

/// Runs a change that this result makes itself: rows that were up to date before still are.
void SqliteRecordset::change(Statement& statement) {
  database_->beginChange();
  const bool fresh = generation_ == database_->generation();
  database_->change(statement, translation_->table);
  if (fresh) generation_ = database_->generation();
}

void SqliteRecordset::updateRow() {
  if (builtFor_ != EditMode::edit || editColumns_ != set_) {
    editSql_ = "UPDATE " + ddl::quoteName(translation_->table) + " SET ";
    for (const std::size_t index : set_) {
      editSql_ +=
          (index == set_.front() ? "" : ", ") + ddl::quoteName(translation_->sourceFields[index]) + " = ?";
    }
    editSql_ += " WHERE _rowid_ = ?";
    editColumns_ = set_;
    builtFor_ = EditMode::edit;
  }
  const auto row = static_cast<std::size_t>(position_);
  Statement& statement = database_->rowStatement(editSql_);
  int parameter = 0;
  for (const std::size_t index : set_) statement.bind(++parameter, edited_[index]);
  statement.bind(++parameter, rowids_[row]);
  change(statement);
  if (database_->connection().changes() == 0) throw rowGone();
  lastModified_ = static_cast<Bookmark>(row);

  const bool buffered = row >= blockStart_ && row - blockStart_ < blockRows_;
  for (const std::size_t index : set_) {
    if (columns()[index].autoIncrement) rowids_[row] = edited_[index].toInt32();
    if (!buffered) continue;
    const std::size_t place = (row - blockStart_) * width_ + index;
    values_[place] = edited_[index];
    std::erase(misfits_, place);
  }
}

void SqliteRecordset::insertRow() {
  if (builtFor_ != EditMode::add || editColumns_ != set_) {
    std::vector<std::string> fields;
    std::string marks;
    for (const std::size_t index : set_) {
      fields.push_back(translation_->sourceFields[index]);
      marks += marks.empty() ? "?" : ", ?";
    }
    editSql_ =
        "INSERT INTO " + ddl::quoteName(translation_->table) +
        (set_.empty() ? " DEFAULT VALUES" : " (" + ddl::quoteNames(fields) + ") VALUES (" + marks + ")");
    editColumns_ = set_;
    builtFor_ = EditMode::add;
  }
  Statement& statement = database_->rowStatement(editSql_);
  int parameter = 0;
  for (const std::size_t index : set_) statement.bind(++parameter, edited_[index]);
  change(statement);

  rowids_.push_back(database_->connection().lastRowid());
  lastModified_ = static_cast<Bookmark>(rows_);
  if (!live_) {
    for (std::size_t i = 0; i < width_; ++i) {
      if (columns()[i].autoIncrement) edited_[i] = static_cast<std::int32_t>(rowids_.back());
    }
    values_.insert(values_.end(), edited_.begin(), edited_.end());
    ++blockRows_;
  }
  if (eof()) ++position_;
  ++rows_;
}

void SqliteRecordset::remove() {
  database_->session().guarded([&] {
    requireEditable();
    requireCurrent();
    mode_ = EditMode::none;
    Statement& statement =
        database_->rowStatement("DELETE FROM " + ddl::quoteName(translation_->table) + " WHERE _rowid_ = ?1");
    statement.bind(1, rowids_[static_cast<std::size_t>(position_)]);
    change(statement);
    if (database_->connection().changes() == 0) throw rowGone();
    rowids_[static_cast<std::size_t>(position_)] = deletedRow;
    ++deleted_;
  });
}

}  // namespace voxa
