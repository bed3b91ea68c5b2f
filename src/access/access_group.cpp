#include "access/access_group.h"

#include "platform/database/database.h"

namespace voxa {

std::int16_t AccessGroup::create() {
  Table::create();
  return links_.create();
}

std::vector<TableDef> AccessGroup::definitions() {
  return {gen_.definition(), links_.definitions().front()};
}

void AccessGroup::createFields(TableDef& td) {
  addField(td, "Id", DataType::Integer);
  addField(td, "Name", DataType::Text, 50);
  addField(td, "FlagD", DataType::Boolean);
}

void AccessGroup::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
  addIndex(td, "Name", {"Name"}, IndexKind::uniqueRequired);
}

std::int16_t AccessGroup::createRelations() {
  return links_.createRelations();
}

void AccessGroup::insertDefaultRecs() {
  // A failure ends this without a message; a database without group 0 shows in everything that needs it.
  context_.attempt([&] {
    database().execute("Insert into AccessGroups ( Id, Name ) values ( 0, '" +
                       context_.messages().read("nameAccGroupAnyWhere") + "')");
  });
  context_.error().clear();
}

std::string AccessGroup::DefaultName() {
  std::string name;
  lookUp("Select * from AccessGroups Where ID = 0", {"msgCantFindAccessGroup", "AccessGroups.DefaultName"},
         true, [&](Recordset& row) { name = row.get("Name").toText(); });
  return name;
}

std::int16_t AccessGroup::getId(const std::string& Name) {
  const std::int16_t id = gen_.getId("name = '" + Name + "'");
  if (id == -1) context_.report({"msgCantFindAccessGroup", "AccessGroups.getId", Value(Name)});
  return id;
}

}  // namespace voxa
