#pragma once

#include "platform/database/database.h"

namespace voxa::automation {

// Changes of definitions in a file. An engine that cannot make one yet refuses it.

template <typename Change>
void changeDefinition(Database& database, Change&& change) {
  if constexpr (std::is_invocable_v<Change, Database&>) {
    change(database);
  } else {
    throw Error(err::dbNotSupported, "Definitions of this kind cannot be changed in a file by this version");
  }
}

inline void addIndex(Database& database, const std::string& table, const IndexDef& index) {
  changeDefinition(database,
                   [&](auto& d) -> decltype(d.addIndex(table, index)) { d.addIndex(table, index); });
}
inline void deleteIndex(Database& database, const std::string& table, const std::string& name) {
  changeDefinition(database,
                   [&](auto& d) -> decltype(d.deleteIndex(table, name)) { d.deleteIndex(table, name); });
}
inline void deleteField(Database& database, const std::string& table, const std::string& name) {
  changeDefinition(database,
                   [&](auto& d) -> decltype(d.deleteField(table, name)) { d.deleteField(table, name); });
}
inline void deleteRelation(Database& database, const std::string& name) {
  changeDefinition(database, [&](auto& d) -> decltype(d.deleteRelation(name)) { d.deleteRelation(name); });
}
inline void deleteQuery(Database& database, const std::string& name) {
  changeDefinition(database, [&](auto& d) -> decltype(d.deleteQuery(name)) { d.deleteQuery(name); });
}

}  // namespace voxa::automation
