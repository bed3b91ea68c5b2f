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

enum class TokenKind : std::uint8_t { end, word, bracketed, integer, real, text, date, symbol };

/// Operators of two characters, as the symbol of a token; all others are their own character.
inline constexpr char notEqual = 'n';
inline constexpr char lessOrEqual = 'l';
inline constexpr char greaterOrEqual = 'g';

struct Token {
  TokenKind kind = TokenKind::end;
  char symbol = 0;  ///< of a symbol
  /// A number that shapes the statement rather than being a value in it, and so is no literal: the count of
  /// TOP, the position of a column in ORDER BY.
  bool shaping = false;
  std::size_t position = 0;  ///< of its first character in the statement
  std::string_view text;     ///< as written, quotes, brackets and number signs included

  [[nodiscard]] bool isLiteral() const {
    return kind >= TokenKind::integer && kind <= TokenKind::date && !shaping;
  }
};

/// How far a statement has been cut, and what that says of its next token.
struct LexerState {
  std::size_t at = 0;
  int depth = 0;           ///< of parentheses
  int orderDepth = -1;     ///< at the last ORDER; -1 outside of an ordering
  bool afterTop = false;   ///< the word before was TOP
  bool orderItem = false;  ///< a new item of an ordering begins here
};

/// Cuts a statement into tokens. Allocates nothing.
class Lexer {
 public:
  explicit Lexer(std::string_view sql) : sql_(sql) {}
  /// From a character on at which a token begins, after tokens that left a lexer in that state.
  Lexer(std::string_view sql, const LexerState& state, std::size_t at) : sql_(sql), state_(state) {
    state_.at = at;
  }
  [[nodiscard]] const LexerState& state() const { return state_; }
  /// Whether a token that ends with this character, or blanks, end there whatever follows.
  [[nodiscard]] static bool parts(char c);
  /// The next token, `end` behind the last; 3075 for a character, quote or bracket that makes no token.
  void next(Token& token);

 private:
  void number(Token& token);
  void enclosed(Token& token, TokenKind kind, char close);
  void symbol(Token& token);
  void noteWord(std::string_view word);

  std::string_view sql_;
  LexerState state_;
};

/// The value of a literal token. 3075 for a date that is none and a number beyond all range. clock: as
/// parseDateLiteral takes it.
[[nodiscard]] Value literalValue(const Token& token, const Clock* clock);

/// Raises 3075: "Syntax error in the statement at "<the text from there on>": <what>."
[[noreturn]] void failSyntax(std::string_view sql, std::size_t position, const std::string& what);

}  // namespace voxa::dialect
