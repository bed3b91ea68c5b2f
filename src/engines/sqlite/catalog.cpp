#include "engines/sqlite/catalog.h"

#include <algorithm>

#include "engines/sqlite/session.h"
#include "platform/text.h"

namespace voxa {

std::optional<std::string> Catalog::queryText(std::string_view name) const {
  if (!queryStatement_)
    queryStatement_ = connection_.prepare(std::string("SELECT Sql FROM ") + queryTable + " WHERE Name = ?1");
  const Value key(name);
  queryStatement_->bind(1, key);
  const int code = queryStatement_->step();
  std::optional<std::string> text;
  if (code == SQLITE_ROW) text = queryStatement_->text(0);
  queryStatement_->reset();
  if (code != SQLITE_ROW && code != SQLITE_DONE) connection_.fail(code);
  return text;
}

std::int64_t Catalog::currentVersion() const {
  if (!versionStatement_) versionStatement_ = connection_.prepare("PRAGMA schema_version");
  const int code = versionStatement_->step();
  if (code != SQLITE_ROW) connection_.fail(code);
  const std::int64_t version = versionStatement_->integer(0);
  versionStatement_->reset();
  return version;
}

bool Catalog::refresh() {
  if (version_ && *version_ != currentVersion()) version_.reset();
  return version_.has_value();
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

const Clock* Catalog::clock() const {
  return &session_.clock;
}

bool Catalog::isSecret(const TableDef& table, const FieldDef& field) const {
  const auto& secrets = session_.options.secrets;
  return std::any_of(secrets.begin(), secrets.end(), [&](const SqliteOptions::Secret& secret) {
    return equalNoCase(secret.field, field.name) &&
           (secret.table.empty() || equalNoCase(secret.table, table.name));
  });
}

/// Reads the tables whose rows in the schema fulfil a condition, in order of creation.
std::vector<ddl::Table> Catalog::read(const std::string& condition) const {
  std::vector<ddl::Table> tables;
  Statement rows =
      connection_.prepare("SELECT type, tbl_name, sql FROM sqlite_schema WHERE sql IS NOT NULL AND " +
                          condition + " ORDER BY type = 'index', rowid");
  int code = SQLITE_ROW;
  while ((code = rows.step()) == SQLITE_ROW) {
    if (rows.text(0) == "table") {
      tables.push_back(ddl::readTable(rows.text(2)));
      continue;
    }
    const auto owner = std::find_if(tables.begin(), tables.end(),
                                    [&](const ddl::Table& t) { return t.definition.name == rows.text(1); });
    if (owner == tables.end()) continue;
    if (auto index = ddl::readIndex(rows.text(2), *owner)) {
      auto& indexes = owner->definition.indexes;
      indexes.insert(index->primary ? indexes.begin() : indexes.end(), std::move(*index));
    }
  }
  if (code != SQLITE_DONE) connection_.fail(code);
  return tables;
}

std::size_t Catalog::place(const std::string& table) const {
  const auto found =
      std::find_if(tables_.begin(), tables_.end(), [&](const auto& t) { return t->name == table; });
  return static_cast<std::size_t>(found - tables_.begin());
}

void Catalog::insert(const std::vector<Relation>& relations, std::size_t owner) {
  // The place where load() would put them: behind the relations of the tables before.
  const auto next = std::find_if(relations_.begin(), relations_.end(), [&](const Relation& relation) {
    return place(relation.foreignTable) > owner;
  });
  relations_.insert(next, relations.begin(), relations.end());
}

/// Takes over the one change that was made since the definitions were read, if they still hold. When that
/// fails, the definitions no longer hold.
template <typename Change>
void Catalog::follow(Change&& change) {
  if (!version_) return;
  version_.reset();
  const std::int64_t version = currentVersion();
  change();
  version_ = version;
}

void Catalog::update(const std::string& table) {
  follow([&] {
    for (ddl::Table& changed : read("tbl_name = " + ddl::quoteText(table))) {
      const std::size_t owner = place(table);
      *tables_.at(owner) = std::move(changed.definition);
      std::erase_if(relations_, [&](const Relation& relation) { return relation.foreignTable == table; });
      insert(changed.relations, owner);
    }
  });
}

void Catalog::add(const TableDef& table) {
  follow([&] { tables_.push_back(std::make_unique<TableDef>(table)); });
}

void Catalog::add(const Relation& relation) {
  follow([&] { insert({relation}, place(relation.foreignTable)); });
}

void Catalog::versionChanged() {
  if (version_) version_ = currentVersion();
}

void Catalog::load() const {
  // The version is read before the definitions. A change in between then leaves an old version here, which
  // the next refresh notices.
  const std::int64_t version = currentVersion();
  std::vector<ddl::Table> read = this->read("tbl_name NOT LIKE 'sqlite\\_%' ESCAPE '\\' AND tbl_name <> '" +
                                            std::string(queryTable) + "'");
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
