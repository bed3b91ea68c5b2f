#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <span>
#include <string_view>

#include "engines/language/format.h"
#include "platform/value.h"

namespace voxa {

class Clock;

/// A function of translated statements. An exception in its body becomes the failure of the statement.
struct SqlFunction {
  const char* name;
  int arguments;
  bool takesNull;  ///< otherwise one argument that is Null makes the result Null
  void (*body)(sqlite3_context* context, sqlite3_value** arguments, int count);
};

[[nodiscard]] std::span<const SqlFunction> valueFunctions();   ///< conversions and numbers
[[nodiscard]] std::span<const SqlFunction> textFunctions();    ///< texts, patterns, formats
[[nodiscard]] std::span<const SqlFunction> searchFunctions();  ///< places of texts in texts
[[nodiscard]] std::span<const SqlFunction> momentFunctions();  ///< dates and times

/// A function over the rows of a group, with one argument. Its steps do not throw.
struct SqlAggregate {
  const char* name;
  void (*step)(sqlite3_context* context, int count, sqlite3_value** arguments);
  void (*final)(sqlite3_context* context);
};
[[nodiscard]] std::span<const SqlAggregate> aggregateFunctions();

/// The engine's clock, for the body of a function.
[[nodiscard]] const Clock* clockOf(sqlite3_context* context);

[[nodiscard]] inline std::string_view textOf(sqlite3_value* value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

[[nodiscard]] inline Bytes bytesOf(sqlite3_value* value) {
  const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
  return {bytes == nullptr ? std::string()
                           : std::string(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)))};
}

/// Position of the character with that number, counted from 0; the size of the text when it has no such
/// character.
[[nodiscard]] std::size_t offsetOf(std::string_view text, std::int64_t characters);
/// A position or length in a text; 5 for a smaller one.
[[nodiscard]] std::int64_t countOf(sqlite3_value* value, std::int64_t least);

/// The arguments that tell how weeks are counted; 0 is the usual.
[[nodiscard]] dialect::Weeks weeksOf(sqlite3_value* firstDay, sqlite3_value* firstWeek);

inline void returnText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

/// The value as SQLite holds it: Null, 32-bit integer, double, text or bytes.
[[nodiscard]] Value valueOf(sqlite3_value* value);
/// The value of an expression of that type: SQLite has numbers for moments and booleans.
[[nodiscard]] Value asType(Value value, DataType type);
void returnValue(sqlite3_context* context, const Value& value);

}  // namespace voxa
