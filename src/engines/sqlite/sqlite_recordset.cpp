#include "engines/sqlite/sqlite_recordset.h"

#include <algorithm>

#include "engines/sqlite/sqlite_database.h"
#include "platform/text.h"

namespace voxa {

SqliteRecordset::SqliteRecordset(std::shared_ptr<ResultRows> rows, RowOptions options) : options_(options) {
  share(std::move(rows));
}

SqliteRecordset::SqliteRecordset(std::shared_ptr<SqliteDatabase> database,
                                 std::shared_ptr<const dialect::Translation> translation,
                                 std::string_view source, const Database::Parameters& parameters,
                                 RowOptions options)
    : own_(std::in_place, std::move(database), std::move(translation), source, freezes(options.kind)),
      rows_(&*own_),
      options_(options) {
  if (!parameters.empty()) origin_ = Origin{.parameters = parameters, .frozen = isFrozen()};
}

void SqliteRecordset::share(std::shared_ptr<ResultRows> rows) {
  shared_ = std::move(rows);
  rows_ = shared_.get();
  own_.reset();
  start();
}

RecordsetKind SqliteRecordset::kind() const {
  if (options_.kind != RecordsetKind::automatic) return options_.kind;
  if (!rows_->editable()) return RecordsetKind::snapshot;
  return database().isTable(rows_->source()) ? RecordsetKind::table : RecordsetKind::dynaset;
}

/// Makes `row` the current one, or else the next row in that direction that is not deleted.
void SqliteRecordset::moveTo(std::ptrdiff_t row, std::ptrdiff_t direction) {
  mode_ = EditMode::none;
  const std::ptrdiff_t last = lastRow();
  while (row >= 0 && row <= last && rows_->isDeleted(static_cast<std::size_t>(row))) row += direction;
  position_ = row > last || rowCount() == 0 ? behind : row;
}

void SqliteRecordset::requireScrolling() const {
  if (isForwardOnly())
    throw Error(err::dbNotSupported, "Forward-only rows are walked through once: this needs another kind");
}

void SqliteRecordset::moveFirst() {
  database().session().guarded([&] {
    if (position_ != 0 && rowCount() != 0) requireScrolling();
    moveTo(0, 1);
  });
}

void SqliteRecordset::moveLast() {
  database().session().guarded([&] {
    requireScrolling();
    moveTo(lastRow(), -1);
  });
}

void SqliteRecordset::moveNext() {
  if (eof()) move(1);
  moveTo(position_ + 1, 1);
}

void SqliteRecordset::movePrevious() {
  move(-1);
}

void SqliteRecordset::move(std::ptrdiff_t rows) {
  database().session().guarded([&] {
    if (rows < 0) requireScrolling();
    if (rows > 0 && eof()) throw Error(err::dbNoCurrentRecord, "There is no record behind the last one");
    if (rows < 0 && bof()) throw Error(err::dbNoCurrentRecord, "There is no record before the first one");
    if (rows == 0) {
      requireCurrent();
      rows_->forget();
      mode_ = EditMode::none;
    }
    if (rows_->deletedCount() == 0 && rows != 0) {
      const std::ptrdiff_t from = eof() ? end() : position_;
      const std::ptrdiff_t to = rows < 0 ? std::max(rows, -1 - from) : std::min(rows, end() - from);
      moveTo(from + to, 1);
      return;
    }
    for (; rows > 0 && !eof(); --rows) moveTo(next(), 1);
    for (; rows < 0 && position_ >= 0; ++rows) moveTo(previous(), -1);
  });
}

std::size_t SqliteRecordset::recordCount() const {
  return isForwardOnly() && !eof() ? current() + 1 : rowCount();
}

Bookmark SqliteRecordset::bookmark() const {
  return database().session().guarded([&] {
    requireScrolling();
    requireCurrent();
    return static_cast<Bookmark>(position_);
  });
}

void SqliteRecordset::goTo(Bookmark place) {
  database().session().guarded([&] {
    requireScrolling();
    if (place >= rows_->size())
      throw Error(err::dbNotABookmark, "Not a valid bookmark: these rows have no such place");
    if (rows_->isDeleted(place)) throw ResultRows::rowGone();
    moveTo(static_cast<std::ptrdiff_t>(place), 1);
  });
}

Bookmark SqliteRecordset::lastModified() const {
  return database().session().guarded([&] {
    if (!lastModified_) throw Error(err::dbNoCurrentRecord, "No row has been changed here yet");
    return *lastModified_;
  });
}

std::ptrdiff_t SqliteRecordset::absolutePosition() const {
  return database().session().guarded([&]() -> std::ptrdiff_t {
    requireScrolling();
    if (eof() || bof()) return -1;
    std::ptrdiff_t before = 0;
    if (rows_->deletedCount() == 0) return position_;
    for (std::size_t row = 0; row < current(); ++row) before += rows_->isDeleted(row) ? 0 : 1;
    return before;
  });
}

void SqliteRecordset::setAbsolutePosition(std::ptrdiff_t position) {
  database().session().guarded([&] {
    requireScrolling();
    if (position < 0 || static_cast<std::size_t>(position) >= rowCount())
      throw Error(err::dbInvalidArgument, "There is no row at the position " + std::to_string(position));
    moveTo(0, 1);
    if (position > 0) move(position);
  });
}

void SqliteRecordset::read(Origin origin) {
  const std::string text = origin.index.empty() ? name() : inOrderOf(origin.index);
  std::shared_ptr<ResultRows> rows = database().readRows(text, name(), origin.parameters, origin.frozen);
  for (const Narrowing& by : origin.narrowings) rows = narrowed(*rows, by);
  share(std::move(rows));
  origin_ = std::move(origin);
  lastModified_.reset();
  edited_.reset();
}

void SqliteRecordset::requery() {
  database().session().guarded([&] { read(origin()); });
}

std::unique_ptr<Recordset> SqliteRecordset::clone() {
  return database().session().guarded([&] {
    requireScrolling();
    if (own_) {
      shared_ = std::make_shared<ResultRows>(std::move(*own_));
      rows_ = shared_.get();
      own_.reset();
    }
    auto twin = std::make_unique<SqliteRecordset>(shared_, options_);
    twin->origin_ = origin_;
    return std::unique_ptr<Recordset>(std::move(twin));
  });
}

void SqliteRecordset::requireCurrent() const {
  if (eof() || bof()) throw Error(err::dbNoCurrentRecord, "There is no current record");
  if (rows_->isDeleted(current())) throw ResultRows::rowGone();
}

void SqliteRecordset::checkColumn(std::size_t index) const {
  if (index < rows_->width()) return;
  throw Error(err::dbNotInCollection, "The rows have no field number " + std::to_string(index));
}

Recordset::Source SqliteRecordset::source(std::size_t index) const {
  return database().session().guarded([&] {
    checkColumn(index);
    const dialect::Translation& translation = rows_->translation();
    if (translation.table.empty() || translation.sourceFields[index].empty()) return Source{};
    return Source{translation.table, translation.sourceFields[index]};
  });
}

const FieldDef& SqliteRecordset::field(std::size_t index) const {
  return database().session().guarded([&]() -> const FieldDef& {
    checkColumn(index);
    return rows_->columns()[index];
  });
}

std::size_t SqliteRecordset::fieldIndex(std::string_view name) const {
  const std::vector<FieldDef>& fields = rows_->columns();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].name == name) return i;
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (equalNoCase(fields[i].name, name)) return i;
  }
  return database().session().guarded([&]() -> std::size_t {
    throw Error(err::dbNotInCollection, "The rows have no field '" + std::string(name) + "'");
  });
}

Value SqliteRecordset::get(std::size_t index) const {
  if (mode_ == EditMode::none && index < rows_->width() && rows_->isHere(current()) && database().isOpen())
    return rows_->valueHere(current(), index);
  return database().session().guarded([&] {
    if (!database().isOpen()) (void)database().connection();
    checkColumn(index);
    if (mode_ == EditMode::add) return edited_->values[index];
    requireCurrent();
    if (mode_ == EditMode::edit && edited_->sets(index)) {
      return edited_->values[index];
    }
    return rows_->value(current(), index);
  });
}

}  // namespace voxa
