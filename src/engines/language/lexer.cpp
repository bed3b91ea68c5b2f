#include "engines/language/lexer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <limits>
#include <optional>

#include "engines/language/words.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::dialect {
namespace {

enum class Class : std::uint8_t {
  other,
  blank,
  symbol,
  letter,
  digit
};  // words are made of letters and digits

constexpr std::array<Class, 256> makeClasses() {
  std::array<Class, 256> classes{};
  for (std::size_t c = 0; c < classes.size(); ++c) {
    const bool ascii = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    // Every byte of a character outside ASCII counts as a letter.
    if (ascii || c >= 0x80) classes[c] = Class::letter;
    if (c >= '0' && c <= '9') classes[c] = Class::digit;
  }
  const auto set = [&](std::string_view characters, Class value) {
    for (const char c : characters) classes[static_cast<unsigned char>(c)] = value;
  };
  set(" \t\r\n", Class::blank);
  set("=<>+-*/\\^&(),.!;", Class::symbol);
  return classes;
}
constexpr std::array<Class, 256> classes = makeClasses();

Class classOf(char c) {
  return classes[static_cast<unsigned char>(c)];
}

/// Position, from `at` on, of the first character that is not of the kind `belongs`.
template <typename Belongs>
std::size_t skip(std::string_view sql, std::size_t at, Belongs&& belongs) {
  while (at < sql.size() && belongs(classOf(sql[at]))) ++at;
  return at;
}

/// The text of a literal without its quotes; a doubled quote inside becomes a single one.
std::string unquoted(std::string_view literal) {
  const char quote = literal.front();
  const std::string_view inside = literal.substr(1, literal.size() - 2);
  std::string text;
  std::size_t from = 0;
  for (std::size_t at = inside.find(quote); at != std::string_view::npos; at = inside.find(quote, from)) {
    text.append(inside, from, at + 1 - from);
    from = at + 2;
  }
  text.append(inside, from);
  return text;
}

/// The value of a digit of base 16; none for another character.
std::optional<unsigned> hexDigit(char c) {
  const auto letter = static_cast<char>(c | 0x20);
  if (c >= '0' && c <= '9') return c - '0';
  if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
  return std::nullopt;
}

Bytes bytesValue(std::string_view text) {
  Bytes out;
  for (std::size_t i = 2; i + 1 < text.size(); i += 2)
    out.data += static_cast<char>(*hexDigit(text[i]) << 4U | *hexDigit(text[i + 1]));
  return out;
}

Value numberValue(const Token& token) {
  const char* const first = token.text.data();
  const char* const last = first + token.text.size();
  if (token.text.starts_with('&')) {
    std::string_view digits = token.text;
    return *takeBasedNumber(digits);
  }
  if (token.kind == TokenKind::integer) {
    std::int32_t whole = 0;
    if (std::from_chars(first, last, whole).ec == std::errc()) return whole;
  }
  double real = 0;
  // from_chars reads "1.", too, which is a number of the language.
  if (std::from_chars(first, last, real).ec == std::errc()) return real;
  if (token.text.find('-') != std::string_view::npos) return 0.0;  // too small to differ from 0
  failSyntax(token.text, 0, "the number is too large");
}

}  // namespace

void Lexer::next(Token& token) {
  state_.at = skip(sql_, state_.at, [](Class c) { return c == Class::blank; });
  token.position = state_.at;
  token.shaping = false;
  token.symbol = 0;
  if (state_.at == sql_.size()) {
    token.kind = TokenKind::end;
    token.text = {};
    return;
  }
  const char c = sql_[state_.at];
  const bool afterTop = state_.afterTop;
  const bool orderItem = state_.orderItem;
  state_.afterTop = state_.orderItem = false;
  switch (classOf(c)) {
    case Class::letter:
      token.kind = TokenKind::word;
      state_.at = skip(sql_, state_.at + 1, [](Class part) { return part >= Class::letter; });
      noteWord(sql_.substr(token.position, state_.at - token.position));
      break;
    case Class::digit:
      if (hexBytes()) {
        token.kind = TokenKind::bytes;
        break;
      }
      number(token);
      token.shaping = token.kind == TokenKind::integer && (afterTop || orderItem);
      break;
    case Class::symbol:
      if (c == '&' && basedNumber()) {
        token.kind = TokenKind::integer;
      } else if (c == '.' && state_.at + 1 < sql_.size() && classOf(sql_[state_.at + 1]) == Class::digit) {
        number(token);
      } else {
        symbol(token);
      }
      break;
    default:
      if (c == '\'' || c == '"') {
        enclosed(token, TokenKind::text, c);
      } else if (c == '#') {
        enclosed(token, TokenKind::date, '#');
      } else if (c == '[') {
        enclosed(token, TokenKind::bracketed, ']');
      } else {
        failSyntax(sql_, state_.at, "this character has no meaning here");
      }
  }
  token.text = sql_.substr(token.position, state_.at - token.position);
  // Left$ is Left: the sign says that the result is a text.
  if (token.kind == TokenKind::word && state_.at < sql_.size() && sql_[state_.at] == '$') ++state_.at;
}

bool Lexer::parts(char c) {
  const Class kind = classOf(c);
  return kind == Class::blank || (kind == Class::symbol && c != '<' && c != '>' && c != '.');
}

void Lexer::noteWord(std::string_view word) {
  if (word.size() > 5) return;
  if (isWord(word, "top")) {
    state_.afterTop = true;
  } else if (isWord(word, "order")) {
    state_.orderDepth = state_.depth;
  } else if (isWord(word, "by")) {
    state_.orderItem = state_.orderDepth == state_.depth;
  }
}

void Lexer::number(Token& token) {
  const auto digits = [this] {
    state_.at = skip(sql_, state_.at, [](Class c) { return c == Class::digit; });
  };
  token.kind = TokenKind::integer;
  digits();
  if (state_.at < sql_.size() && sql_[state_.at] == '.') {
    token.kind = TokenKind::real;
    ++state_.at;
    digits();
  }
  // It is an exponent only when digits follow: "1eqv" is a number and a word, like "1and".
  if (state_.at < sql_.size() && (sql_[state_.at] | 0x20) == 'e') {
    std::size_t exponent = state_.at + 1;
    if (exponent < sql_.size() && (sql_[exponent] == '+' || sql_[exponent] == '-')) ++exponent;
    if (exponent < sql_.size() && classOf(sql_[exponent]) == Class::digit) {
      token.kind = TokenKind::real;
      state_.at = exponent;
      digits();
    }
  }
}

/// Passes over 0x and pairs of digits of base 16.
bool Lexer::hexBytes() {
  const std::string_view rest = sql_.substr(state_.at);
  if (rest.size() < 2 || rest[0] != '0' || (rest[1] | 0x20) != 'x') return false;
  std::size_t end = 2;
  while (end < rest.size() && hexDigit(rest[end])) ++end;
  if (end % 2 != 0) failSyntax(sql_, state_.at, "bytes have two digits each");
  state_.at += end;
  return true;
}

/// Whether a value can begin here, behind an operator or a word that one follows: there & joins nothing.
bool Lexer::valueExpected() const {
  constexpr std::string_view words[] = {"select", "distinct", "distinctrow", "all",     "where",  "having",
                                        "by",     "and",      "or",          "xor",     "eqv",    "imp",
                                        "not",    "mod",      "like",        "between", "default"};
  const std::size_t last = sql_.substr(0, state_.at).find_last_not_of(" \t\r\n");
  if (last == std::string_view::npos) return true;
  if (classOf(sql_[last]) == Class::symbol) return sql_[last] != ')';
  std::size_t first = last + 1;
  while (first > 0 && classOf(sql_[first - 1]) >= Class::letter) --first;
  if (first > 0 && (sql_[first - 1] == '.' || sql_[first - 1] == '!')) return false;  // a field
  first = skip(sql_, first, [](Class c) { return c == Class::digit; });
  const std::string_view word = sql_.substr(first, last + 1 - std::min(first, last + 1));
  return std::any_of(std::begin(words), std::end(words), [&](auto known) { return isWord(word, known); });
}

/// Passes over &HFF or &O17.
bool Lexer::basedNumber() {
  std::string_view rest = sql_.substr(state_.at);
  if (rest.size() < 3 || ((rest[1] | 0x20) != 'h' && (rest[1] | 0x20) != 'o') || !valueExpected())
    return false;
  const auto digit = [&](char c) {
    return (c >= '0' && c <= '7') || ((rest[1] | 0x20) == 'h' && hexDigit(c));
  };
  std::size_t end = 2;
  while (end < rest.size() && digit(rest[end])) ++end;
  if (end == 2) return false;
  state_.at += end;
  return true;
}

void Lexer::enclosed(Token& token, TokenKind kind, char close) {
  token.kind = kind;
  std::size_t end = state_.at + 1;
  for (;; end += 2) {
    end = sql_.find(close, end);
    if (end == std::string_view::npos) {
      failSyntax(sql_, state_.at,
                 kind == TokenKind::text   ? "the text has no closing quote"
                 : kind == TokenKind::date ? "the date has no closing number sign"
                                           : "the name has no closing bracket");
    }
    const bool doubled = kind == TokenKind::text && end + 1 < sql_.size() && sql_[end + 1] == close;
    if (!doubled) break;
  }
  if (kind == TokenKind::bracketed) {
    const std::string_view name = sql_.substr(state_.at + 1, end - state_.at - 1);
    bool valid = !name.empty();
    for (const char c : name) valid = valid && static_cast<unsigned char>(c) >= 0x20 && c != '[';
    if (!valid) failSyntax(sql_, state_.at, "this is no name");
  }
  state_.at = end + 1;
}

void Lexer::symbol(Token& token) {
  token.kind = TokenKind::symbol;
  token.symbol = sql_[state_.at++];
  const char second = state_.at < sql_.size() ? sql_[state_.at] : '\0';
  switch (token.symbol) {
    case '(':
      ++state_.depth;
      break;
    case ')':
      if (--state_.depth < state_.orderDepth) state_.orderDepth = -1;
      break;
    case ',':
      state_.orderItem = state_.orderDepth == state_.depth;
      break;
    case '<':
      if (second == '>' || second == '=') {
        token.symbol = second == '>' ? notEqual : lessOrEqual;
        ++state_.at;
      }
      break;
    case '>':
      if (second == '=') {
        token.symbol = greaterOrEqual;
        ++state_.at;
      }
      break;
    default:
      break;
  }
}

Value literalValue(const Token& token, const Clock* clock) {
  switch (token.kind) {
    case TokenKind::integer:
    case TokenKind::real:
      return numberValue(token);
    case TokenKind::text:
      return unquoted(token.text);
    case TokenKind::bytes:
      return bytesValue(token.text);
    case TokenKind::date: {
      const auto moment = parseDateLiteral(token.text.substr(1, token.text.size() - 2), clock);
      if (!moment) failSyntax(token.text, 0, "this is no date");
      return *moment;
    }
    default:
      throw Error(err::internalError, "The token is no literal");
  }
}

void failSyntax(std::string_view sql, std::size_t position, const std::string& what) {
  constexpr std::size_t shown = 60;
  std::string_view rest = sql.substr(position);
  std::string place = "its end";
  if (!rest.empty()) {
    const bool cut = rest.size() > shown;
    if (cut) {
      rest = rest.substr(0, shown);
      while (!isUtf8(rest) && rest.size() > shown - 4) rest.remove_suffix(1);
    }
    place = '"' + std::string(rest) + (cut ? "...\"" : "\"");
  }
  throw Error(err::dbSyntax, "Syntax error in the statement at " + place + ": " + what + ".");
}

}  // namespace voxa::dialect
