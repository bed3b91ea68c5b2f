#include "app/main_database.h"

#include "platform/database/database.h"

namespace voxa {

namespace {

[[noreturn]] void refuse(const std::string& what) {
  throw Error(err::dbNotADatabase, "The file is no main database of this system: " + what);
}

void requireTable(Database& candidate, const TableDef& wanted) {
  const TableDef* found = nullptr;
  try {
    found = &candidate.tableDef(wanted.name);
  } catch (const Error&) {
    refuse("it has no table " + wanted.name);
  }
  for (const FieldDef& field : wanted.fields) {
    const FieldDef* held = found->field(field.name);
    if (held == nullptr) refuse("its table " + wanted.name + " has no column " + field.name);
    if (held->type != field.type) {
      refuse("the column " + field.name + " of its table " + wanted.name + " is of another type");
    }
  }
}

void requireValues(Database& candidate, const TableDef& table) {
  try {
    for (const auto rows = candidate.openRecordset(table.name); !rows->eof(); rows->moveNext()) {
      for (std::size_t i = 0; i < rows->fieldCount(); ++i) (void)rows->get(i);
    }
  } catch (const Error& error) {
    if (error.number() != err::dbConversion) throw;
    refuse(error.description());
  }
}

}  // namespace

SchemaSteps mainDatabaseSteps() {
  return {SchemaStep()};  // 1: files have a number
}

void requireMainDatabase(Database& candidate, const std::vector<TableDef>& tables) {
  for (const TableDef& table : tables) requireTable(candidate, table);
  for (const TableDef& table : tables) requireValues(candidate, table);
}

}  // namespace voxa
