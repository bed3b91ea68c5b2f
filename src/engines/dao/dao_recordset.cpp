#include "engines/dao/dao_recordset.h"

#include <algorithm>

#include "engines/dao/definitions.h"
#include "platform/clock.h"
#include "platform/text.h"

namespace voxa {

using dao::Kind;
using dao::Object;

DaoRecordset::DaoRecordset(std::shared_ptr<DaoDatabase> database, std::string source, Object rows)
    : database_(std::move(database)),
      source_(std::move(source)),
      rows_(std::move(rows)),
      kind_(static_cast<RecordsetKind>(rows_.number("Type"))) {
  dao::forEach(rows_.object(Kind::fields, "Fields"), [&](const Object& field) {
    fields_.push_back({field, field.text("Name")});
  });
}

void DaoRecordset::call(const char* member) const {
  guarded([&] { (void)rows_.call(member); });
}

bool DaoRecordset::updatable() const {
  return guarded([&] { return rows_.flag("Updatable"); });
}

bool DaoRecordset::eof() const {
  return guarded([&] { return rows_.flag("EOF"); });
}

bool DaoRecordset::bof() const {
  return guarded([&] { return rows_.flag("BOF"); });
}

/// The library raises 3021 for moves to an end of no rows, and the seam does not.
bool DaoRecordset::isEmpty() const {
  return eof() && bof();
}

void DaoRecordset::moveFirst() {
  if (!isEmpty()) call("MoveFirst");
}

void DaoRecordset::moveLast() {
  if (!isEmpty()) call("MoveLast");
}

void DaoRecordset::moveNext() {
  call("MoveNext");
}

void DaoRecordset::movePrevious() {
  call("MovePrevious");
}

void DaoRecordset::move(std::ptrdiff_t rows) {
  guarded([&] { (void)rows_.call("Move", static_cast<std::int32_t>(rows)); });
}

std::size_t DaoRecordset::recordCount() const {
  return guarded([&] {
    const bool isExact = kind_ == RecordsetKind::table || kind_ == RecordsetKind::forwardOnly;
    if (isExact || isEmpty()) return static_cast<std::size_t>(rows_.number("RecordCount"));
    // The library counts the rows that were visited.
    const Object all = rows_.object(Kind::recordset, "Clone");
    (void)all.call("MoveLast");
    return static_cast<std::size_t>(all.number("RecordCount"));
  });
}

std::unique_ptr<DaoRecordset> DaoRecordset::beside(Object rows) const {
  return std::make_unique<DaoRecordset>(database_, source_, std::move(rows));
}

void DaoRecordset::requery() {
  guarded([&] {
    if (kind_ == RecordsetKind::table) return moveFirst();
    (void)rows_.call("Requery");
    places_ = std::make_shared<Places>();
  });
}

std::unique_ptr<Recordset> DaoRecordset::clone() {
  return guarded([&] {
    auto twin = beside(rows_.object(Kind::recordset, "Clone"));
    twin->places_ = places_;
    twin->moveFirst();  // the library's has no current row at first
    return std::unique_ptr<Recordset>(std::move(twin));
  });
}

std::unique_ptr<Recordset> DaoRecordset::openFrom(std::string_view filter, std::string_view sort,
                                                  RowOptions options) {
  return guarded([&] {
    if (options.kind == RecordsetKind::table)
      throw Error(err::dbInvalidOperation, "Rows of table kind are those of a whole table");
    // Rows of a table have neither filter nor sort in the library.
    const Object from = kind_ == RecordsetKind::table
                            ? database_->openRows(source_, {}, {.kind = RecordsetKind::dynaset})
                            : rows_;
    if (options.kind == RecordsetKind::automatic)
      options.kind = kind_ == RecordsetKind::table ? RecordsetKind::dynaset : kind_;
    from.put("Filter", std::string(filter));
    from.put("Sort", std::string(sort));
    dao::Arguments arguments;
    arguments.push_back(dao::argument(static_cast<std::int32_t>(options.kind)));
    if (options.readOnly) arguments.push_back(dao::argument(dao::readOnlyRows));
    return std::unique_ptr<Recordset>(
        beside(from.objectWith(Kind::recordset, "OpenRecordset", std::move(arguments))));
  });
}

const FieldDef& DaoRecordset::field(std::size_t index) const {
  return guarded([&]() -> const FieldDef& {
    Column& found = column(index);
    if (!found.definition) found.definition = dao::readField(found.field);
    return *found.definition;
  });
}

Recordset::Source DaoRecordset::source(std::size_t index) const {
  return guarded([&] {
    const Object& field = column(index).field;
    return Source{field.text("SourceTable"), field.text("SourceField")};
  });
}

std::size_t DaoRecordset::fieldIndex(std::string_view name) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [&](const Column& each) { return equalNoCase(each.name, name); });
  if (found != fields_.end()) return static_cast<std::size_t>(found - fields_.begin());
  return guarded([&]() -> std::size_t {
    throw Error(err::dbNotInCollection, "The rows have no field '" + std::string(name) + "'");
  });
}

Value DaoRecordset::get(std::size_t index) const {
  return guarded([&] { return column(index).field.value("Value"); });
}

void DaoRecordset::edit() {
  call("Edit");
}

void DaoRecordset::addNew() {
  call("AddNew");
}

void DaoRecordset::set(std::size_t index, const Value& value) {
  guarded([&] {
    Column& target = column(index);
    if (!target.stored) target.stored = dao::readColumn(target.field);
    const FieldDef& field = *target.stored;
    target.field.put(
        "Value",
        ColumnValue{convertForField(value, field.type, field.size, &database_->session().clock), field.type});
  });
}

void DaoRecordset::update() {
  call("Update");
}

void DaoRecordset::cancelUpdate() {
  if (editMode() != EditMode::none) call("CancelUpdate");
}

EditMode DaoRecordset::editMode() const {
  return guarded([&] { return static_cast<EditMode>(rows_.number("EditMode")); });
}

void DaoRecordset::remove() {
  call("Delete");
}

}  // namespace voxa
