#include "work/take_over.h"

#include <utility>

#include "platform/text.h"

namespace voxa {

namespace {

/// A column that nothing of this system fills: rows that come later have nothing in it.
FieldDef kept(FieldDef field) {
  field.required = false;
  field.autoIncrement = false;
  field.validationRule.clear();
  field.allowZeroLength = isText(field.type);
  return field;
}

}  // namespace

TransferredTable takeOver(Database& from, const TableDef& old, Database& to, const std::string& table,
                          const OnRefused& refused, Observer& observer, std::vector<std::string>& notes) {
  std::vector<std::string> fields;
  for (const FieldDef& field : old.fields) {
    const FieldDef* own = to.tableDef(table).field(field.name);
    fields.push_back(own != nullptr ? own->name : field.name);
    if (own != nullptr) continue;
    to.addField(table, kept(field));
    notes.push_back("The column " + field.name + " of " + table + " is kept; this system does not use it.");
  }
  RowCopy copy(to, to.tableDef(table), std::move(fields), refused);
  copyRows(from, old.name, copy, observer);
  copy.compare();
  return {table, copy.read(), copy.written().rows, copy.read() - copy.written().rows};
}

BuiltInRows::BuiltInRows(Database& database, const std::vector<std::string>& tables) : database_(database) {
  const std::vector<std::string> reversed(tables.rbegin(), tables.rend());
  for (const std::string& table : reversed) {
    const std::vector<std::string> fields = database.tableDef(table).fieldNames();
    database.visitRows(selectionOf(table, fields), [&](const Value* row) {
      rows_[table].emplace_back(row, row + fields.size());
      return true;
    });
    (void)database.execute("DELETE FROM [" + table + "]");
  }
}

void BuiltInRows::putBack(const std::string& table) {
  const auto rows = rows_.find(table);
  if (rows == rows_.end() || rows->second.empty()) return;
  std::vector<std::string> fields = database_.tableDef(table).fieldNames();
  fields.resize(rows->second.front().size());  // columns that were kept since stand behind
  RowCopy copy(database_, database_.tableDef(table), std::move(fields), [](const RefusedRow& /*row*/) {});
  for (const std::vector<Value>& row : rows->second) copy.write(row.data());
}

}  // namespace voxa
