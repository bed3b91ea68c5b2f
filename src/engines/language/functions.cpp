#include <algorithm>
#include <cstdint>
#include <iterator>

#include "engines/language/words.h"
#include "engines/language/writer.h"
#include "platform/error.h"

namespace voxa::dialect {

using syntax::Expression;

namespace {

enum class Result : std::uint8_t { whole, real, amount, single, date, text, condition, boolean, likeFirst };

/// A function as SQLite text, with its arguments at $1, $2 and so on, and the type of the first one at $T by
/// its name, at $V by its number. An argument is taken as a number (n), a date (d), a text (t; w: True and
/// False as these words), as it is (v), or as a text unless it is a number (y).
struct Function {
  std::string_view name;
  std::string_view arguments;
  std::string_view text;
  Result result;
};
constexpr Function functions[] = {
    {"abs", "n", "abs($1)", Result::likeFirst},
    {"asc", "t", "vx_asc($1)", Result::whole},
    {"ascw", "t", "vx_ascw($1)", Result::whole},
    {"atn", "n", "vx_atn($1)", Result::real},
    {"cbool", "v", "vx_store($1, 1, 0)", Result::boolean},
    {"cbyte", "v", "vx_store($1, 2, 0)", Result::whole},
    {"ccur", "v", "vx_store($1, 5, 0)", Result::amount},
    {"cdate", "v", "vx_store($1, 8, 0)", Result::date},
    {"cdbl", "v", "vx_store($1, 7, 0)", Result::real},
    {"chr", "n", "vx_chr($1)", Result::text},
    {"chrw", "n", "vx_chrw($1)", Result::text},
    {"cint", "v", "vx_store($1, 3, 0)", Result::whole},
    {"clng", "v", "vx_store($1, 4, 0)", Result::whole},
    {"csng", "v", "vx_store($1, 6, 0)", Result::single},
    {"cos", "n", "vx_cos($1)", Result::real},
    {"cstr", "w", "$1", Result::text},
    {"cvdate", "v", "vx_store($1, 8, 0)", Result::date},
    {"date", "", "vx_fix(vx_now())", Result::date},
    {"dateadd", "tnd", "vx_dateadd($1, $2, $3)", Result::date},
    {"datediff", "tdd", "vx_datediff($1, $2, $3, 1, 1)", Result::whole},
    {"datediff", "tddn", "vx_datediff($1, $2, $3, $4, 1)", Result::whole},
    {"datediff", "tddnn", "vx_datediff($1, $2, $3, $4, $5)", Result::whole},
    {"datepart", "td", "vx_datepart($1, $2, 1, 1)", Result::whole},
    {"datepart", "tdn", "vx_datepart($1, $2, $3, 1)", Result::whole},
    {"datepart", "tdnn", "vx_datepart($1, $2, $3, $4)", Result::whole},
    {"dateserial", "nnn", "vx_dateserial($1, $2, $3)", Result::date},
    {"datevalue", "d", "vx_fix($1)", Result::date},
    {"day", "d", "vx_part(3, $1)", Result::whole},
    {"exp", "n", "vx_exp($1)", Result::real},
    {"fix", "n", "vx_fix($1)", Result::likeFirst},
    {"hex", "n", "vx_hex($1)", Result::text},
    {"hour", "d", "vx_part(4, $1)", Result::whole},
    {"instr", "tt", "vx_instr(1, $1, $2, 1)", Result::whole},
    {"instr", "ntt", "vx_instr($1, $2, $3, 1)", Result::whole},
    {"instr", "nttn", "vx_instr($1, $2, $3, $4)", Result::whole},
    {"instrrev", "tt", "vx_instrrev($1, $2, -1, 1)", Result::whole},
    {"instrrev", "ttn", "vx_instrrev($1, $2, $3, 1)", Result::whole},
    {"instrrev", "ttnn", "vx_instrrev($1, $2, $3, $4)", Result::whole},
    {"int", "n", "vx_int($1)", Result::likeFirst},
    {"isdate", "y", "vx_isdate($1)", Result::condition},
    {"isnull", "v", "$1 IS NULL", Result::condition},
    {"isnumeric", "y", "vx_isnumeric($1)", Result::condition},
    {"lcase", "t", "vx_lower($1)", Result::text},
    {"left", "tn", "vx_left($1, $2)", Result::text},
    {"len", "t", "length($1)", Result::whole},
    {"log", "n", "vx_log($1)", Result::real},
    {"ltrim", "t", "ltrim($1)", Result::text},
    {"mid", "tn", "vx_mid($1, $2)", Result::text},
    {"mid", "tnn", "vx_mid($1, $2, $3)", Result::text},
    {"minute", "d", "vx_part(5, $1)", Result::whole},
    {"month", "d", "vx_part(2, $1)", Result::whole},
    {"monthname", "n", "vx_monthname($1, 0)", Result::text},
    {"monthname", "nn", "vx_monthname($1, $2)", Result::text},
    {"now", "", "vx_now()", Result::date},
    {"oct", "n", "vx_oct($1)", Result::text},
    {"replace", "ttt", "vx_replace($1, $2, $3, 1, -1, 1)", Result::text},
    {"replace", "tttn", "vx_replace($1, $2, $3, $4, -1, 1)", Result::text},
    {"replace", "tttnn", "vx_replace($1, $2, $3, $4, $5, 1)", Result::text},
    {"replace", "tttnnn", "vx_replace($1, $2, $3, $4, $5, $6)", Result::text},
    {"right", "tn", "vx_right($1, $2)", Result::text},
    {"round", "n", "vx_round($1, 0)", Result::likeFirst},
    {"round", "nn", "vx_round($1, $2)", Result::likeFirst},
    {"rtrim", "t", "rtrim($1)", Result::text},
    {"second", "d", "vx_part(6, $1)", Result::whole},
    {"sgn", "n", "vx_sgn($1)", Result::whole},
    {"sin", "n", "vx_sin($1)", Result::real},
    {"space", "n", "vx_string($1, ' ')", Result::text},
    {"sqr", "n", "vx_sqr($1)", Result::real},
    {"str", "n", "vx_str($1)", Result::text},
    {"strcomp", "tt", "vx_strcomp($1, $2, 1)", Result::whole},
    {"strcomp", "ttn", "vx_strcomp($1, $2, $3)", Result::whole},
    {"strconv", "tn", "vx_strconv($1, $2)", Result::text},
    {"string", "ny", "vx_string($1, $2)", Result::text},
    {"strreverse", "t", "vx_strreverse($1)", Result::text},
    {"tan", "n", "vx_tan($1)", Result::real},
    {"time", "", "vx_time(vx_now())", Result::date},
    {"timeserial", "nnn", "vx_store(($1 * 3600 + $2 * 60 + $3) / 86400.0, 8, 0)", Result::date},
    {"timevalue", "d", "vx_time($1)", Result::date},
    {"trim", "t", "trim($1)", Result::text},
    {"typename", "v", "CASE WHEN $1 IS NULL THEN 'Null' ELSE '$T' END", Result::text},
    {"ucase", "t", "vx_upper($1)", Result::text},
    {"val", "t", "vx_val($1)", Result::real},
    {"vartype", "v", "CASE WHEN $1 IS NULL THEN 1 ELSE $V END", Result::whole},
    {"weekday", "d", "vx_part(7, $1)", Result::whole},
    {"weekday", "dn", "vx_datepart('w', $1, $2, 1)", Result::whole},
    {"weekdayname", "n", "vx_weekdayname($1, 0, 1)", Result::text},
    {"weekdayname", "nn", "vx_weekdayname($1, $2, 1)", Result::text},
    {"weekdayname", "nnn", "vx_weekdayname($1, $2, $3)", Result::text},
    {"year", "d", "vx_part(1, $1)", Result::whole},
};

/// Those of SQLite, and the engine's own.
constexpr std::string_view aggregates[] = {"avg",   "count",  "first", "last", "max", "min",
                                           "stdev", "stdevp", "sum",   "var",  "varp"};

/// Types as automation clients name and number them.
struct TypeName {
  DataType type;
  std::string_view name;
  std::string_view number;
};
constexpr TypeName typeNames[] = {
    {DataType::Boolean, "Boolean", "11"},  {DataType::Byte, "Byte", "17"},
    {DataType::Integer, "Integer", "2"},   {DataType::Long, "Long", "3"},
    {DataType::Currency, "Currency", "6"}, {DataType::Single, "Single", "4"},
    {DataType::Double, "Double", "5"},     {DataType::Date, "Date", "7"},
    {DataType::Binary, "Byte()", "8209"},  {DataType::LongBinary, "Byte()", "8209"}};
constexpr TypeName textName = {DataType::Text, "String", "8"};

const TypeName& nameOf(const std::optional<DataType>& type) {
  const auto* found = std::find_if(std::begin(typeNames), std::end(typeNames),
                                   [&](const TypeName& known) { return known.type == type; });
  return found == std::end(typeNames) ? textName : *found;
}

std::optional<DataType> resultType(Result result, const std::optional<DataType>& first) {
  switch (result) {
    case Result::whole:
      return DataType::Long;
    case Result::real:
      return DataType::Double;
    case Result::amount:
      return DataType::Currency;
    case Result::single:
      return DataType::Single;
    case Result::date:
      return DataType::Date;
    case Result::text:
      return DataType::Text;
    case Result::condition:
    case Result::boolean:
      return DataType::Boolean;
    case Result::likeFirst:
      break;
  }
  if (first == DataType::Date || (first && isReal(*first))) return first;
  return isWholeType(first) ? DataType::Long : DataType::Double;
}

[[noreturn]] void failFunction(std::string_view name, const char* what) {
  throw Error(err::dbUnknownFunction,
              "Undefined function in expression: \"" + std::string(name) + "\" " + what);
}

/// The type of a value that may be of `a` or `b`; none when only text can hold both.
std::optional<DataType> commonType(const std::optional<DataType>& a, const std::optional<DataType>& b) {
  if (!a || !b) return a ? a : b;
  if (*a == *b) return a;
  if (isTextType(a) && isTextType(b)) return DataType::Memo;
  if (isBinaryType(a) || isBinaryType(b))
    return isBinaryType(a) && isBinaryType(b) ? std::optional(DataType::LongBinary) : std::nullopt;
  if (isTextType(a) || isTextType(b) || a == DataType::Date || b == DataType::Date) {
    return std::nullopt;
  }
  return numericType(a, b);
}

}  // namespace

Common commonOf(const std::vector<const Term*>& terms) {
  Common common;
  for (const Term* term : terms) {
    const bool known = common.type || term->type;
    common.type = commonType(common.type, term->type);
    if (known && !common.type) return {.type = DataType::Text, .mixed = true};
    common.most = std::max(common.most, mostOf(*term));
  }
  return common;
}

Term Writer::call(const Expression& e, Scope& scope) {
  if (std::any_of(std::begin(aggregates), std::end(aggregates), [&](auto a) { return isWord(e.name, a); })) {
    return aggregate(e, scope);
  }
  if (e.star) fail(e.position, "only Count takes the sign *");
  if (isWord(e.name, "iif") || isWord(e.name, "nz")) return choice(e, scope);
  if (isWord(e.name, "format")) return format(e, scope);
  if (isWord(e.name, "switch") || isWord(e.name, "choose")) return cases(e, scope);
  const Function* found = nullptr;
  for (const Function& f : functions) {
    if (!isWord(e.name, f.name)) continue;
    found = &f;
    if (f.arguments.size() == e.arguments.size()) break;
  }
  if (found == nullptr) failFunction(e.name, "is not known");
  if (found->arguments.size() != e.arguments.size())
    failFunction(e.name, "takes another number of arguments");

  std::vector<std::string> arguments;
  std::optional<DataType> first;
  double most = 0;
  for (std::size_t i = 0; i < e.arguments.size(); ++i) {
    Term term = write(*e.arguments[i], scope);
    if (i == 0) first = term.type;
    if (i == 0 && found->result == Result::likeFirst) most = term.most;
    const char kind = found->arguments[i];
    arguments.push_back(
        kind == 'n'   ? number(std::move(term))
        : kind == 'd' ? date(std::move(term))
        : kind == 't' ? text(term)
        : kind == 'w' ? words(term)
        : kind == 'y' ? (term.type == DataType::Date || isBinaryType(term.type) ? words(term) : value(term))
                      : operand(term));
  }
  Term out;
  for (std::size_t i = 0; i < found->text.size(); ++i) {
    if (found->text[i] == '$') {
      const char what = found->text[++i];
      out.sql += what == 'T'   ? std::string(nameOf(first).name)
                 : what == 'V' ? std::string(nameOf(first).number)
                               : arguments[static_cast<std::size_t>(what - '1')];
    } else {
      out.sql += found->text[i];
    }
  }
  out.type = resultType(found->result, first);
  out.most = most;
  out.condition = found->result == Result::condition;
  // Text that does not end like a call has an operator outermost and needs parentheses.
  if (out.sql.back() != ')' || out.sql.front() == '(') out.chain = '?';
  if (found->text == "$1") out.chain = '?';
  return out;
}

Term Writer::aggregate(const Expression& e, Scope& scope) {
  if (!scope.aggregatesAllowed || scope.insideAggregate) {
    fail(e.position, "an aggregate function cannot be used here");
  }
  scope.aggregated = true;
  if (e.star) {
    if (!isWord(e.name, "count")) fail(e.position, "only Count takes the sign *");
    return {.sql = "count(*)", .type = DataType::Long};
  }
  if (e.arguments.size() != 1) failFunction(e.name, "takes one argument");
  scope.insideAggregate = true;
  const int own = scope.ownColumns;
  const int outer = scope.outerColumns;
  Term term = write(*e.arguments[0], scope);
  scope.insideAggregate = false;
  if (scope.ownColumns == own && scope.outerColumns != outer) {
    fail(e.position, "an aggregate function works on fields of its own query");
  }
  if (isWord(e.name, "count")) return {.sql = "count(" + value(term) + ")", .type = DataType::Long};
  if (isWord(e.name, "first") || isWord(e.name, "last"))
    return {.sql = (isWord(e.name, "first") ? "vx_first(" : "vx_last(") + value(term) + ")",
            .type = term.type,
            .most = term.most};
  constexpr double rows = 1e19;  // more than there can be
  const double most = mostOf(term);
  for (const char* spread : {"stdev", "stdevp", "var", "varp"}) {
    if (isWord(e.name, spread))
      return computed("vx_" + std::string(spread) + "(" + number(std::move(term)) + ")", DataType::Double,
                      most * most * rows);
  }
  if (isWord(e.name, "sum") || isWord(e.name, "avg")) {
    const bool whole = isWholeType(term.type) && isWord(e.name, "sum");
    const bool amount = term.type == DataType::Currency;
    const char* function = isWord(e.name, "sum") ? "sum(" : "avg(";
    const std::string sql = function + number(std::move(term)) + ")";
    if (amount) return {.sql = asAmount(sql), .type = DataType::Currency};
    return computed(sql, whole ? DataType::Long : DataType::Double, most * rows);
  }
  const bool collates = isTextType(term.type) && term.field == nullptr;
  const std::string argument = collates ? collated(operand(term)) : value(term);
  return {.sql = (isWord(e.name, "min") ? "min(" : "max(") + argument + ")",
          .type = term.type,
          .most = term.most};
}

/// IIf(condition, a, b) and Nz(a, b). When the two values have different types, both become text.
Term Writer::choice(const Expression& e, Scope& scope) {
  const bool iif = isWord(e.name, "iif");
  const std::size_t count = e.arguments.size();
  if (iif ? count != 3 : count < 1 || count > 2) failFunction(e.name, "takes another number of arguments");
  const std::string test = iif ? condition(*e.arguments[0], scope) : "";
  Term a = write(*e.arguments[iif ? 1 : 0], scope);
  Term b;
  if (count > 1) {
    b = write(*e.arguments[count - 1], scope);
  } else {
    // Null itself, without a type, counts as a text.
    b = !a.type || isTextType(a.type) ? Term{.sql = "''", .type = DataType::Text}
        : isBinary(*a.type)           ? Term{.sql = "X''", .type = a.type}
                                      : Term{.sql = "0", .type = a.type};
  }
  const Common common = commonOf({&a, &b});
  const std::string first = common.mixed ? text(a) : value(a);
  const std::string second = common.mixed ? text(b) : value(b);
  Term out;
  out.type = common.type;
  out.most = common.most;
  out.sql = iif ? "CASE WHEN " + test + " THEN " + first + " ELSE " + second + " END"
                : "coalesce(" + first + ", " + second + ")";
  return out;
}

/// Switch(condition, value, ...): the value behind the first that is true. Choose(number, value, ...): that
/// of the place. Null when there is none. Values of different types become text.
Term Writer::cases(const Expression& e, Scope& scope) {
  const bool switches = isWord(e.name, "switch");
  const std::size_t count = e.arguments.size();
  if (count < 2 || (switches && count % 2 != 0)) failFunction(e.name, "takes another number of arguments");
  std::vector<std::string> tests;
  std::vector<Term> values;
  std::string sql = "CASE";
  if (!switches) sql += " vx_store(" + number(write(*e.arguments[0], scope)) + ", 4, 0)";
  for (std::size_t i = switches ? 0 : 1; i < count; i += switches ? 2 : 1) {
    tests.push_back(switches ? condition(*e.arguments[i], scope) : std::to_string(i));
    values.push_back(write(*e.arguments[switches ? i + 1 : i], scope));
  }
  std::vector<const Term*> all;
  for (const Term& value : values) all.push_back(&value);
  const Common common = commonOf(all);
  for (std::size_t i = 0; i < values.size(); ++i)
    sql += " WHEN " + tests[i] + " THEN " + (common.mixed ? text(values[i]) : value(values[i]));
  return {.sql = sql + " END", .type = common.type, .most = common.most};
}

Term Writer::format(const Expression& e, Scope& scope) {
  if (e.arguments.empty() || e.arguments.size() > 4)
    failFunction(e.name, "takes another number of arguments");
  const Term term = write(*e.arguments[0], scope);
  const std::string pattern = e.arguments.size() > 1 ? text(write(*e.arguments[1], scope)) : "''";
  std::string weeks;
  for (std::size_t i = 2; i < 4; ++i)
    weeks += ", " + (i < e.arguments.size() ? number(write(*e.arguments[i], scope)) : "1");
  return {.sql = "vx_format(" + value(term) + ", " + typeCode(term.type.value_or(DataType::Text)) + ", " +
                 pattern + weeks + ")",
          .type = DataType::Text};
}

}  // namespace voxa::dialect
