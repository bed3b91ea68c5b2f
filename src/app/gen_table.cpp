#include "app/gen_table.h"

#include "app/itable.h"
#include "app/library.h"
#include "platform/database/database.h"
#include "platform/text.h"

namespace voxa {

namespace {

bool isFlagD(std::string_view column) {
  constexpr std::size_t length = 5;
  return column.size() >= length && equalNoCase(column.substr(column.size() - length), "flagd");
}

bool isText(DataType type) {
  return type == DataType::Text || type == DataType::Memo;
}

bool isSet(const Value& flag) {
  return !flag.isNull() && flag.toBool();
}

}  // namespace

GenTable::GenTable(Library& library, ITable& table) : library_(library), table_(table) {}

GenTable::~GenTable() = default;

void GenTable::currentRecordset(std::unique_ptr<Recordset> rows) {
  rows_ = std::move(rows);
}

std::string GenTable::context(const char* member) const {
  return "(" + std::string(member) + ") " + table_.Name();
}

std::unique_ptr<Recordset> GenTable::open(const std::string& sql) const {
  const auto database = table_.getDB();
  if (!database) throw Error(err::objectNotSet, "No database is open");
  return database->openRecordset(sql);
}

void GenTable::buildTable() {
  library_.attempt({"msgCantCreateTable", table_.Name() + ".create"}, [&] {
    const auto database = table_.getDB();
    if (!database) throw Error(err::objectNotSet, "No database is open");
    TableDef td;
    td.name = table_.Name();
    building_ = &td;
    table_.createFields(td);
    table_.createIndexes(td);
    for (FieldDef& field : td.fields) {
      if (isText(field.type)) field.allowZeroLength = true;
    }
    database->createTable(td);
  });
  building_ = nullptr;
}

void GenTable::appendField(const std::string& fldName, DataType dataType, int size,
                           const Value& defaultValue) {
  if (building_ == nullptr) throw Error(err::objectNotSet, "No table is being built");
  FieldDef field;
  field.name = fldName;
  field.type = dataType;
  field.size = size;
  field.defaultValue = defaultValue;
  building_->fields.push_back(std::move(field));
}

std::int16_t GenTable::getFreeValue(const std::string& field, const std::string& condition) {
  std::int32_t last = 0;
  library_.attempt({"msgUnexpecErr", context("getFreeValue")}, [&] {
    rows_ = open("select " + field + " from " + table_.Name() +
                 (condition.empty() ? "" : " WHERE " + condition) + " order by " + field + " asc");
    for (; !rows_->eof(); rows_->moveNext()) {
      const std::int32_t value = rows_->get(std::size_t{0}).toInt32();
      if (value > last + 1) break;
      last = value;
    }
    (void)Value(last + 1).toInt16();  // raises overflow: a full 16-bit column has no free value left
  });
  rows_.reset();
  return static_cast<std::int16_t>(last + 1);
}

std::int16_t GenTable::getId(const std::string& condition) {
  std::int16_t id = -1;
  library_.attempt([&] {
    rows_ = open("select Id from " + table_.Name() + " where " + condition);
    if (!rows_->eof()) id = rows_->get("Id").toInt16();
  });
  library_.error().clear();
  rows_.reset();
  return id;
}

bool GenTable::openWhere(const std::string& condition) {
  rows_ = open("select * from " + table_.Name() + " WHERE " + condition);
  return rows_->eof();
}

std::int16_t GenTable::setTableFlagsD(bool value, const std::string& condition) {
  const std::int16_t status = library_.attempt({"msgUnexpecErr", context("setTableFlagsD")}, [&] {
    Transaction transaction(library_.engine());
    rows_ = open("select * from " + table_.Name() + (condition.empty() ? "" : " WHERE " + condition));
    for (; !rows_->eof(); rows_->moveNext()) {
      const std::int16_t failed = setFlagsD(value);
      if (failed != 0) return failed;
    }
    transaction.commit();
    return std::int16_t{0};
  });
  rows_.reset();
  return status;
}

std::int16_t GenTable::setFlagsD(bool value) {
  return library_.attempt({"", table_.Name() + ".setFlagsD"}, [&] {
    for (std::size_t i = 0; i < rows_->fieldCount(); ++i) {
      if (!isFlagD(rows_->field(i).name) || isSet(rows_->get(i)) == value) continue;
      if (!rows_->editing()) rows_->edit();
      rows_->set(i, value);
    }
    if (rows_->editing()) rows_->update();
  });
}

std::int16_t GenTable::fillNulls() {
  return library_.attempt({"msgUnexpecErr", context("setFlagsD")}, [&] {
    for (std::size_t i = 0; i < rows_->fieldCount(); ++i) {
      if (!rows_->get(i).isNull()) continue;
      rows_->edit();
      rows_->set(i, isText(rows_->field(i).type) ? Value("") : Value(std::int16_t{0}));
      rows_->update();
    }
  });
}

std::int16_t GenTable::fillTableNulls() {
  return library_.attempt({"msgUnexpecErr", context("setTableFlagsD")}, [&] {
    Transaction transaction(library_.engine());
    rows_ = open(table_.Name());
    for (; !rows_->eof(); rows_->moveNext()) {
      const std::int16_t failed = fillNulls();
      if (failed != 0) return failed;
    }
    rows_.reset();
    transaction.commit();
    return std::int16_t{0};
  });
}

bool GenTable::getFlagDSetFound() {
  bool found = false;
  library_.attempt({"msgUnexpecErr", context("getFlagsDSet")}, [&] {
    for (std::size_t i = 0; i < rows_->fieldCount() && !found; ++i) {
      found = isFlagD(rows_->field(i).name) && isSet(rows_->get(i));
    }
  });
  return found;
}

std::vector<Value> GenTable::currentValues() const {
  std::vector<Value> values;
  values.reserve(rows_->fieldCount());
  for (std::size_t i = 0; i < rows_->fieldCount(); ++i) values.push_back(rows_->get(i));
  return values;
}

std::int16_t GenTable::clearFlagsOfSent(const std::string& condition, const std::vector<Value>& sent) {
  return library_.attempt({"", table_.Name() + ".setFlagsD"}, [&] {
    Transaction transaction(library_.engine());
    if (openWhere(condition) || currentValues() != sent) return std::int16_t{0};
    const std::int16_t failed = setFlagsD(false);
    if (failed == 0) transaction.commit();
    return failed;
  });
}

}  // namespace voxa
