// How rows of a recordset are changed, added and deleted.

#include <algorithm>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"
#include "engines/sqlite/sqlite_recordset.h"

namespace voxa {

bool SqliteRecordset::updatable() const {
  return rows_->editable() && !options_.readOnly && !database().connection().readOnly();
}

void SqliteRecordset::requireEditable() const {
  if (updatable()) return;
  if (isFrozen()) throw Error(err::dbNotSupported, "Rows of a snapshot cannot be changed");
  if (!rows_->editable()) throw Error(err::dbNotUpdatable, "The rows of this query cannot be changed");
  if (options_.readOnly) throw Error(err::dbNotUpdatable, "The rows were opened for reading only");
  throw Error(err::dbNotUpdatable, "The database is read-only: " + database().name());
}

Value SqliteRecordset::initial(std::size_t index) const {
  const FieldDef& field = rows_->columns()[index];
  if (field.defaultValue.isNull() && field.type == DataType::Boolean) return false;
  return field.defaultValue;
}

void SqliteRecordset::startEditing(EditMode mode) {
  mode_ = mode;
  if (!edited_) edited_.emplace();
  edited_->set.clear();
  edited_->values.resize(rows_->width());
}

void SqliteRecordset::edit() {
  database().session().guarded([&] {
    requireEditable();
    requireCurrent();
    database().lockForChanges();
    startEditing(EditMode::edit);
  });
}

void SqliteRecordset::addNew() {
  database().session().guarded([&] {
    requireEditable();
    startEditing(EditMode::add);
    for (std::size_t i = 0; i < edited_->values.size(); ++i) edited_->values[i] = initial(i);
  });
}

void SqliteRecordset::set(std::size_t index, const Value& value) {
  database().session().guarded([&] {
    if (mode_ == EditMode::none) throw Error(err::dbUpdateWithoutEdit, "A field was set without edit or add");
    checkColumn(index);
    const FieldDef& field = rows_->columns()[index];
    if (rows_->translation().sourceFields[index].empty()) {
      throw Error(err::dbNotUpdatable, "Column '" + field.name + "' is an expression and cannot be set");
    }
    try {
      edited_->values[index] = convertForField(value, field.type, field.size, &database().session().clock);
    } catch (const Error& error) {
      throw Error(error.number(), "Field '" + field.name + "' of table '" + rows_->translation().table +
                                      "': " + error.description());
    }
    if (!edited_->sets(index)) edited_->set.push_back(index);
  });
}

void SqliteRecordset::update() {
  database().session().guarded([&] {
    if (mode_ == EditMode::none) throw Error(err::dbUpdateWithoutEdit, "Update without edit or add");
    if (mode_ == EditMode::add) {
      insertRow();
    } else {
      if (!edited_->set.empty()) updateRow();
      lastModified_ = static_cast<Bookmark>(position_);
    }
    mode_ = EditMode::none;
  });
}

void SqliteRecordset::updateRow() {
  if (edited_->builtFor != EditMode::edit || edited_->columns != edited_->set) {
    edited_->sql = "UPDATE " + ddl::quoteName(rows_->translation().table) + " SET ";
    for (const std::size_t index : edited_->set) {
      edited_->sql += (index == edited_->set.front() ? "" : ", ") +
                      ddl::quoteName(rows_->translation().sourceFields[index]) + " = ?";
    }
    edited_->sql += " WHERE _rowid_ = ?";
    edited_->columns = edited_->set;
    edited_->builtFor = EditMode::edit;
  }
  Statement& statement = database().rowStatement(edited_->sql);
  int parameter = 0;
  for (const std::size_t index : edited_->set) statement.bind(++parameter, edited_->values[index]);
  statement.bind(++parameter, rows_->numbers()[current()]);
  rows_->change(statement);
  if (database().connection().changes() == 0) throw ResultRows::rowGone();
  rows_->rowChanged(current(), edited_->set, edited_->values);
}

void SqliteRecordset::insertRow() {
  if (edited_->builtFor != EditMode::add || edited_->columns != edited_->set) {
    std::vector<std::string> fields;
    std::string marks;
    for (const std::size_t index : edited_->set) {
      fields.push_back(rows_->translation().sourceFields[index]);
      marks += marks.empty() ? "?" : ", ?";
    }
    edited_->sql = "INSERT INTO " + ddl::quoteName(rows_->translation().table) +
                   (edited_->set.empty() ? " DEFAULT VALUES"
                                         : " (" + ddl::quoteNames(fields) + ") VALUES (" + marks + ")");
    edited_->columns = edited_->set;
    edited_->builtFor = EditMode::add;
  }
  Statement& statement = database().rowStatement(edited_->sql);
  int parameter = 0;
  for (const std::size_t index : edited_->set) statement.bind(++parameter, edited_->values[index]);
  rows_->change(statement);
  lastModified_ = static_cast<Bookmark>(rows_->size());
  rows_->rowAdded(database().connection().lastRowid(), edited_->values);
}

void SqliteRecordset::remove() {
  database().session().guarded([&] {
    requireEditable();
    requireCurrent();
    mode_ = EditMode::none;
    Statement& statement = database().rowStatement(
        "DELETE FROM " + ddl::quoteName(rows_->translation().table) + " WHERE _rowid_ = ?1");
    statement.bind(1, rows_->numbers()[current()]);
    rows_->change(statement);
    if (database().connection().changes() == 0) throw ResultRows::rowGone();
    rows_->rowDeleted(current());
  });
}

}  // namespace voxa
