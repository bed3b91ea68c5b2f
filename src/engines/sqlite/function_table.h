#pragma once

#include <sqlite3.h>

#include <span>
#include <string_view>

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
[[nodiscard]] std::span<const SqlFunction> momentFunctions();  ///< dates and times

/// The engine's clock, for the body of a function.
[[nodiscard]] const Clock* clockOf(sqlite3_context* context);

[[nodiscard]] inline std::string_view textOf(sqlite3_value* value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

inline void returnText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

/// The value as SQLite holds it: Null, 32-bit integer, double or text.
[[nodiscard]] Value valueOf(sqlite3_value* value);
/// The value of an expression of that type: SQLite has numbers for moments and booleans.
[[nodiscard]] Value asType(Value value, DataType type);
void returnValue(sqlite3_context* context, const Value& value);

}  // namespace voxa
