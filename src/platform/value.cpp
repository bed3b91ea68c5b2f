#include "platform/value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <utility>

#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa {
namespace {

template <typename... Fs>
struct Overloaded : Fs... {
  using Fs::operator()...;
};
template <typename... Fs>
Overloaded(Fs...) -> Overloaded<Fs...>;

constexpr int certainCount = 15;  // digits

/// The text in quotes, short enough for a message.
std::string quoted(std::string_view text) {
  constexpr std::size_t shown = 60;
  if (lengthInCharacters(text) <= shown) return '"' + std::string(text) + '"';
  const std::size_t end = behindCharacter(text, shown - 1);
  return '"' + std::string(text.substr(0, end)) + "...\"";
}

[[noreturn]] void failBytes() {
  throw Error(err::typeMismatch, "Type mismatch: bytes cannot be read as another value");
}

[[noreturn]] void failNull() {
  throw Error(err::invalidNull, "Invalid use of Null");
}

[[noreturn]] void failType(std::string_view text, const char* wanted) {
  throw Error(err::typeMismatch, "Type mismatch: " + quoted(text) + " is not " + wanted);
}

[[noreturn]] void failRange(const std::string& number, const char* wanted) {
  throw Error(err::overflow, "Overflow: " + number + " is outside the range of " + wanted);
}

/// With the 15 digits that a double holds for certain: 0.1 * 3 is 0.3. With an exponent when more than 15
/// places are needed on either side of the point.
std::string doubleText(double v) {
  if (v == 0) return "0";
  std::string digits = certainDigits(v);
  const auto e = digits.find('e');
  if (e == std::string::npos) return digits;  // not finite
  const int exponent = std::atoi(digits.c_str() + e + 1);
  digits.resize(e);
  while (digits.back() == '0') digits.pop_back();
  if (digits.back() == '.') digits.pop_back();
  const std::size_t point = digits.find('.');
  const int fraction = point == std::string::npos ? 0 : static_cast<int>(digits.size() - point) - 1;
  const int places = std::max(fraction - exponent, 0);
  if (exponent < certainCount && places <= certainCount) {
    char buffer[64];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::fixed, places).ptr};
  }
  const std::string power = zeroPadded(std::abs(exponent), 2);
  return digits + (exponent < 0 ? "E-" : "E+") + power;
}

/// Takes the commas in front of groups of three digits out of a number; others stay.
std::string withoutCommas(std::string_view number) {
  constexpr std::string_view decimal = "0123456789";
  std::string out;
  for (std::size_t at = 0;;) {
    const std::size_t end = std::min(number.find_first_not_of(decimal, at), number.size());
    const bool group = at == 0 ? end > 0 && end <= 3 : end == at + 3;
    if (!group) return std::string(number);
    out.append(number.substr(at, end - at));
    if (end == number.size() || number[end] != ',') return out.append(number.substr(end));
    at = end + 1;
  }
}

double numberOf(const Value& value) {
  return std::visit(
      Overloaded{[](std::monostate) -> double { failNull(); }, [](bool v) -> double { return v ? -1 : 0; },
                 [](DateTime v) -> double { return v.days; },
                 [](const std::string& v) -> double {
                   const auto number = parseNumber(v);
                   if (!number) failType(v, "a number");
                   return *number;
                 },
                 [](const Bytes&) -> double { failBytes(); }, [](auto v) -> double { return v; }},
      value.data());
}

template <typename T>
T wholeNumber(const Value& value, const char* typeName) {
  const double exact = numberOf(value);
  const double rounded = std::nearbyint(exact);  // the default rounding mode is half to even
  if (!(rounded >= std::numeric_limits<T>::min() && rounded <= std::numeric_limits<T>::max())) {
    failRange(doubleText(exact), typeName);
  }
  return static_cast<T>(rounded);
}

DateTime checkedDate(double days) {
  static const double first = toDateTime({.year = 100, .month = 1, .day = 1}).days;
  static const double last = toDateTime({.year = 9999, .month = 12, .day = 31}).days;
  // Before day 0 the time of day counts away from zero. So the moments of the first day lie below its number.
  if (!(days > first - 1 && days < last + 1)) failRange(doubleText(days), "dates");
  return DateTime{days};
}

double finite(double number) {
  if (!std::isfinite(number)) failRange(doubleText(number), "numbers");
  return number;
}

std::size_t limitOf(DataType type, int size) {
  return static_cast<std::size_t>(size > 0 ? size : greatestSize(type));
}

Value convertBytes(const Value& value, DataType type, int size) {
  const auto* bytes = std::get_if<Bytes>(&value.data());
  if (bytes == nullptr) throw Error(err::typeMismatch, "Type mismatch: the field takes bytes only");
  const std::size_t limit = limitOf(type, size);
  if (type == DataType::Binary && bytes->data.size() > limit) {
    throw Error(err::dbTextTooLong, std::to_string(bytes->data.size()) +
                                        " bytes are too many for a field of " + std::to_string(limit));
  }
  return value;
}

Value convert(const Value& value, DataType type, int size, const Clock* clock) {
  switch (type) {
    case DataType::Boolean:
      return value.toBool();
    case DataType::Byte:
      return wholeNumber<std::uint8_t>(value, "bytes (0 to 255)");
    case DataType::Integer:
      return value.toInt16();
    case DataType::Long:
      return value.toInt32();
    case DataType::Currency:
      return toCurrency(value.toDouble());
    case DataType::Single:
      return toSingle(value.toDouble());
    case DataType::Double:
      return finite(value.toDouble());
    case DataType::Date:
      return checkedDate(value.toDateTime(clock).days);
    case DataType::Binary:
    case DataType::LongBinary:
      return convertBytes(value, type, size);
    case DataType::Text:
    case DataType::Memo:
      break;
  }
  std::string text = value.toText();
  const std::size_t limit = limitOf(type, size);
  if (type == DataType::Text && text.size() > limit && lengthInCharacters(text) > limit) {
    throw Error(err::dbTextTooLong, "The text " + quoted(text) + " is too long for its field of " +
                                        std::to_string(limit) + " characters");
  }
  return text;
}

}  // namespace

std::string hexText(const Bytes& bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string out;
  for (const char c : bytes.data) {
    const auto byte = static_cast<unsigned char>(c);
    out += digits[byte / digits.size()];
    out += digits[byte % digits.size()];
  }
  return out;
}

std::int16_t Value::toInt16() const {
  if (const auto* v = std::get_if<std::int16_t>(&data_)) return *v;
  return wholeNumber<std::int16_t>(*this, "16-bit integers");
}

std::int32_t Value::toInt32() const {
  if (const auto* v = std::get_if<std::int32_t>(&data_)) return *v;
  return wholeNumber<std::int32_t>(*this, "32-bit integers");
}

double Value::toDouble() const {
  return numberOf(*this);
}

bool Value::toBool() const {
  if (const auto* text = std::get_if<std::string>(&data_)) {
    if (equalNoCase(*text, "True")) return true;
    if (equalNoCase(*text, "False")) return false;
    const auto number = parseNumber(*text);
    if (!number) failType(*text, "a number, True or False");
    return *number != 0;
  }
  return numberOf(*this) != 0;
}

DateTime Value::toDateTime(const Clock* clock) const {
  if (const auto* text = std::get_if<std::string>(&data_)) {
    const auto moment = parseDateTime(*text, clock);
    if (!moment) failType(*text, "a date");
    return *moment;
  }
  if (const auto* moment = std::get_if<DateTime>(&data_)) return *moment;
  return checkedDate(numberOf(*this));
}

std::string certainDigits(double number) {
  char buffer[32];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::scientific,
                                certainCount - 1)
                      .ptr};
}

double certain(double number) {
  const std::string digits = certainDigits(number);
  double value = number;
  (void)std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

std::optional<double> parseNumber(std::string_view text) {
  constexpr std::string_view blanks = " \t";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return std::nullopt;
  std::string_view digits = text.substr(first, text.find_last_not_of(blanks) - first + 1);
  if (digits.front() == '&') {
    const auto based = takeBasedNumber(digits);
    return based && digits.empty() ? std::optional<double>(*based) : std::nullopt;
  }
  const bool enclosed = digits.size() > 2 && digits.front() == '(' && digits.back() == ')';
  if (enclosed) digits = digits.substr(1, digits.size() - 2);
  const bool negative = enclosed || digits.front() == '-';
  if (!enclosed && (negative || digits.front() == '+')) digits.remove_prefix(1);
  std::string plain;
  if (digits.find(',') != std::string_view::npos) digits = plain = withoutCommas(digits);
  // from_chars would also read "inf", "nan" and a second sign.
  if (digits.empty() || digits.find_first_not_of("0123456789.eE+-") != std::string_view::npos ||
      digits.find_first_of("0123456789.") != 0) {
    return std::nullopt;
  }
  double v = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), v);
  if (error == std::errc::invalid_argument || end != digits.data() + digits.size()) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    // The sign of the exponent tells whether the number is too small or too large.
    if (digits.find('-') == std::string_view::npos) failRange(quoted(text), "numbers");
    v = 0;
  }
  return negative ? -v : v;
}

std::optional<std::int32_t> takeBasedNumber(std::string_view& text) {
  if (text.size() < 2 || text[0] != '&') return std::nullopt;
  const char letter = static_cast<char>(text[1] | 0x20);
  const char* const first = text.data() + (letter == 'h' || letter == 'o' ? 2 : 1);
  const char* const last = text.data() + text.size();
  std::uint32_t bits = 0;
  const auto [end, error] = std::from_chars(first, last, bits, letter == 'h' ? 16 : 8);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error != std::errc()) failRange(quoted(text), "32-bit integers");
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (bits <= std::numeric_limits<std::uint16_t>::max()) return static_cast<std::int16_t>(bits);
  return static_cast<std::int32_t>(bits);
}

double toCurrency(double number) {
  constexpr double parts = 10'000;
  constexpr double most = 922'337'203'685'477.0;
  if (!(std::fabs(number) <= most)) failRange(doubleText(number), "amounts");
  return std::nearbyint(certain(number * parts)) / parts;  // the default rounding mode is half to even
}

double toSingle(double number) {
  if (!(std::fabs(number) <= std::numeric_limits<float>::max()))
    failRange(doubleText(number), "single numbers");
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<float>(number)).ptr;
  double digits = 0;
  (void)std::from_chars(buffer, end, digits);
  return digits;
}

std::string Value::toText() && {
  if (auto* text = std::get_if<std::string>(&data_)) return std::move(*text);
  return std::as_const(*this).toText();
}

std::string Value::toText() const& {
  return std::visit(
      Overloaded{[](std::monostate) -> std::string { failNull(); },
                 [](bool v) { return std::string(v ? "True" : "False"); },
                 [](DateTime v) { return toShortText(v); }, [](const std::string& v) { return v; },
                 [](const Bytes&) -> std::string { failBytes(); }, [](double v) { return doubleText(v); },
                 [](auto v) { return std::to_string(v); }},
      data_);
}

Value convertForField(const Value& value, DataType type, int size, const Clock* clock) {
  if (value.isNull()) return type == DataType::Boolean ? Value(false) : value;
  try {
    return convert(value, type, size, clock);
  } catch (const Error& e) {
    if (e.number() != err::typeMismatch) throw;
    throw Error(err::dbConversion, "Data type conversion error: " + e.description());
  }
}

}  // namespace voxa
