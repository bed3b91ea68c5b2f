#include "platform/database/dialect/dialect.h"
#include "platform/database/dialect/lexer.h"

namespace voxa::dialect {

void scan(std::string_view sql, Scanned& out) {
  out.key.clear();
  out.literals.clear();
  Lexer lexer(sql);
  Token token;
  std::size_t copied = 0;
  for (lexer.next(token); token.kind != TokenKind::end; lexer.next(token)) {
    if (!token.isLiteral()) continue;
    out.key.append(sql, copied, token.position - copied);
    copied = token.position + token.text.size();
    const Value& literal = out.literals.emplace_back(literalValue(token));
    // The mark is the number of the type: control characters have no other place in a statement.
    out.key += static_cast<char>(literal.data().index());
  }
  out.key.append(sql, copied);
}

}  // namespace voxa::dialect
