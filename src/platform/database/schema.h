#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/value.h"

namespace voxa {

/// Definitions of tables as plain data, in the terms of the Jet database engine.

struct FieldDef {
  std::string name{};
  DataType type = DataType::Text;
  int size = 0;  ///< characters of a Text field (0: 255), bytes of a Binary one (0: 510); nothing for others
  Value defaultValue{};  ///< Null: there is none (a boolean field is False then)
  bool required = false;
  bool allowZeroLength = false;  ///< Text and Memo only
  bool autoIncrement = false;    ///< Long only; a new row takes the next number unless it is given a value
  std::string validationRule{};  ///< condition on the value alone, e.g. ">=0 and <=32"; "" for none
  friend bool operator==(const FieldDef&, const FieldDef&) = default;
};

struct IndexDef {
  std::string name;
  std::vector<std::string> fields{};
  bool primary = false;   ///< implies unique, and no Null in any of its fields
  bool unique = false;    ///< two Nulls are no duplicates
  bool required = false;  ///< no Null in any of its fields
  [[nodiscard]] bool isUnique() const { return unique || primary; }
  friend bool operator==(const IndexDef&, const IndexDef&) = default;
};

struct TableDef {
  std::string name;
  std::vector<FieldDef> fields;
  std::vector<IndexDef> indexes;

  /// The field or index of that name in any case, or nullptr.
  [[nodiscard]] const FieldDef* field(std::string_view fieldName) const;
  [[nodiscard]] const IndexDef* index(std::string_view indexName) const;
  [[nodiscard]] std::vector<std::string> fieldNames() const;
  friend bool operator==(const TableDef&, const TableDef&) = default;
};

/// Whether convertForField would give the same value for the field: those that can be told at a glance.
[[nodiscard]] inline bool isStoredAsIs(const Value& value, const FieldDef& field) {
  if (const auto* text = std::get_if<std::string>(&value.data())) {
    // A text never has more characters than bytes.
    return field.type == DataType::Memo ||
           (field.type == DataType::Text && text->size() <= static_cast<std::size_t>(field.size));
  }
  return field.type == DataType::Long && std::holds_alternative<std::int32_t>(value.data());
}

// Texts of statements, for all engines.

/// Names with commas between: "[Id], [Name]".
[[nodiscard]] std::string nameList(const std::vector<std::string>& names);
/// The type of a field: "TEXT(50)".
[[nodiscard]] std::string sqlType(const FieldDef& field);
/// A statement that appends a row, with a parameter for each field in their order.
[[nodiscard]] std::string insertionOf(const std::string& table, const std::vector<std::string>& fields);

/// The text that an expression of one literal stands for: "Staff" in quotes, a moment between #. Any other
/// text as it is.
[[nodiscard]] std::string literalText(std::string expression);

// Helpers for those who define tables.

/// size: greatest number of characters of a text column.
void addField(TableDef& td, const std::string& name, DataType type, int size = 0,
              const Value& defaultValue = {});
enum class IndexKind { plain, unique, uniqueRequired, primary };
void addIndex(TableDef& td, const std::string& name, std::initializer_list<const char*> fields,
              IndexKind kind);

/// Referential integrity from a primary table to a foreign one. It is always enforced.
struct Relation {
  std::string name;
  std::string table;         ///< primary side; its fields need a primary or unique index
  std::string foreignTable;  ///< the side that refers
  std::vector<std::pair<std::string, std::string>> fields;  ///< primary field, foreign field
  bool cascadeUpdate = false;
  bool cascadeDelete = false;
  friend bool operator==(const Relation&, const Relation&) = default;
};

/// A stored query. Its text may declare parameters in front ("PARAMETERS [p] Integer;").
struct QueryDef {
  std::string name;
  std::string sql;
};

}  // namespace voxa
