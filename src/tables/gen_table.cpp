#include "tables/gen_table.h"

#include "platform/database/database.h"
#include "platform/text.h"
#include "tables/itable.h"
#include "tables/table_context.h"

namespace voxa {

namespace {

bool isFlagD(std::string_view column) {
  constexpr std::size_t length = 5;
  return column.size() >= length && equalNoCase(column.substr(column.size() - length), "flagd");
}

bool isSet(const Value& flag) {
  return !flag.isNull() && flag.toBool();
}

}  // namespace

GenTable::GenTable(TableContext& context, ITable& table) : context_(context), table_(table) {}

GenTable::~GenTable() = default;

void GenTable::currentRecordset(std::unique_ptr<Recordset> rows) {
  rows_ = std::move(rows);
}

std::string GenTable::methodText(const char* member) const {
  return "(" + std::string(member) + ") " + table_.Name();
}

Database& GenTable::database() const {
  return *requireOpen(table_.getDB());
}

Recordset& GenTable::current() const {
  if (!rows_) throw Error(err::objectNotSet, "No rows of table '" + table_.Name() + "' are open");
  return *rows_;
}

TableDef GenTable::definition() {
  TableDef td;
  td.name = table_.Name();
  const struct Building {
    Building(TableDef*& place, TableDef& td) : place_(place) { place_ = &td; }
    ~Building() { place_ = nullptr; }
    Building(const Building&) = delete;
    Building& operator=(const Building&) = delete;
    TableDef*& place_;
  } building(building_, td);
  table_.createFields(td);
  table_.createIndexes(td);
  for (FieldDef& field : td.fields) {
    if (isText(field.type)) field.allowZeroLength = true;
  }
  return td;
}

void GenTable::buildTable() {
  context_.attempt({"msgCantCreateTable", table_.Name() + ".create"},
                   [&] { database().createTable(definition()); });
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
  std::int16_t free = -1;
  context_.attempt({"msgUnexpecErr", methodText("getFreeValue")}, [&] {
    const std::string source = field + " from " + table_.Name() +
                               (condition.empty() ? "" : " WHERE " + condition) + " order by " + field +
                               " asc";
    std::int32_t last = 0;
    const auto walk = [&](const char* selecting) {
      last = 0;
      for (rows_ = database().openRecordset(selecting + source); !rows_->eof(); rows_->moveNext()) {
        const std::int32_t value = rows_->get(std::size_t{0}).toInt32();
        if (value > last + 1) break;
        last = value;
      }
    };
    try {
      walk("select distinct ");  // such rows cannot be changed, so their values are read at once
    } catch (const Error&) {
      walk("select ");  // a failure in a row of the table names the table
    }
    free = Value(last + 1).toInt16();  // raises overflow: a full 16-bit column has no free value
  });
  rows_.reset();
  return free;
}

std::int16_t GenTable::getId(const std::string& condition) {
  std::int16_t id = -1;
  context_.attempt([&] {
    rows_ = database().openRecordset("select Id from " + table_.Name() + " where " + condition);
    if (!rows_->eof()) id = rows_->get("Id").toInt16();
  });
  context_.error().clear();
  rows_.reset();
  return id;
}

bool GenTable::openWhere(const std::string& condition) {
  rows_ = database().openRecordset("select * from " + table_.Name() + " WHERE " + condition);
  return rows_->eof();
}

std::int16_t GenTable::changeEach(const std::string& source, const std::function<std::int16_t()>& changeRow) {
  rows_ = database().openRecordset(source);
  std::int16_t failed = 0;
  for (; failed == 0 && !rows_->eof(); rows_->moveNext()) failed = changeRow();
  return failed;
}

/// Runs a change of rows, which shows the error of a row. One transaction, so the disk is waited for once.
std::int16_t GenTable::changeRows(const std::function<std::int16_t()>& changeAll) {
  std::int16_t status = 0;
  const auto change = [&] {
    Transaction transaction(context_.engine(), database());
    const std::int16_t failed = changeAll();
    // The rows before the one that failed keep their change, unless a full disk undid it.
    if (failed == 0 || context_.engine().inTransaction()) transaction.commit();
    return failed;
  };
  context_.showLater([&] {
    status = context_.attempt({"msgUnexpecErr", methodText("setTableFlagsD")}, change);
  });
  rows_.reset();
  return status;
}

std::int16_t GenTable::setTableFlagsD(bool value, const std::string& condition) {
  const std::string source =
      "select * from " + table_.Name() + (condition.empty() ? "" : " WHERE " + condition);
  return changeRows([&] {
    // A condition comes from a caller and may end in an ordering, which an UPDATE does not have.
    const auto done = condition.empty() ? setFlagsAtOnce(value) : std::nullopt;
    return done ? *done : changeEach(source, [&] { return setFlagsD(value); });
  });
}

/// Sets the flags of all rows by one statement. None when the rows have to be changed one by one: a flag has
/// another value than True and False, which only another program can have given it, or a row fails.
std::optional<std::int16_t> GenTable::setFlagsAtOnce(bool value) {
  const auto first = database().openRecordset("select top 1 * from " + table_.Name());
  const std::string given = value ? " = True" : " = False";
  const std::string former = value ? " = False" : " = True";
  std::string plain;
  std::string set;
  std::string differs;
  for (std::size_t i = 0; i < first->fieldCount(); ++i) {
    const FieldDef& field = first->field(i);
    if (!isFlagD(field.name)) continue;
    if (field.type != DataType::Boolean) return std::nullopt;
    const std::string flag = "[" + field.name + "]";
    const bool more = !set.empty();
    // SQLite would look for the value in a list if it were written as one of two that it may have.
    plain += (more ? " and not (" : "not (") + flag + " <> False and " + flag + " <> True)";
    set += (more ? ", " : "") + flag + given;
    differs += (more ? " or " : "") + flag + former;
  }
  if (set.empty() || first->eof()) return std::int16_t{0};
  const auto countRows = [&](const std::string& where) {
    return database().openRecordset("select count(*) from " + table_.Name() + where)->get(std::size_t{0});
  };
  if (countRows("") != countRows(" where " + plain)) return std::nullopt;
  const std::int16_t failed = context_.attempt(
      [&] { database().execute("update " + table_.Name() + " set " + set + " where " + differs); });
  if (failed == 0) return failed;
  if (context_.engine().inTransaction()) return std::nullopt;
  context_.report({"", table_.Name() + ".setFlagsD"});  // a full disk has undone the transaction
  return failed;
}

std::int16_t GenTable::setFlagsD(bool value) {
  return context_.attempt({"", table_.Name() + ".setFlagsD"}, [&] { writeFlags(value); });
}

void GenTable::writeFlags(bool value) {
  Recordset& row = current();
  for (std::size_t i = 0; i < row.fieldCount(); ++i) {
    if (!isFlagD(row.field(i).name) || isSet(row.get(i)) == value) continue;
    if (row.editMode() == EditMode::none) row.edit();
    row.set(i, value);
  }
  if (row.editMode() != EditMode::none) row.update();
}

std::int16_t GenTable::fillNulls() {
  return context_.attempt({"msgUnexpecErr", methodText("setFlagsD")}, [&] {
    Recordset& row = current();
    for (std::size_t i = 0; i < row.fieldCount(); ++i) {
      if (!row.get(i).isNull()) continue;
      row.edit();
      row.set(i, isText(row.field(i).type) ? Value("") : Value(std::int16_t{0}));
      row.update();
    }
  });
}

std::int16_t GenTable::fillTableNulls() {
  return changeRows([&] { return changeEach(table_.Name(), [&] { return fillNulls(); }); });
}

bool GenTable::getFlagDSetFound() {
  bool found = false;
  context_.attempt({"msgUnexpecErr", methodText("getFlagsDSet")}, [&] {
    const Recordset& row = current();
    for (std::size_t i = 0; i < row.fieldCount() && !found; ++i) {
      found = isFlagD(row.field(i).name) && isSet(row.get(i));
    }
  });
  return found;
}

std::vector<Value> GenTable::currentValues() const {
  const Recordset& row = current();
  std::vector<Value> values;
  values.reserve(row.fieldCount());
  for (std::size_t i = 0; i < row.fieldCount(); ++i) values.push_back(row.get(i));
  return values;
}

std::int16_t GenTable::clearFlagsOfSent(const std::string& condition, const std::vector<Value>& sent) {
  return context_.attempt({"", table_.Name() + ".setFlagsD"}, [&] {
    Transaction transaction(context_.engine(), database());
    if (openWhere(condition) || currentValues() != sent) return;
    writeFlags(false);
    transaction.commit();
  });
}

}  // namespace voxa
