#include "platform/database/sqlite/catalog.h"

#include <algorithm>

#include "platform/database/sqlite/ddl.h"
#include "platform/text.h"

namespace voxa {

std::int64_t Catalog::currentVersion() const {
  if (!versionStatement_) versionStatement_ = connection_.prepare("PRAGMA schema_version");
  const int code = versionStatement_->step();
  if (code != SQLITE_ROW) connection_.fail(code);
  const std::int64_t version = versionStatement_->integer(0);
  versionStatement_->reset();
  return version;
}

void Catalog::refresh() {
  if (version_ && *version_ != currentVersion()) version_.reset();
}

const std::vector<std::unique_ptr<TableDef>>& Catalog::tables() const {
  if (!version_) load();
  return tables_;
}

const std::vector<Relation>& Catalog::relations() const {
  if (!version_) load();
  return relations_;
}

const TableDef* Catalog::table(std::string_view name) const {
  for (const auto& definition : tables()) {
    if (equalNoCase(definition->name, name)) return definition.get();
  }
  return nullptr;
}

void Catalog::load() const {
  // Read before the definitions: a change in between leaves a version that the next refresh finds old.
  const std::int64_t version = currentVersion();
  std::vector<ddl::Table> read;
  Statement rows = connection_.prepare(
      "SELECT type, tbl_name, sql FROM sqlite_schema WHERE sql IS NOT NULL AND tbl_name NOT LIKE "
      "'sqlite\\_%' "
      "ESCAPE '\\' AND tbl_name <> '" +
      std::string(queryTable) + "' ORDER BY type = 'index', rowid");
  int code = SQLITE_ROW;
  while ((code = rows.step()) == SQLITE_ROW) {
    if (rows.text(0) == "table") {
      read.push_back(ddl::readTable(rows.text(2)));
      continue;
    }
    const auto owner = std::find_if(read.begin(), read.end(),
                                    [&](const ddl::Table& t) { return t.definition.name == rows.text(1); });
    if (owner == read.end()) continue;
    if (auto index = ddl::readIndex(rows.text(2), *owner)) {
      owner->definition.indexes.push_back(std::move(*index));
    }
  }
  if (code != SQLITE_DONE) connection_.fail(code);

  std::vector<std::unique_ptr<TableDef>> tables;
  relations_.clear();
  for (ddl::Table& table : read) {
    const auto kept = std::find_if(tables_.begin(), tables_.end(), [&](const auto& t) {
      return t != nullptr && t->name == table.definition.name;
    });
    if (kept != tables_.end()) {
      **kept = std::move(table.definition);
      tables.push_back(std::move(*kept));
    } else {
      tables.push_back(std::make_unique<TableDef>(std::move(table.definition)));
    }
    for (Relation& relation : table.relations) relations_.push_back(std::move(relation));
  }
  tables_ = std::move(tables);
  version_ = version;
}

}  // namespace voxa
