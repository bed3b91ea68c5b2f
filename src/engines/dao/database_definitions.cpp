// What a file has beside its tables: relations, and the version.

#include <optional>

#include "engines/dao/dao_database.h"
#include "engines/dao/definitions.h"

namespace voxa {

using dao::Kind;
using dao::Object;

namespace {

// Of the attributes of a relation.
constexpr std::int32_t notEnforced = 2;
constexpr std::int32_t cascadesUpdate = 256;
constexpr std::int32_t cascadesDelete = 4096;

constexpr const char* versionProperty = "SchemaVersion";
constexpr std::int32_t longType = static_cast<std::int32_t>(DataType::Long);

std::optional<Object> versionOf(const Object& properties) {
  try {
    return properties.item(versionProperty);
  } catch (const Error& error) {
    if (error.number() != err::dbNoSuchProperty) throw;
    return std::nullopt;
  }
}

void putVersion(const Object& database, std::int32_t version) {
  const Object properties = database.object(Kind::properties, "Properties");
  if (const auto kept = versionOf(properties)) return kept->put("Value", version);
  const Object made = database.object(Kind::property, "CreateProperty", versionProperty, longType, version);
  (void)properties.call("Append", made);
}

}  // namespace

std::vector<Relation> DaoDatabase::relations() const {
  return session_->guarded([&] {
    std::vector<Relation> out;
    dao::forEach(current(Kind::relations, "Relations"), [&](const Object& relation) {
      const std::int32_t attributes = relation.number("Attributes");
      Relation found{.name = relation.text("Name"),
                     .table = relation.text("Table"),
                     .foreignTable = relation.text("ForeignTable"),
                     .fields = {},
                     .cascadeUpdate = (attributes & cascadesUpdate) != 0,
                     .cascadeDelete = (attributes & cascadesDelete) != 0};
      if ((attributes & notEnforced) != 0 || found.table.starts_with("MSys")) return;
      dao::forEach(relation.object(Kind::fields, "Fields"), [&](const Object& field) {
        found.fields.emplace_back(field.text("Name"), field.text("ForeignName"));
      });
      out.push_back(std::move(found));
    });
    return out;
  });
}

void DaoDatabase::createRelation(const Relation& relation) {
  session_->guarded([&] {
    const std::int32_t attributes =
        (relation.cascadeUpdate ? cascadesUpdate : 0) | (relation.cascadeDelete ? cascadesDelete : 0);
    const Object made = opened().object(Kind::relation, "CreateRelation", relation.name, relation.table,
                                        relation.foreignTable, attributes);
    const Object fields = made.object(Kind::fields, "Fields");
    for (const auto& [name, foreign] : relation.fields) {
      const Object field = made.object(Kind::field, "CreateField", name);
      field.put("ForeignName", foreign);
      (void)fields.call("Append", field);
    }
    (void)current(Kind::relations, "Relations").call("Append", made);
  });
}

void DaoDatabase::deleteRelation(std::string_view name) {
  session_->guarded([&] { (void)current(Kind::relations, "Relations").call("Delete", std::string(name)); });
}

std::size_t DaoDatabase::schemaVersion() const {
  return session_->guarded([&] {
    const auto kept = versionOf(opened().object(Kind::properties, "Properties"));
    return kept ? static_cast<std::size_t>(kept->number("Value")) : std::size_t{0};
  });
}

void DaoDatabase::setSchemaVersion(std::size_t version) {
  session_->guarded([&] { putVersion(opened(), static_cast<std::int32_t>(version)); });
}

/// All who lock write the same place, so that the library has the others wait. What is written is what is
/// there already.
void DaoDatabase::lockForChanges() {
  if (!session_->inTransaction) return;
  session_->guarded([&] { putVersion(opened(), static_cast<std::int32_t>(schemaVersion())); });
}

}  // namespace voxa
