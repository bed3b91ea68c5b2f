#pragma once

#include <cmath>
#include <cstdlib>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "platform/value.h"

/// Makes random conditions on the rows of tables, and computes in plain code what they mean.
namespace voxa::differential {

/// A field's value. All but texts are numbers: True is -1, a date its number of days.
struct Cell {
  bool null = true;
  double number = 0;
  std::string text = {};
};
using Row = std::vector<Cell>;
using Rows = std::vector<const Row*>;  // one row of each table of the statement
using Truth = std::optional<bool>;     // none: unknown

struct Column {
  const char* name;
  DataType type;
};
inline constexpr Column columns[] = {
    {"Id", DataType::Long}, {"N", DataType::Integer}, {"D", DataType::Double}, {"T", DataType::Text},
    {"S", DataType::Text},  {"F", DataType::Boolean}, {"W", DataType::Date}};
inline constexpr std::size_t columnCount = std::size(columns);

/// Text with small letters. accented replaces each letter outside ASCII (an e with an accent).
inline std::string lower(const std::string& s, const char* accented) {
  std::string out;
  for (std::size_t i = 0; i < s.size(); i += s[i] == '\xC3' ? 2 : 1) {
    if (s[i] == '\xC3') {
      out += accented;
    } else {
      out += s[i] >= 'A' && s[i] <= 'Z' ? static_cast<char>(s[i] + 32) : s[i];
    }
  }
  return out;
}

/// Each character behind its class: signs, digits, letters.
inline std::string classed(const std::string& s) {
  std::string out;
  for (const char c : s) (out += c >= '0' && c <= '9' ? '1' : c >= 'a' && c <= 'z' ? '2' : '0') += c;
  return out;
}

/// Compares: negative, 0 or positive. Null comes before everything; accents count after letters.
inline int order(const Cell& a, const Cell& b, bool texts) {
  if (a.null || b.null) return static_cast<int>(b.null) - static_cast<int>(a.null);
  if (!texts) return a.number < b.number ? -1 : a.number > b.number ? 1 : 0;
  const int letters = classed(lower(a.text, "e")).compare(classed(lower(b.text, "e")));
  return letters != 0 ? letters : lower(a.text, "f").compare(lower(b.text, "f"));
}

inline Cell numberIn(const Cell& cell) {
  char* end = nullptr;
  const double number = std::strtod(cell.text.c_str(), &end);
  const bool whole = end != cell.text.c_str() && *end == '\0' && std::isfinite(number);
  return cell.null || !whole || cell.text.find('x') != std::string::npos ? Cell() : Cell{false, number};
}

inline Truth opposite(Truth t) {
  return t ? Truth(!*t) : t;
}
inline Truth both(Truth a, Truth b) {
  if ((a && !*a) || (b && !*b)) return false;
  return a && b ? Truth(true) : std::nullopt;
}
inline Truth either(Truth a, Truth b) {
  return opposite(both(opposite(a), opposite(b)));
}

/// A piece of a Like pattern, and the characters that it stands for: one of them, or any number. An e with an
/// accent lies between e and f; no piece ends there, so it passes for an e.
struct Piece {
  const char* sql;
  char low, high;
  bool many = false, others = false;
};
inline constexpr Piece pieces[] = {
    {"*", 1, 126, true}, {"?", 1, 126},   {"#", '0', '9'}, {"[a-f]", 'a', 'f'},
    {"[?]", '?', '?'},   {"A", 'a', 'a'}, {"7", '7', '7'}, {"[!b-y]", 'b', 'y', false, true}};

inline bool like(std::string_view s, const std::vector<const Piece*>& pattern, std::size_t at = 0) {
  if (at == pattern.size()) return s.empty();
  const Piece& piece = *pattern[at];
  if (piece.many && like(s, pattern, at + 1)) return true;
  if (s.empty() || (s[0] >= piece.low && s[0] <= piece.high) == piece.others) return false;
  return like(s.substr(1), pattern, piece.many ? at : at + 1);
}

struct Operand {
  std::string sql;
  DataType type;
  std::function<Cell(const Rows&)> value;
  [[nodiscard]] bool isText() const { return type == DataType::Text; }
};
struct Condition {
  std::string sql;
  std::function<Truth(const Rows&)> holds;
};

inline Truth compare(const std::string& op, const Operand& left, const Operand& right, const Rows& rows,
                     bool texts) {
  const auto value = [&](const Operand& o) {
    return o.isText() && !texts ? numberIn(o.value(rows)) : o.value(rows);
  };
  const Cell a = value(left);
  const Cell b = value(right);
  if (a.null || b.null) return std::nullopt;
  const int sign = order(a, b, texts);
  if (op == "<>") return sign != 0;
  return (op[0] == '<' && sign < 0) || (op[0] == '>' && sign > 0) || (op.back() == '=' && sign == 0);
}

class Random {
 public:
  explicit Random(std::uint64_t seed) : random_(seed) {}

  std::size_t below(std::size_t n) { return random_() % n; }
  bool oneIn(std::size_t n) { return below(n) == 0; }
  template <typename... Choices>
  const char* oneOf(Choices... choices) {
    const char* const all[] = {choices...};
    return all[below(sizeof...(choices))];
  }

  Cell randomCell(DataType type) {
    if (type == DataType::Boolean) return {false, oneIn(2) ? -1.0 : 0.0};
    if (oneIn(5)) return {};
    if (type == DataType::Text) {
      return {false, 0,
              oneOf("", "0", "7", "007", " 7", "1.5", "-2", "1e1", "abc", "ABC", "O'Hara", "x7", "a_c", "a1c",
                    "\xC3\x89ric", "\xC3\xA9RIC")};
    }
    const double number = static_cast<double>(below(8)) - 2;
    if (type == DataType::Date) return {false, 46000 + number + (oneIn(2) ? 0.25 : 0)};
    return {false, type == DataType::Double && oneIn(2) ? number + 0.5 : number};
  }

  /// asText: a value that is no text is put between quotes.
  static std::string literal(const Cell& cell, DataType type, bool asText = false) {
    const std::string quote = asText ? "'" : "";
    if (cell.null) return "Null";
    if (type == DataType::Boolean) return cell.number != 0 ? "True" : "False";
    if (type == DataType::Text) {
      std::string sql = "'";
      for (const char c : cell.text) sql.append(c == '\'' ? 2 : 1, c);
      return sql + "'";
    }
    if (type != DataType::Date) return quote + Value(cell.number).toText() + quote;
    const int day = static_cast<int>(cell.number);  // 46000 is 9 December 2025
    const std::string time = cell.number != day ? "/2025 06:00:00" : "/2025";
    const std::string dayText = std::to_string(9 + day - 46000);
    return asText ? "'" + dayText + "/12" + time + "'" : "#12/" + dayText + time + "#";
  }

  Condition condition(int depth = 0) {
    if (depth == 3 || oneIn(3)) return simple();
    const Condition left = condition(depth + 1);
    if (oneIn(4)) return {"not (" + left.sql + ")", [=](const Rows& r) { return opposite(left.holds(r)); }};
    const Condition right = condition(depth + 1);
    const std::string op = oneOf("and", "or", "xor", "eqv", "imp");
    return {"(" + left.sql + ") " + op + " (" + right.sql + ")", [=](const Rows& r) -> Truth {
              const Truth a = left.holds(r);
              const Truth b = right.holds(r);
              if (op == "and") return both(a, b);
              if (op == "or") return either(a, b);
              if (op == "imp") return either(opposite(a), b);
              return a && b ? Truth((*a == *b) == (op == "eqv")) : std::nullopt;
            }};
  }

  Condition simple() {
    const Operand left = field();
    const std::size_t form = below(8);
    const bool negated = oneIn(2);
    const std::string no = negated ? " not" : "";
    const auto decided = [negated](Truth t) { return negated ? opposite(t) : t; };
    if (form == 0)
      return {left.sql + " is" + no + " null", [=](const Rows& r) { return decided(left.value(r).null); }};
    if (form == 1 && left.type == DataType::Boolean) {
      return {left.sql, [=](const Rows& r) { return Truth(left.value(r).number != 0); }};
    }
    if (form == 2 && left.isText()) {
      std::vector<const Piece*> pattern;
      std::string sql;
      for (std::size_t n = below(4); n > 0; --n)
        sql += pattern.emplace_back(&pieces[below(std::size(pieces))])->sql;
      return {left.sql + no + " like '" + sql + "'", [=](const Rows& r) {
                const Cell cell = left.value(r);
                return cell.null ? Truth() : decided(like(lower(cell.text, "e"), pattern));
              }};
    }
    const Operand a = comparand(left.type);
    if (form == 3 || form == 4) {
      Operand b = comparand(left.type);
      if (left.isText() && a.isText() != b.isText()) b = a;  // beside a number every text must be one
      const bool texts = left.isText() && a.isText();
      const auto with = [=](const char* op, const Operand& o, const Rows& r) {
        return compare(op, left, o, r, texts);
      };
      if (form == 3) {
        return {left.sql + no + " between " + a.sql + " and " + b.sql,
                [=](const Rows& r) { return decided(both(with(">=", a, r), with("<=", b, r))); }};
      }
      return {left.sql + no + " in (" + a.sql + ", " + b.sql + ")",
              [=](const Rows& r) { return decided(either(with("=", a, r), with("=", b, r))); }};
    }
    const std::string op = oneOf("=", "<>", "<", "<=", ">", ">=");
    const Operand& first = oneIn(4) ? a : left;
    const Operand& second = &first == &a ? left : a;
    return {first.sql + op + second.sql,
            [=](const Rows& r) { return compare(op, first, second, r, first.isText() && second.isText()); }};
  }

  std::size_t tables = 1;  ///< how many tables a condition uses

 private:
  /// A field of one of the tables. The tables are named A and B.
  Operand field() {
    Operand one = column();
    if (!one.isText() || !oneIn(4)) return one;
    const Operand other = column();  // a text joined to another is Null only when both are
    if (!other.isText()) return one;
    return {"(" + one.sql + " & " + other.sql + ")", DataType::Text, [=](const Rows& rows) {
              const Cell a = one.value(rows);
              const Cell b = other.value(rows);
              return Cell{a.null && b.null, 0, a.text + b.text};
            }};
  }
  Operand column() {
    const std::size_t table = below(tables);
    const std::size_t column = below(columnCount);
    const std::string qualifier = tables == 1 && oneIn(2) ? "" : table == 0 ? "A." : "b.";
    return {qualifier + columns[column].name, columns[column].type,
            [=](const Rows& rows) { return (*rows[table])[column]; }};
  }
  /// Something that a field of that type can be compared with. A text is compared with texts and with
  /// numbers.
  Operand comparand(DataType type) {
    const auto special = [](DataType t) { return t == DataType::Boolean || t == DataType::Date; };
    while (oneIn(3)) {
      Operand other = field();
      const bool text = type == DataType::Text || other.isText();
      if (type == other.type || !text || (!special(type) && !special(other.type))) return other;
    }
    const bool turned = oneIn(3) && type != DataType::Boolean;  // a number for a text field, or the reverse
    const DataType own = turned && type == DataType::Text ? DataType::Double : type;
    Cell cell = randomCell(own);
    return {literal(cell, own, turned && own == type), cell.null ? type : own,
            [cell](const Rows&) { return cell; }};
  }

  std::mt19937_64 random_;
};

}  // namespace voxa::differential
