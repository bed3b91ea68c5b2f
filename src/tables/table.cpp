#include "tables/table.h"

#include "platform/database/database.h"
#include "tables/table_context.h"

namespace voxa {

Table::Table(TableContext& context, std::string name)
    : context_(context), gen_(context, *this), name_(std::move(name)) {}

void Table::Name(const std::string& /*name*/) {}

std::shared_ptr<Database> Table::getDB() {
  return context_.DB();
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
  context_.attempt(notFound, [&] {
    const auto result = rows(sql);
    if (!result->eof()) {
      take(*result);
      found = true;
    } else if (!silent) {
      context_.report(notFound);
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

}  // namespace voxa
