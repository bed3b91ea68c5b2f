#include "engines/language/dialect.h"
#include "engines/language/lexer.h"

namespace voxa::dialect {

namespace {

// The mark of a literal in the key is the number of its type. That is a control character, which cannot occur
// elsewhere in a statement.
char markOf(const Value& literal) {
  return static_cast<char>(literal.data().index());
}

/// Statements of one kind follow each other. So this takes the literals from `sql` for as long as the text
/// around them is the same as in the statement scanned before. Returns the lexer behind the last literal that
/// it took.
Lexer repeat(std::string_view sql, Scanned& out, const Clock* clock) {
  Lexer lexer(sql);
  std::size_t same = 0;
  std::size_t keyed = 0;
  for (Token token; same < out.stops.size(); ++same) {
    const Scanned::Stop& stop = out.stops[same];
    const std::size_t at = lexer.state().at;
    const auto between = std::string_view(out.key).substr(keyed, stop.mark - keyed);
    if (!sql.substr(at).starts_with(between)) break;
    Lexer ahead(sql, stop.state, at + between.size());
    ahead.next(token);
    if (!token.isLiteral() || token.position != at + between.size()) break;
    Value literal = literalValue(token, clock);
    if (markOf(literal) != out.key[stop.mark]) break;
    out.literals.push_back(std::move(literal));
    lexer = ahead;
    keyed = stop.mark + 1;
  }
  out.key.resize(keyed);
  out.stops.resize(same);
  return lexer;
}

}  // namespace

void scan(std::string_view sql, Scanned& out, const Clock* clock) {
  out.literals.clear();
  Lexer lexer = repeat(sql, out, clock);
  LexerState before = lexer.state();
  std::size_t copied = before.at;
  bool repeatable = true;
  Token token;
  for (lexer.next(token); token.kind != TokenKind::end; lexer.next(token)) {
    if (token.isLiteral()) {
      const Value& literal = out.literals.emplace_back(literalValue(token, clock));
      out.key.append(sql, copied, token.position - copied);
      copied = token.position + token.text.size();
      repeatable = repeatable && token.position != 0 && Lexer::parts(sql[token.position - 1]);
      if (repeatable) out.stops.push_back({out.key.size(), before});
      out.key += markOf(literal);
    }
    before = lexer.state();
  }
  out.key.append(sql, copied);
}

}  // namespace voxa::dialect
