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

/// The engine's SQL language, translated into SQLite's. The work has two parts, so that a statement is
/// translated once. scan() is cheap and is done for every call. translate() is needed when the scanned key is
/// new, or when its known translation does not hold for these literals.
///
/// scan() is in scan.cpp, translate() in translate.cpp, translateRule() in rule.cpp, translateRowTest() in
/// row_test.cpp. lexer.h cuts a text into
/// tokens, parser.h makes a tree (syntax.h) of them, and writer.h writes SQLite's text from it.

/// A statement whose literals were taken out.
struct Scanned {
  std::string key;              ///< the text, with a mark of the type in the place of each literal
  std::vector<Value> literals;  ///< in order of appearance: 32-bit integer, double, text or date-time
  /// For scan() itself, one for each literal: where its mark is in the key, and the lexer's state before it.
  /// The next statement often begins with the same text; then that text is not cut into tokens again.
  struct Stop {
    std::size_t mark;
    LexerState state;
  };
  std::vector<Stop> stops;
};

/// Takes the literals out of a statement. The buffers of `out` are used again. Raises 3075 for text that
/// makes no tokens of the language (an open quote, a character out of place, a date that does not exist). A
/// number ends with its last digit: "1and" is a number and a word, since callers put statements together
/// without a blank there. Words (True, Null, names) stay in the key, and so does the number of TOP. clock:
/// see parseDateLiteral.
void scan(std::string_view sql, Scanned& out, const Clock* clock = nullptr);

/// What the translation needs to know of the open database.
class Schema {
 public:
  virtual ~Schema() = default;
  /// The table of that name in any case, or nullptr.
  [[nodiscard]] virtual const TableDef* table(std::string_view name) const = 0;
  /// The text of the stored query of that name in any case; none when there is no such query.
  [[nodiscard]] virtual std::optional<std::string> queryText(std::string_view) const { return std::nullopt; }
  /// Whether statements may not use a column: what it holds is secret. A star shows the mask in its place;
  /// any other use of it is 3112.
  [[nodiscard]] virtual bool isSecret(const TableDef& /*table*/, const FieldDef& /*field*/) const {
    return false;
  }
  /// The clock that scan() was given.
  [[nodiscard]] virtual const Clock* clock() const { return nullptr; }
};

/// What a result shows in place of a secret value.
inline constexpr const char* mask = "****";

/// Tells where the value of a placeholder comes from, and how to bind it.
struct Slot {
  std::optional<std::size_t> literal;  ///< index into Scanned::literals
  std::optional<Value> constant;       ///< or the value itself: a literal of a stored query
  std::string parameter;               ///< otherwise the name of a parameter
  /// Set when the value is stored in a field, or compared with a column, whose type the literal does not have
  /// (a text with a date column, say). Then convertForField converts it before it is bound; a failure is
  /// raised.
  std::optional<FieldDef> convertTo;
};

/// Pairs of indexes into Scanned::literals.
using LiteralPairs = std::vector<std::pair<std::size_t, std::size_t>>;

struct Translation {
  /// into: a query whose rows make the new table `table`. definition: a text for parseDefinition
  /// (definition.h), of which nothing else is told here.
  enum class Kind { select, insert, update, remove, into, definition };
  Kind kind = Kind::select;
  bool unites = false;  ///< select: of several queries that UNION links
  std::string sql;      ///< one SQLite statement with placeholders ?1 ?2 ... in the order of `slots`
  std::vector<Slot> slots;
  /// Declared parameters with their types, in order, and those that the stored queries of FROM declare. Then
  /// the names that are neither fields nor declared: the caller may give values for them, which are taken as
  /// what they stand beside.
  std::vector<FieldDef> parameters;
  std::size_t declared = 0;  ///< how many are declared
  /// insert, update, remove: the table that is written. select: the one table whose rows can be edited
  /// through the result, "" when they cannot (several tables, grouping, DISTINCT, a masked column). TOP does
  /// not hinder.
  std::string table;
  /// select with `table` set: the SQLite result has the row number in front of `columns`.
  /// Columns of the result: name, type, size. A column of a table has its full definition, under the name
  /// that the result gives it.
  std::vector<FieldDef> columns;
  /// Where in `sql` the text "SELECT _rowid_, columns" ends; 0 when it does not begin like this.
  std::size_t columnsEnd = 0;
  /// For each column: true when it shows a field of a table, whose type its values have; false for an
  /// expression.
  std::vector<bool> stored;
  /// For each column the field of `table` that it shows, or "" for an expression. Empty when not editable.
  std::vector<std::string> sourceFields;
  /// update: the fields that are set.
  std::vector<std::string> updatedFields;
  /// Pairs of literals that must be equal: they made an expression the same as one that GROUP BY lists. The
  /// translation does not hold for a statement of the same key in which they differ.
  LiteralPairs sameLiterals;
  [[nodiscard]] bool holdsFor(const std::vector<Value>& literals) const;
};

/// Translates one statement. Errors: 3075 for a syntax error (text behind the end, such as a second
/// statement, is one), 3078 for an unknown table, 3061 for a name that is neither column nor parameter, 3079
/// for an ambiguous column, 3085 for an unknown function, 3112 for a secret column, 3127 for an unknown field
/// in INSERT.
[[nodiscard]] Translation translate(std::string_view sql, const Schema& schema);

/// A condition on the columns of one row, and the keys that give it its place among others.
struct RowTest {
  /// Its first slots are the values of the columns. It gives a row with the keys when the condition is true.
  /// Parameters: the names that are no columns.
  Translation translation;
  std::vector<bool> descending;  ///< of each key
};
/// The text of such a test. Either part may be empty. table: a name for the row; "" for none.
[[nodiscard]] std::string rowTestText(std::string_view condition, std::string_view ordering,
                                      std::string_view table);
/// text: of rowTestText. Errors as of translate().
[[nodiscard]] RowTest translateRowTest(std::string_view text, const std::vector<FieldDef>& columns,
                                       const Schema& schema);

/// A validation rule (">=0 and <=32") as an SQLite condition on the quoted column; 3075 when it is no rule.
/// The dates in it are read once, here. clock: see scan().
[[nodiscard]] std::string translateRule(std::string_view rule, const FieldDef& field,
                                        const Clock* clock = nullptr);

/// The translated text relies on these names. The engine must register them with each connection.
/// Collation: text compares without regard to case (compareNoCase in text.h).
inline constexpr const char* collation = "KORVA";
/// SQL functions. They take and return SQLite values as this engine stores them (booleans as -1 and 0, dates
/// as days since 30 December 1899 in a real number):
///   vx_store(value, type, size)  convertForField for a computed value; fails with the error's number
///   vx_number(text), vx_date(text)  the number or date that a text reads as, NULL when there is none
///   vx_text(value, type)     the value of that type by Value::toText
///   vx_format(value, type, pattern, firstDay, firstWeek)  Format() of a value of that type (format.h)
///   vx_join(a, b)            the operator &: Null when both are
///   vx_div, vx_idiv, vx_mod  the operators / \ MOD; 11 for a divisor of 0
///   vx_finite(number)        the same number; 6 for one beyond all range
///   vx_product(a, b, ...)    the product of two or more; 6 likewise
///   vx_one(count, value)     the value; 3354 when there are more
///   vx_now()                 the moment, the same for the whole of a statement
///   vx_like(text, pattern)   Like with * ? # and [ ] classes, without regard to case
///   vx_part(which, date), vx_time(date), vx_dateserial(y, m, d)
///   vx_left, vx_right, vx_mid, vx_instr, vx_lower, vx_upper, vx_chr, vx_asc, vx_val, vx_int, vx_fix, vx_sgn,
///   vx_strreverse, vx_strconv, vx_ascw, vx_chrw, vx_monthname, vx_weekdayname,
///   vx_pow, vx_round, vx_str, vx_string, vx_hex, vx_oct, vx_replace, vx_instrrev, vx_strcomp, vx_isnumeric,
///   vx_isdate, vx_dateadd, vx_datediff, vx_datepart, vx_sqr, vx_exp, vx_log, vx_sin, vx_cos, vx_tan, vx_atn
///                            as the functions of the language, all arguments given
///   vx_first, vx_last, vx_var, vx_varp, vx_stdev, vx_stdevp  over the rows of a group
/// engines/sqlite/functions.h registers them.

}  // namespace voxa::dialect
