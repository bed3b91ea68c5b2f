#include <algorithm>
#include <cmath>
#include <limits>

#include "engines/sqlite/function_table.h"
#include "platform/error.h"

namespace voxa {

Value valueOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER: {
      const std::int64_t whole = sqlite3_value_int64(value);
      const bool fits = whole >= std::numeric_limits<std::int32_t>::min() &&
                        whole <= std::numeric_limits<std::int32_t>::max();
      return fits ? Value(static_cast<std::int32_t>(whole)) : Value(static_cast<double>(whole));
    }
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    case SQLITE_TEXT:
      return textOf(value);
    default:
      return bytesOf(value);
  }
}

Value asType(Value value, DataType type) {
  if (value.isNull()) return value;
  if (type == DataType::Boolean) return value.toBool();
  if (type == DataType::Date) return DateTime{value.toDouble()};
  return value;
}

void returnValue(sqlite3_context* context, const Value& value) {
  struct Result {
    sqlite3_context* context;
    void operator()(std::monostate) const { sqlite3_result_null(context); }
    void operator()(bool v) const { sqlite3_result_int(context, v ? -1 : 0); }
    void operator()(double v) const { sqlite3_result_double(context, v); }
    void operator()(DateTime v) const { sqlite3_result_double(context, v.days); }
    void operator()(const std::string& v) const { returnText(context, v); }
    void operator()(const Bytes& v) const {
      sqlite3_result_blob64(context, v.data.data(), v.data.size(), SQLITE_TRANSIENT);
    }
    void operator()(std::int32_t v) const { sqlite3_result_int(context, v); }
  };
  std::visit(Result{context}, value.data());
}

namespace {

/// Maps a number; a whole one stays as it is.
template <double (*map)(double)>
void rounded(sqlite3_context* context, sqlite3_value** arguments, int) {
  if (sqlite3_value_type(arguments[0]) == SQLITE_INTEGER) {
    sqlite3_result_value(context, arguments[0]);
  } else {
    sqlite3_result_double(context, map(sqlite3_value_double(arguments[0])));
  }
}

double down(double v) {
  return std::floor(v);
}
double towardsZero(double v) {
  return std::trunc(v);
}

void number(sqlite3_context* context, sqlite3_value** arguments, int) {
  if (sqlite3_value_type(arguments[0]) != SQLITE_TEXT) {
    sqlite3_result_value(context, arguments[0]);
    return;
  }
  try {
    if (const auto number = parseNumber(textOf(arguments[0]))) sqlite3_result_double(context, *number);
  } catch (const Error&) {  // beyond all range
    sqlite3_result_null(context);
  }
}

void store(sqlite3_context* context, sqlite3_value** arguments, int) {
  const auto type = static_cast<DataType>(sqlite3_value_int(arguments[1]));
  returnValue(context, convertForField(valueOf(arguments[0]), type, sqlite3_value_int(arguments[2]),
                                       clockOf(context)));
}

void text(sqlite3_context* context, sqlite3_value** arguments, int) {
  const auto type = static_cast<DataType>(sqlite3_value_int(arguments[1]));
  returnText(context, asType(valueOf(arguments[0]), type).toText());
}

[[noreturn]] void failRange() {
  throw Error(err::overflow, "Overflow: the number is too large");
}

void finite(sqlite3_context* context, sqlite3_value** arguments, int) {
  if (std::isinf(sqlite3_value_double(arguments[0]))) failRange();
  sqlite3_result_value(context, arguments[0]);
}

void product(sqlite3_context* context, sqlite3_value** arguments, int count) {
  double v = 1;
  for (int i = 0; i < count; ++i) {
    v *= sqlite3_value_double(arguments[i]);
    if (std::isinf(v)) failRange();
  }
  sqlite3_result_double(context, v);
}

/// vx_one(count, value): the value of the only row of a query.
void one(sqlite3_context* context, sqlite3_value** arguments, int) {
  if (sqlite3_value_int(arguments[0]) > 1)
    throw Error(err::dbSeveralRows,
                "The query within the statement gives several rows where one value is needed: narrow it with "
                "WHERE, TOP 1 or an aggregate function");
  sqlite3_result_value(context, arguments[1]);
}

void sign(sqlite3_context* context, sqlite3_value** arguments, int) {
  const double v = sqlite3_value_double(arguments[0]);
  sqlite3_result_int(context, v > 0 ? 1 : v < 0 ? -1 : 0);
}

void power(sqlite3_context* context, sqlite3_value** arguments, int) {
  const double v = std::pow(sqlite3_value_double(arguments[0]), sqlite3_value_double(arguments[1]));
  if (std::isnan(v)) throw Error(err::invalidArgument, "Invalid argument: the power of a negative number");
  if (std::isinf(v)) throw Error(err::overflow, "Overflow: the power is too large");
  sqlite3_result_double(context, v);
}

[[noreturn]] void failDivision() {
  throw Error(err::divisionByZero, "Division by zero");
}

void divide(sqlite3_context* context, sqlite3_value** arguments, int) {
  const double divisor = sqlite3_value_double(arguments[1]);
  if (divisor == 0) failDivision();
  const double v = sqlite3_value_double(arguments[0]) / divisor;
  if (std::isinf(v)) throw Error(err::overflow, "Overflow: the quotient is too large");
  sqlite3_result_double(context, v);
}

/// Whole division or its remainder.
template <bool remainder>
void divideWhole(sqlite3_context* context, sqlite3_value** arguments, int) {
  const std::int64_t dividend = sqlite3_value_int64(arguments[0]);
  const std::int64_t divisor = sqlite3_value_int64(arguments[1]);
  if (divisor == 0) failDivision();
  sqlite3_result_int64(context, remainder ? dividend % divisor : dividend / divisor);
}

/// Rounds half to even, as the 15 digits of the number tell it.
void round(sqlite3_context* context, sqlite3_value** arguments, int) {
  const int digits = sqlite3_value_int(arguments[1]);
  if (digits < 0 || digits > 15) {
    throw Error(err::invalidArgument, "Invalid argument: a number is rounded to 0 to 15 digits");
  }
  if (sqlite3_value_type(arguments[0]) == SQLITE_INTEGER) {
    sqlite3_result_value(context, arguments[0]);
    return;
  }
  const double scale = std::pow(10.0, digits);
  const double v = sqlite3_value_double(arguments[0]);
  const double scaled = v * scale;
  sqlite3_result_double(context, std::isfinite(scaled) ? std::nearbyint(certain(scaled)) / scale : v);
}

/// A function of the mathematical library; 5 where it has no value.
template <double (*map)(double)>
void computed(sqlite3_context* context, sqlite3_value** arguments, int) {
  const double v = map(sqlite3_value_double(arguments[0]));
  if (std::isnan(v) || (std::isinf(v) && v < 0))
    throw Error(err::invalidArgument, "Invalid argument: the function has no value for this number");
  if (std::isinf(v)) throw Error(err::overflow, "Overflow: the value of the function is too large");
  sqlite3_result_double(context, v);
}

void isNumeric(sqlite3_context* context, sqlite3_value** arguments, int) {
  const int type = sqlite3_value_type(arguments[0]);
  bool number = type == SQLITE_INTEGER || type == SQLITE_FLOAT;
  if (type == SQLITE_TEXT) {
    try {
      number = parseNumber(textOf(arguments[0])).has_value();
    } catch (const Error& error) {
      number = error.number() == err::overflow;
    }
  }
  sqlite3_result_int(context, number ? 1 : 0);
}

/// Where in the text from `at` on no digit is.
std::size_t behindDigits(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of("0123456789", at), text.size());
}

/// The decimal number at the beginning of a text, 0 when there is none. D is an exponent, too.
double leadingNumber(std::string_view text) {
  std::size_t end = behindDigits(text, 0);
  if (end < text.size() && text[end] == '.') end = behindDigits(text, end + 1);
  std::string number(text.substr(0, end));
  if (number.empty() || number == ".") return 0;
  if (end < text.size() && std::string_view("eEdD").find(text[end]) != std::string_view::npos) {
    std::size_t digits = end + 1;
    if (digits < text.size() && (text[digits] == '+' || text[digits] == '-')) ++digits;
    const std::size_t behind = behindDigits(text, std::min(digits, text.size()));
    if (behind > digits) number.append("e").append(text.substr(end + 1, behind - end - 1));
  }
  return Value(number).toDouble();
}

/// The number at the beginning of a text, 0 when there is none. Blanks are ignored.
void val(sqlite3_context* context, sqlite3_value** arguments, int) {
  std::string digits(textOf(arguments[0]));
  std::erase_if(digits, [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
  const bool negative = digits.starts_with('-');
  if (negative || digits.starts_with('+')) digits.erase(0, 1);
  std::string_view rest = digits;
  const auto based = takeBasedNumber(rest);
  const double v = based ? *based : leadingNumber(rest);
  sqlite3_result_double(context, negative ? -v : v);
}

constexpr SqlFunction functions[] = {{"vx_number", 1, false, number},
                                     {"vx_store", 3, true, store},
                                     {"vx_text", 2, false, text},
                                     {"vx_int", 1, false, rounded<down>},
                                     {"vx_fix", 1, false, rounded<towardsZero>},
                                     {"vx_finite", 1, false, finite},
                                     {"vx_product", -1, false, product},
                                     {"vx_one", 2, true, one},
                                     {"vx_sgn", 1, false, sign},
                                     {"vx_div", 2, false, divide},
                                     {"vx_idiv", 2, false, divideWhole<false>},
                                     {"vx_mod", 2, false, divideWhole<true>},
                                     {"vx_pow", 2, false, power},
                                     {"vx_round", 2, false, round},
                                     {"vx_val", 1, false, val},
                                     {"vx_sqr", 1, false, computed<std::sqrt>},
                                     {"vx_exp", 1, false, computed<std::exp>},
                                     {"vx_log", 1, false, computed<std::log>},
                                     {"vx_sin", 1, false, computed<std::sin>},
                                     {"vx_cos", 1, false, computed<std::cos>},
                                     {"vx_tan", 1, false, computed<std::tan>},
                                     {"vx_atn", 1, false, computed<std::atan>},
                                     {"vx_isnumeric", 1, true, isNumeric}};

}  // namespace

std::span<const SqlFunction> valueFunctions() {
  return functions;
}

}  // namespace voxa
