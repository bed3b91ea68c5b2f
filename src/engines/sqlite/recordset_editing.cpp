// How rows of a recordset are changed, added and deleted.

#include <algorithm>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"
#include "engines/sqlite/sqlite_recordset.h"

namespace voxa {

bool SqliteRecordset::updatable() const {
  return rows_->editable() && !options_.readOnly && !database_->connection().readOnly();
}

void SqliteRecordset::requireEditable() const {
  if (updatable()) return;
  if (isFrozen()) throw Error(err::dbNotSupported, "Rows of a snapshot cannot be changed");
  if (!rows_->editable()) throw Error(err::dbNotUpdatable, "The rows of this query cannot be changed");
  if (options_.readOnly) throw Error(err::dbNotUpdatable, "The rows were opened for reading only");
  throw Error(err::dbNotUpdatable, "The database is read-only: " + database_->name());
}

Value SqliteRecordset::initial(std::size_t index) const {
  const FieldDef& field = rows_->columns()[index];
  if (field.defaultValue.isNull() && field.type == DataType::Boolean) return false;
  return field.defaultValue;
}

void SqliteRecordset::startEditing(EditMode mode) {
  mode_ = mode;
  set_.clear();
  edited_.resize(rows_->width());
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
    const FieldDef& field = rows_->columns()[index];
    if (rows_->translation().sourceFields[index].empty()) {
      throw Error(err::dbNotUpdatable, "Column '" + field.name + "' is an expression and cannot be set");
    }
    try {
      edited_[index] = convertForField(value, field.type, field.size, &database_->session().clock);
    } catch (const Error& error) {
      throw Error(error.number(), "Field '" + field.name + "' of table '" + rows_->translation().table +
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
    } else {
      if (!set_.empty()) updateRow();
      lastModified_ = static_cast<Bookmark>(position_);
    }
    mode_ = EditMode::none;
  });
}

void SqliteRecordset::updateRow() {
  if (builtFor_ != EditMode::edit || editColumns_ != set_) {
    editSql_ = "UPDATE " + ddl::quoteName(rows_->translation().table) + " SET ";
    for (const std::size_t index : set_) {
      editSql_ += (index == set_.front() ? "" : ", ") +
                  ddl::quoteName(rows_->translation().sourceFields[index]) + " = ?";
    }
    editSql_ += " WHERE _rowid_ = ?";
    editColumns_ = set_;
    builtFor_ = EditMode::edit;
  }
  Statement& statement = database_->rowStatement(editSql_);
  int parameter = 0;
  for (const std::size_t index : set_) statement.bind(++parameter, edited_[index]);
  statement.bind(++parameter, rows_->numbers()[current()]);
  rows_->change(statement);
  if (database_->connection().changes() == 0) throw ResultRows::rowGone();
  rows_->rowChanged(current(), set_, edited_);
}

void SqliteRecordset::insertRow() {
  if (builtFor_ != EditMode::add || editColumns_ != set_) {
    std::vector<std::string> fields;
    std::string marks;
    for (const std::size_t index : set_) {
      fields.push_back(rows_->translation().sourceFields[index]);
      marks += marks.empty() ? "?" : ", ?";
    }
    editSql_ =
        "INSERT INTO " + ddl::quoteName(rows_->translation().table) +
        (set_.empty() ? " DEFAULT VALUES" : " (" + ddl::quoteNames(fields) + ") VALUES (" + marks + ")");
    editColumns_ = set_;
    builtFor_ = EditMode::add;
  }
  Statement& statement = database_->rowStatement(editSql_);
  int parameter = 0;
  for (const std::size_t index : set_) statement.bind(++parameter, edited_[index]);
  rows_->change(statement);
  lastModified_ = static_cast<Bookmark>(rows_->size());
  rows_->rowAdded(database_->connection().lastRowid(), edited_);
}

void SqliteRecordset::remove() {
  database_->session().guarded([&] {
    requireEditable();
    requireCurrent();
    mode_ = EditMode::none;
    Statement& statement = database_->rowStatement(
        "DELETE FROM " + ddl::quoteName(rows_->translation().table) + " WHERE _rowid_ = ?1");
    statement.bind(1, rows_->numbers()[current()]);
    rows_->change(statement);
    if (database_->connection().changes() == 0) throw ResultRows::rowGone();
    rows_->rowDeleted(current());
  });
}

}  // namespace voxa
