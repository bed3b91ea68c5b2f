#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace voxa {
class Clock;
}

namespace voxa::dialect {

enum class TokenKind : std::uint8_t { end, word, bracketed, integer, real, text, date, bytes, symbol };

/// The symbols of tokens with two characters. Every other operator is its own character.
inline constexpr char notEqual = 'n';
inline constexpr char lessOrEqual = 'l';
inline constexpr char greaterOrEqual = 'g';

struct Token {
  TokenKind kind = TokenKind::end;
  char symbol = 0;  ///< of a symbol token
  /// A number that is part of the statement's shape, and so no literal: the count of TOP, the position of a
  /// column in ORDER BY.
  bool shaping = false;
  std::size_t position = 0;  ///< place of its first character in the statement
  std::string_view text;     ///< as written, with quotes, brackets and number signs

  [[nodiscard]] bool isLiteral() const {
    return kind >= TokenKind::integer && kind <= TokenKind::bytes && !shaping;
  }
};

/// How far a statement was cut into tokens, and what that tells about the next token.
struct LexerState {
  std::size_t at = 0;
  int depth = 0;           ///< open parentheses
  int orderDepth = -1;     ///< depth at the last ORDER; -1 outside of an ordering
  bool afterTop = false;   ///< the word TOP came just before
  bool orderItem = false;  ///< a new item of an ordering begins with the next token
};

/// Cuts a statement into tokens. Allocates no memory.
class Lexer {
 public:
  explicit Lexer(std::string_view sql) : sql_(sql) {}
  /// Continues at the character `at`, where a token begins. state: that of a lexer behind the tokens before
  /// it.
  Lexer(std::string_view sql, const LexerState& state, std::size_t at) : sql_(sql), state_(state) {
    state_.at = at;
  }
  [[nodiscard]] const LexerState& state() const { return state_; }
  /// Whether a token that ends with this character, or blanks, end there no matter what follows.
  [[nodiscard]] static bool parts(char c);
  /// Reads the next token, `end` behind the last one. 3075 for a character, quote or bracket that makes no
  /// token.
  void next(Token& token);

 private:
  void number(Token& token);
  bool hexBytes();
  [[nodiscard]] bool valueExpected() const;
  bool basedNumber();
  void enclosed(Token& token, TokenKind kind, char close);
  void symbol(Token& token);
  void noteWord(std::string_view word);

  std::string_view sql_;
  LexerState state_;
};

/// The value of a literal token. 3075 for a date that does not exist and for a number beyond all range.
/// clock: see parseDateLiteral.
[[nodiscard]] Value literalValue(const Token& token, const Clock* clock);

/// Raises 3075 with "Syntax error in the statement at "<the text from there on>": <what>."
[[noreturn]] void failSyntax(std::string_view sql, std::size_t position, const std::string& what);

}  // namespace voxa::dialect
