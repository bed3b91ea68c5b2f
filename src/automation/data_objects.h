#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "korva.h"
#include "object.h"
#include "platform/database/database.h"

namespace voxa::automation {

// The data objects show the database engine's seam in the shape of that engine's own automation objects,
// which callers know. They are handed out without a counted reference.

/// The object of an open database; nullptr for none. While somebody holds it, everybody gets the same one.
[[nodiscard]] ::IDatabase* databaseObject(const std::shared_ptr<Database>& database);

[[nodiscard]] ::IRecordset* makeRecordset(std::unique_ptr<Recordset> rows);

[[nodiscard]] ::ITableDef* makeTableDef(std::shared_ptr<TableDef> definition);
/// The definition behind a caller's object. `err::typeMismatch` when the object is not of this library.
[[nodiscard]] TableDef& definitionBehind(IUnknown* object);

[[nodiscard]] ::IRelation* makeRelation(std::shared_ptr<Relation> relation);
[[nodiscard]] const Relation& relationBehind(IUnknown* object);

/// A query of that database.
[[nodiscard]] ::IQueryDef* makeQueryDef(std::shared_ptr<Database> database, const QueryDef& query);

/// Bits of the Attributes of a field and of a relation. Callers of the engine's own objects know them.
inline constexpr std::int32_t autoIncrementAttribute = 16;
inline constexpr std::int32_t cascadeUpdateAttribute = 256;
inline constexpr std::int32_t cascadeDeleteAttribute = 4096;

/// A column of a definition.
[[nodiscard]] ::IField* makeDefinedField(const FieldDef& definition);
struct DefinedField {
  FieldDef definition;
  std::string foreignName;
};
[[nodiscard]] const DefinedField& fieldBehind(IUnknown* object);

/// What a collection consists of. A member that is not set is refused with 3219.
struct CollectionSource {
  std::function<std::size_t()> count;
  /// The object at a position below count, without a counted reference.
  std::function<IDispatch*(std::size_t)> item;
  /// Position of a name, in any case. Raises `err::dbNotInCollection` when there is none.
  std::function<std::size_t(const std::string&)> find;
  std::function<void(IDispatch*)> append;
  std::function<void(const std::string&)> remove;
};
[[nodiscard]] ::ICollection* makeCollection(CollectionSource source);

/// Position of a name, in any case, among `count` things.
[[nodiscard]] std::size_t findName(const std::string& name, std::size_t count,
                                   const std::function<std::string(std::size_t)>& nameAt);

/// The C++ object behind a caller's object. Only this library knows the identifier by which it is found.
[[nodiscard]] void* objectBehind(IUnknown* object, REFIID privateId, const char* what);

}  // namespace voxa::automation
