#include "app/table.h"

#include "app/qdb.h"
#include "platform/database/database.h"

namespace voxa {

Table::Table(Library& library, std::string name)
    : library_(library), gen_(library, *this), name_(std::move(name)) {}

void Table::Name(const std::string& /*name*/) {}

std::shared_ptr<Database> Table::getDB() {
  return library_.QDB().DB();
}

std::int16_t Table::create() {
  gen_.buildTable();
  return 0;
}

std::vector<TableDef> Table::definitions() {
  return {gen_.definition()};
}

std::int16_t Table::setTableFlagsD(bool flagD) {
  return gen_.setTableFlagsD(flagD, "");
}

Database& Table::database() {
  return *requireOpen(getDB());  // the container keeps it open while we work
}

std::unique_ptr<Recordset> Table::rows(const std::string& sql) {
  return database().openRecordset(sql);
}

bool Table::lookUp(const std::string& sql, const FailureMessage& notFound, bool silent,
                   const std::function<void(Recordset&)>& take) {
  bool found = false;
  library_.attempt(notFound, [&] {
    const auto result = rows(sql);
    if (!result->eof()) {
      take(*result);
      found = true;
    } else if (!silent) {
      library_.report(notFound);
    }
  });
  return found;
}

std::int16_t Table::getFreeId() {
  return gen_.getFreeValue("Id", "");
}

std::int16_t Table::freeId(std::int16_t last) {
  const std::int16_t id = Table::getFreeId();
  return id > last ? std::int16_t{-1} : id;
}

void Table::relate(const std::string& relationName, const std::string& primary,
                   const std::string& primaryField, const std::string& foreignField) {
  Relation relation;
  relation.name = relationName;
  relation.table = primary;
  relation.foreignTable = name_;
  relation.fields = {{primaryField, foreignField}};
  database().createRelation(relation);
}

void addField(TableDef& td, const std::string& name, DataType type, int size, const Value& defaultValue) {
  FieldDef field;
  field.name = name;
  field.type = type;
  field.size = size;
  field.defaultValue = defaultValue;
  td.fields.push_back(std::move(field));
}

void addIndex(TableDef& td, const std::string& name, std::initializer_list<const char*> fields,
              IndexKind kind) {
  IndexDef index;
  index.name = name;
  index.fields.assign(fields.begin(), fields.end());
  index.primary = kind == IndexKind::primary;
  index.unique = kind != IndexKind::plain;
  index.required = kind == IndexKind::primary || kind == IndexKind::uniqueRequired;
  td.indexes.push_back(std::move(index));
}

}  // namespace voxa
