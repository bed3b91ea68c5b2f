#pragma once

#include "engines/dao/object.h"
#include "platform/database/schema.h"

namespace voxa::dao {

/// A name as statements write it: "[Cardholders]".
[[nodiscard]] std::string quoted(std::string_view name);
/// The type by the library's number. Types that the system has not are the nearest one that it has.
[[nodiscard]] DataType typeOf(std::int32_t number);

/// Name, type and size alone.
[[nodiscard]] FieldDef readColumn(const Object& field);
/// The whole definition.
[[nodiscard]] FieldDef readField(const Object& field);
[[nodiscard]] IndexDef readIndex(const Object& index);
[[nodiscard]] TableDef readTable(const Object& table);

/// Makes the field or index and appends it to the table, or to the definition of one.
void appendField(const Object& table, const FieldDef& field);
void appendIndex(const Object& table, const IndexDef& index);

/// The library has a default value as an expression: "Staff" in quotes, 0, True.
[[nodiscard]] std::string defaultExpression(const FieldDef& field);
/// The value of an expression that is one value; Null for others.
[[nodiscard]] Value defaultOf(const Value& expression, const FieldDef& field);

}  // namespace voxa::dao
