#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/schema.h"

namespace voxa {
class Clock;
}

namespace voxa::ddl {

/// Definitions as the SQLite schema keeps them. The schema's own text holds all that a TableDef says, so
/// there is no second place that could disagree. ddl_writer.cpp writes that text, ddl_reader.cpp reads it.
///   types                  BOOLEAN BYTE SHORT LONG CURRENCY SINGLE DOUBLE DATETIME TEXT(n) LONGTEXT, INTEGER
///   when numbered required field         CONSTRAINT "required" NOT NULL required index         CONSTRAINT
///   "required by Index" NOT NULL on each of its fields no zero-length text    CONSTRAINT "Field.zero length"
///   CHECK (...) validation rule        CONSTRAINT "Field.rule >=0 and <=32" CHECK (...) primary key
///   CONSTRAINT "Index" PRIMARY KEY (...), or at the numbered column itself primary key apart      an index
///   "Table.Index" and CONSTRAINT "primary by Index" NOT NULL on each of its
///                          fields: when it came later than the table, or another column is numbered
///   numbered, and no key   CONSTRAINT ".numbered" PRIMARY KEY AUTOINCREMENT
///   other index            an index "Table.Index": SQLite's index names belong to the file, not to the table
///   relation               CONSTRAINT "Relation" FOREIGN KEY (...), with an index "Table.Relation.key"
/// A dot separates the names, since no name can contain one.

[[nodiscard]] std::string quoteName(std::string_view name);  ///< "name" for SQLite
[[nodiscard]] std::string quoteText(std::string_view text);  ///< 'text' for SQLite
/// Names in quotes, separated by commas.
[[nodiscard]] std::string quoteNames(const std::vector<std::string>& names);
/// The value as an SQLite literal: booleans are -1 and 0, dates are numbers of days.
[[nodiscard]] std::string literal(const Value& value);

/// Raises 3125 unless the text can name a table, field, index, relation or query. Such a name has 1 to 64
/// characters, none of them . ! ` [ ] or a control character, and no blank in front.
void checkName(std::string_view name);

/// The definition as it will read back: sizes are filled in, defaults have their field's type, and what a
/// primary index implies is set. Raises 3125 for a bad name, 3191 for a field that comes twice, 3265 for an
/// index on a field that does not exist, 3001 for what is not possible (no fields, two numbered fields), and
/// convertForField's errors for a default. clock: tells the day on which dates in the definition are read.
[[nodiscard]] TableDef normalised(const TableDef& definition, const Clock& clock);
[[nodiscard]] FieldDef normalised(const FieldDef& field, const Clock& clock);

/// CREATE TABLE and CREATE INDEX statements of a normalised definition, separated by ";".
[[nodiscard]] std::string createTable(const TableDef& definition, const Clock& clock);
/// The text of a field without indexes, as ALTER TABLE adds it.
[[nodiscard]] std::string column(const FieldDef& field, const Clock& clock);
/// The CREATE INDEX statement of an index that is not in the table's own text.
[[nodiscard]] std::string createIndex(const std::string& table, const IndexDef& index);
[[nodiscard]] std::string indexName(const std::string& table, const IndexDef& index);
/// The constraint to add to the foreign table of a relation.
[[nodiscard]] std::string foreignKey(const Relation& relation);
/// Name of the index that a relation needs on its foreign side.
[[nodiscard]] std::string relationIndexName(const Relation& relation);
[[nodiscard]] std::string createRelationIndex(const Relation& relation);
/// The field of that name; 3265 when the table has none.
[[nodiscard]] const FieldDef& fieldOf(const TableDef& table, std::string_view name);
/// Query that tells (1 or 0) whether the table has a row, or one that fulfils a condition.
[[nodiscard]] std::string anyRow(const std::string& table, const std::string& condition = "");
/// Whether a primary or unique index is on exactly these fields, in any order.
[[nodiscard]] bool hasUniqueIndex(const TableDef& table, const std::vector<std::string>& fields);
/// Whether an index begins with these fields, so that another one would be useless.
[[nodiscard]] bool hasIndexOn(const TableDef& table, const std::vector<std::string>& fields);

struct Table;
/// The CREATE TABLE statement alone, with the constraints of the relations.
[[nodiscard]] std::string tableText(const Table& table, const Clock& clock);
/// Whether the primary key is the numbered column alone.
[[nodiscard]] bool isNumberedKey(const TableDef& table, const IndexDef& index);

/// What the text of CREATE TABLE says. Raises 3343 for text that the functions above did not write.
struct Table {
  TableDef definition;                   ///< only the primary index, not the others
  std::vector<Relation> relations = {};  ///< those in which the table is the foreign side
  std::vector<std::string> requiredBy =
      {};  ///< for each field, the names of the indexes that need a value in it
  std::vector<std::string> primaryBy = {};  ///< the same for a primary key that is apart
  bool keyApart = false;                    ///< the primary key is not part of the text
};
[[nodiscard]] Table readTable(std::string_view sql);
/// The index of the table that the text of CREATE INDEX defines; none for an index that serves a relation.
[[nodiscard]] std::optional<IndexDef> readIndex(std::string_view sql, const Table& table);
/// The validation rule that a CHECK constraint of that name enforces; none for another kind of check.
[[nodiscard]] std::optional<std::string> ruleOfCheck(std::string_view constraintName);

/// Parts of constraint names.
inline constexpr std::string_view required = "required";
inline constexpr std::string_view requiredBy = "required by ";
inline constexpr std::string_view primaryBy = "primary by ";
inline constexpr std::string_view numbered = ".numbered";
inline constexpr std::string_view zeroLength = ".zero length";
inline constexpr std::string_view rule = ".rule ";
inline constexpr std::string_view key = ".key";

/// Type words of the schema, without the size of TEXT(n) and BINARY(n) and the INTEGER of a numbered field.
struct TypeWord {
  DataType type;
  std::string_view word;
};
inline constexpr TypeWord typeWords[] = {
    {DataType::Boolean, "BOOLEAN"}, {DataType::Byte, "BYTE"},     {DataType::Integer, "SHORT"},
    {DataType::Long, "LONG"},       {DataType::Double, "DOUBLE"}, {DataType::Currency, "CURRENCY"},
    {DataType::Single, "SINGLE"},   {DataType::Date, "DATETIME"}, {DataType::Text, "TEXT"},
    {DataType::Memo, "LONGTEXT"},   {DataType::Binary, "BINARY"}, {DataType::LongBinary, "LONGBINARY"}};

}  // namespace voxa::ddl
