#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "collection.h"
#include "korva.h"
#include "object.h"
#include "platform/database/database.h"

namespace voxa::automation {

// The data objects show the database engine's seam in the shape of that engine's own automation objects,
// which callers know. They are handed out without a counted reference.

/// The object of an open database; nullptr for none. While somebody holds it, everybody gets the same one.
[[nodiscard]] ::IDatabase* databaseObject(const std::shared_ptr<Database>& database);
/// An object of a database that others have open. Closing it leaves the database as it is.
[[nodiscard]] ::IDatabase* guestObject(const std::shared_ptr<Database>& database);

/// Rows of a database.
[[nodiscard]] ::IRecordset* makeRecordset(std::shared_ptr<Database> database,
                                          std::unique_ptr<Recordset> rows);
/// The recordsets of a database that are open.
[[nodiscard]] ::IRecordsets* openRecordsets(const std::shared_ptr<Database>& database);

/// A definition that is to be filled, or, with a database, that of a table in it.
[[nodiscard]] ::ITableDef* makeTableDef(TableDef definition, std::shared_ptr<Database> database = nullptr);
/// The definition behind a caller's object. `err::typeMismatch` when the object is not of this library.
[[nodiscard]] TableDef& definitionBehind(IUnknown* object);
/// Creates the table, whose definition the object is from then on.
void appendTable(const std::shared_ptr<Database>& database, IUnknown* object);

/// An index that is to be filled, or one that a table has.
[[nodiscard]] ::IIndex* makeIndex(IndexDef index, bool isFixed);
/// Hands over the index behind a caller's object, which from then on is that of a table.
void appendIndex(IUnknown* object, const std::function<void(const IndexDef&)>& append);

/// A relation that is to be filled, or one that a database has.
[[nodiscard]] ::IRelation* makeRelation(Relation relation, bool isFixed);
/// Creates the relation.
void appendRelation(Database& database, IUnknown* object);

/// A query of that database. isStored: it is in the file.
[[nodiscard]] ::IQueryDef* makeQueryDef(std::shared_ptr<Database> database, QueryDef query, bool isStored);
/// Stores a query that is not in the file yet.
void appendQuery(IUnknown* object);

/// The one workspace.
[[nodiscard]] ::IWorkspace* workspaceObject();
/// What the last failed call of the engine reported.
[[nodiscard]] ::IErrors* makeErrors(const DatabaseEngine& engine);
/// The members of an object that hold values. With a database, those of it and its version
/// (version_property.cpp).
[[nodiscard]] ::IProperties* makeProperties(IDispatch* object, std::shared_ptr<Database> database = nullptr);
/// A property of a program's own, to be appended to those of a database.
[[nodiscard]] ::IProperty* makeOwnProperty(const std::string& name, short type, const Value& value);
/// The version of a database as a property.
inline constexpr const char* versionProperty = "SchemaVersion";
[[nodiscard]] ::IProperty* makeVersionProperty(std::shared_ptr<Database> database);
/// Takes over the version from a property of a program's own, which is the database's from then on.
void appendProperty(std::shared_ptr<Database> database, IUnknown* object);

/// Bits of the Attributes of a field and of a relation. Callers of the engine's own objects know them.
inline constexpr std::int32_t autoIncrementAttribute = 16;
inline constexpr std::int32_t cascadeUpdateAttribute = 256;
inline constexpr std::int32_t cascadeDeleteAttribute = 4096;
/// The order of texts, by the number that callers know.
inline constexpr std::int32_t generalOrder = 1033;

/// A column of a definition.
struct DefinedField {
  FieldDef definition;
  std::string foreignName{};
  std::string table{};       ///< whose column it is
  std::size_t position = 0;  ///< among the columns
};
/// changed: told of each change of the definition, which it may refuse.
using FieldChanged = std::function<void(const FieldDef&)>;
/// The type of that number; 3001 for another one.
[[nodiscard]] DataType dataType(short type);
[[nodiscard]] ::IField* makeDefinedField(DefinedField field, FieldChanged changed = nullptr);
/// Refuses a change of what is in a file with 3219. what: "index"
[[noreturn]] void refuseFixed(const char* what, const std::string& name);
/// For columns of what is in a file: refuses every change.
void refuseChange(const FieldDef& definition);
/// The column behind a caller's object, and who is told of its changes from then on.
[[nodiscard]] const DefinedField& fieldBehind(IUnknown* object);
void tellChanges(IUnknown* field, FieldChanged changed);

/// The columns of an index or a relation, of which the names count alone.
[[nodiscard]] ::IFields* nameCollection(std::function<std::size_t()> count,
                                        std::function<DefinedField(std::size_t)> at,
                                        std::function<void(const DefinedField&)> append);

/// Position of a name, in any case, among `count` things.
[[nodiscard]] std::size_t findName(const std::string& name, std::size_t count,
                                   const std::function<std::string(std::size_t)>& nameAt);

/// The same of things in a row that have a member `name`.
template <typename Things>
[[nodiscard]] std::size_t findName(const std::string& name, const Things& things) {
  return findName(name, things.size(), [&](std::size_t i) { return things[i].name; });
}

/// The C++ object behind a caller's object. Only this library knows the identifier by which it is found.
[[nodiscard]] void* objectBehind(IUnknown* object, REFIID privateId, const char* what);

}  // namespace voxa::automation
