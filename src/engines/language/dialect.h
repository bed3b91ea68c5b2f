#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engines/language/lexer.h"
#include "platform/database/schema.h"
#include "platform/value.h"

namespace voxa {
class Clock;
}

namespace voxa::dialect {

/// The engine's SQL language, turned into SQLite's. Work is split so that a statement is translated once:
/// scan() is cheap and done for every call, translate() only when the scanned key is new, or known with a
/// translation that does not hold for the literals.

/// A statement with its literals taken out.
struct Scanned {
  std::string key;              ///< the text, each literal replaced by a mark of its type
  std::vector<Value> literals;  ///< in order of appearance: 32-bit integer, double, text or date-time
  /// scan()'s own, for each literal: its mark's place in the key, and how the lexer came to it. What stands
  /// before a literal is not cut into tokens again when it stands in the next statement, too.
  struct Stop {
    std::size_t mark;
    LexerState state;
  };
  std::vector<Stop> stops;
};

/// Splits a statement; `out`'s buffers are reused. Raises 3075 for text that has no tokens of the language
/// (an open quote, a character that belongs nowhere, a date that is none). A number ends where its digits
/// end: "1and" is a number and a word. Words (True, Null, names) stay in the key; so does the number of TOP.
/// clock: as parseDateLiteral takes it.
void scan(std::string_view sql, Scanned& out, const Clock* clock = nullptr);

/// What the translation asks of the open database.
class Schema {
 public:
  virtual ~Schema() = default;
  /// The table of that name in any case, or nullptr.
  [[nodiscard]] virtual const TableDef* table(std::string_view name) const = 0;
  /// The clock that scan() is given.
  [[nodiscard]] virtual const Clock* clock() const { return nullptr; }
};

/// Where the value of a placeholder of the translated statement comes from, and how it is to be bound.
struct Slot {
  std::optional<std::size_t> literal;  ///< index into Scanned::literals
  std::string parameter;               ///< else: name of a declared parameter
  /// Set when the value is to be stored in a field or compared with a column of a type that the literal does
  /// not have (text with a date column, say): convert with convertForField before binding. For stores a
  /// failure is raised; for comparisons (`compare`) too.
  std::optional<FieldDef> convertTo;
};

/// Indexes into Scanned::literals, two and two.
using LiteralPairs = std::vector<std::pair<std::size_t, std::size_t>>;

struct Translation {
  enum class Kind { select, insert, update, remove };
  Kind kind = Kind::select;
  std::string sql;  ///< one SQLite statement with placeholders ?1 ?2 ... in the order of `slots`
  std::vector<Slot> slots;
  /// Declared parameters with their types, in order.
  std::vector<FieldDef> parameters;
  /// insert, update, remove: the table written. select: the one table whose rows can be edited through the
  /// result, "" when they cannot (several tables, grouping, DISTINCT, TOP is fine).
  std::string table;
  /// select with `table` set: the first column of the SQLite result is its rowid, before `columns`.
  /// Columns of the result: name, type, size; for a column of a table its full definition, under the name
  /// that the result gives it.
  std::vector<FieldDef> columns;
  /// For each column whether it shows a field of a table, whose values have its type; else an expression.
  std::vector<bool> stored;
  /// For each column the field of `table` that it shows, or "" for an expression. Empty when not editable.
  std::vector<std::string> sourceFields;
  /// update: the fields that are set.
  std::vector<std::string> updatedFields;
  /// Literals that were the same, so that an expression was what GROUP BY lists. For a statement of the same
  /// key in which they differ this is no translation.
  LiteralPairs sameLiterals;
  [[nodiscard]] bool holdsFor(const std::vector<Value>& literals) const;
};

/// Translates one statement. Errors: 3075 syntax (also text behind the end, a second statement included),
/// 3078 unknown table, 3061 a name that is neither column nor parameter, 3079 an ambiguous column,
/// 3085 unknown function, 3127/3061 as the engine numbers an unknown field in INSERT (3127).
[[nodiscard]] Translation translate(std::string_view sql, const Schema& schema);

/// A validation rule (">=0 and <=32") as an SQLite condition on the quoted column; 3075 when it is none. Its
/// dates are read once, when it is translated. clock: see scan().
[[nodiscard]] std::string translateRule(std::string_view rule, const FieldDef& field,
                                        const Clock* clock = nullptr);

/// Names that the translated text relies on and the engine must register with each connection.
/// Collation: text compares without regard to case (compareNoCase in text.h).
inline constexpr const char* collation = "KORVA";
/// SQL functions, all taking and returning SQLite values as this engine stores them (booleans -1/0, dates as
/// days since 30 December 1899 in a real number):
///   vx_store(value, type, size)  convertForField for a computed value; fails with the error's number
///   vx_number(text), vx_date(text)  what a text reads as, NULL when it is none
///   vx_text(value, type)     the value of that type by Value::toText
///   vx_format(value, pattern)    Format(): a number by a pattern with 0 or #, else a date by formatDateTime
///   vx_now()                 the moment, one for the whole of a statement
///   vx_like(text, pattern)   Like with * ? # and [ ] classes, without regard to case
///   vx_part(which, date), vx_time(date), vx_dateserial(y, m, d)
///   vx_left, vx_right, vx_mid, vx_instr, vx_lower, vx_upper, vx_chr, vx_asc, vx_val, vx_int, vx_fix, vx_sgn,
///   vx_pow, vx_round         as the functions of the language
/// functions.h beside the engine is where they are registered.

}  // namespace voxa::dialect
