#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace voxa {

class Clock;

/// Field types, with the type codes that the Jet database engine publishes.
enum class DataType : std::uint8_t {
  Boolean = 1,
  Byte = 2,
  Integer = 3,   ///< 16-bit signed
  Long = 4,      ///< 32-bit signed
  Currency = 5,  ///< an amount: a double with four digits behind the point
  Single = 6,    ///< a double with the digits that a 32-bit one holds: 0.1, not 0.100000001490116
  Double = 7,
  Date = 8,
  Binary = 9,  ///< a few bytes, up to a size
  Text = 10,
  LongBinary = 11,  ///< any number of bytes: a picture, say
  Memo = 12
};

/// Whether the values of a type are doubles.
[[nodiscard]] constexpr bool isReal(DataType type) {
  return type == DataType::Currency || type == DataType::Single || type == DataType::Double;
}

/// Whether the values of a type are texts.
[[nodiscard]] constexpr bool isText(DataType type) {
  return type == DataType::Text || type == DataType::Memo;
}

/// Whether the values of a type are bytes.
[[nodiscard]] constexpr bool isBinary(DataType type) {
  return type == DataType::Binary || type == DataType::LongBinary;
}

/// Greatest size of a field of that type, which is also the usual one: characters of a text, bytes; 0 for
/// types without a size.
[[nodiscard]] constexpr int greatestSize(DataType type) {
  constexpr int characters = 255;
  constexpr int bytes = 510;
  return type == DataType::Text ? characters : type == DataType::Binary ? bytes : 0;
}

/// Bytes that mean nothing to the database.
struct Bytes {
  std::string data;
  friend bool operator==(const Bytes&, const Bytes&) = default;
};

/// The bytes in base 16, two capital digits each: "0AFF".
[[nodiscard]] std::string hexText(const Bytes& bytes);

/// A moment as automation clients count it: days since 30 December 1899, with the time of day as the
/// fraction. Conversions and formats are in datetime.h.
struct DateTime {
  double days = 0;
  friend auto operator<=>(const DateTime&, const DateTime&) = default;  // NOLINT(modernize-use-nullptr)
};

/// One database or automation value: Null, boolean, byte, 16-bit, 32-bit, double, date-time, text (UTF-8)
/// or bytes.
class Value {
 public:
  using Variant = std::variant<std::monostate, bool, std::uint8_t, std::int16_t, std::int32_t, double,
                               DateTime, std::string, Bytes>;

  Value() = default;  ///< Null
  template <typename T>
  requires(std::same_as<T, bool> || std::same_as<T, std::uint8_t> || std::same_as<T, std::int16_t> ||
           std::same_as<T, std::int32_t> || std::same_as<T, double> || std::same_as<T, DateTime>) Value(T v)
      : data_(v) {}  // NOLINT(google-explicit-constructor)
  // NOLINTNEXTLINE(performance-unnecessary-value-param): it is moved
  Value(std::string v) : data_(std::move(v)) {}         // NOLINT(google-explicit-constructor)
  Value(std::string_view v) : data_(std::string(v)) {}  // NOLINT(google-explicit-constructor)
  Value(Bytes v) : data_(std::move(v)) {}               // NOLINT(google-explicit-constructor)
  Value(const char* v) : data_(std::string(v)) {}       // NOLINT(google-explicit-constructor)

  [[nodiscard]] bool isNull() const { return data_.index() == 0; }
  [[nodiscard]] bool isText() const { return std::holds_alternative<std::string>(data_); }
  [[nodiscard]] const Variant& data() const { return data_; }

  /// Conversions by the rules of automation clients. Null raises `err::invalidNull`; text that is no number
  /// (or no date) raises `err::typeMismatch`; a number outside the target raises `err::overflow`. A fraction
  /// is rounded half to even. True is -1. Bytes convert to nothing: `err::typeMismatch`.
  [[nodiscard]] std::int16_t toInt16() const;
  [[nodiscard]] std::int32_t toInt32() const;
  [[nodiscard]] double toDouble() const;
  [[nodiscard]] bool toBool() const;  ///< any number but 0, "True" or "False" in any case
  /// clock: tells the day on which a text is read. Without it a text with a year of two digits is no date
  /// (datetime.h).
  [[nodiscard]] DateTime toDateTime(const Clock* clock = nullptr) const;
  /// Text: "True"/"False", decimal numbers without a leading blank (no exponent for whole numbers below
  /// 1e15), dates in the regional short form (datetime.h).
  [[nodiscard]] std::string toText() const&;
  [[nodiscard]] std::string toText() &&;  ///< takes the text, if it is one, out of the value

  /// Identity: the same alternative and the same value; texts are equal to the letter. For tests and change
  /// detection. The comparison rules of a query are different.
  friend bool operator==(const Value&, const Value&) = default;

 private:
  Variant data_;
};

/// A number with the 15 digits that a double holds for certain: "1.23000000000000e+05".
[[nodiscard]] std::string certainDigits(double number);

/// The number that these digits are.
[[nodiscard]] double certain(double number);

/// Takes a number of base 16 ("&HFF") or 8 ("&O17", "&17") from the beginning of a text; none when there is
/// none. One of up to 16 bits is a number of 16 bits and another of 32, so that "&HFFFF" is -1;
/// `err::overflow` for more.
[[nodiscard]] std::optional<std::int32_t> takeBasedNumber(std::string_view& text);

/// The number that the whole text is, with blanks around it: in decimal, with commas between groups of
/// three digits, in parentheses when it is negative, or as takeBasedNumber reads it. None when it is no
/// number; `err::overflow` for one beyond all range.
[[nodiscard]] std::optional<double> parseNumber(std::string_view text);

/// The number as an amount, with four digits behind the point, half to even as its 15 digits tell it;
/// `err::overflow` beyond 922,337,203,685,477, which 64 bits of ten-thousandths hold.
[[nodiscard]] double toCurrency(double number);
/// The number with the digits that a 32-bit one holds; `err::overflow` outside of its range.
[[nodiscard]] double toSingle(double number);

/// The value as a field of that type stores it. Null stays Null, but becomes False in a boolean field. A text
/// is read as a number, boolean or regional date when the field has such a type.
/// size: greatest number of characters of a Text field (0: 255) or of bytes of a Binary one (0: 510); ignored
/// for other types.
/// clock: tells the day on which the value is read, for years of two digits (see toDateTime).
/// Errors: `err::dbConversion` when the value cannot be read as the type, `err::overflow` when it is a number
/// outside the type's range, `err::dbTextTooLong` when a text or bytes are longer than size.
[[nodiscard]] Value convertForField(const Value& value, DataType type, int size,
                                    const Clock* clock = nullptr);

}  // namespace voxa
