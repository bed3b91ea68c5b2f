#include "engines/language/parser.h"

#include <algorithm>
#include <iterator>

#include "engines/language/type_words.h"
#include "engines/language/words.h"
#include "platform/text.h"

namespace voxa::dialect {

using syntax::Source;
using syntax::Statement;

namespace {

/// Words that name a table or field only in brackets.
constexpr std::string_view reservedWords[] = {
    "all",    "and",  "as",    "between", "by",    "delete", "distinct", "distinctrow", "eqv",   "exists",
    "false",  "from", "group", "having",  "imp",   "in",     "inner",    "insert",      "into",  "is",
    "join",   "left", "like",  "mod",     "not",   "null",   "on",       "or",          "order", "right",
    "select", "set",  "top",   "true",    "union", "update", "values",   "where",       "with",  "xor"};

bool isReserved(std::string_view word) {
  return std::any_of(std::begin(reservedWords), std::end(reservedWords),
                     [&](std::string_view reserved) { return isWord(word, reserved); });
}

}  // namespace

Parser::Parser(std::string_view sql) : sql_(sql) {
  tokens_.reserve(sql.size() / 4 + 2);
  literals_.reserve(tokens_.capacity());
  Lexer lexer(sql);
  std::size_t literals = 0;
  do {
    lexer.next(tokens_.emplace_back());
    literals_.push_back(literals);
    if (tokens_.back().isLiteral()) ++literals;
  } while (tokens_.back().kind != TokenKind::end);
}

const Token& Parser::following() const {
  return tokens_[std::min(at_ + 1, tokens_.size() - 1)];
}

bool Parser::atWord(std::string_view keyword) const {
  return current().kind == TokenKind::word && isWord(current().text, keyword);
}

bool Parser::atSymbol(char symbol) const {
  return current().symbol == symbol;
}

bool Parser::skipWord(std::string_view keyword) {
  const bool found = atWord(keyword);
  if (found) advance();
  return found;
}

bool Parser::skipSymbol(char symbol) {
  const bool found = atSymbol(symbol);
  if (found) advance();
  return found;
}

void Parser::expectWord(std::string_view keyword, const char* what) {
  if (!skipWord(keyword)) fail(std::string(what) + " is missing");
}

void Parser::expectSymbol(char symbol, const char* what) {
  if (!skipSymbol(symbol)) fail(std::string(what) + " is missing");
}

bool Parser::atName() const {
  return current().kind == TokenKind::bracketed ||
         (current().kind == TokenKind::word && !isReserved(current().text));
}

std::string_view Parser::name(const char* what) {
  if (!atName()) fail(std::string(what) + " is missing");
  const Token& token = current();
  advance();
  return token.kind == TokenKind::bracketed ? token.text.substr(1, token.text.size() - 2) : token.text;
}

std::size_t Parser::end() const {
  if (at_ == 0) return 0;
  return tokens_[at_ - 1].position + tokens_[at_ - 1].text.size();
}

void Parser::fail(const std::string& what) const {
  failSyntax(sql_, current().position, what);
}

Statement Parser::statement() {
  Statement out;
  if (skipWord("parameters")) parameters(out.parameters);
  if (atWord("select")) {
    out.select = select();
  } else if (skipWord("insert")) {
    insertInto(out);
  } else if (skipWord("update")) {
    update(out);
  } else if (skipWord("delete")) {
    remove(out);
  } else {
    fail("a statement begins with SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER or DROP");
  }
  if (skipWord("with")) {  // which is about rights that files of this system do not have
    expectWord("owneraccess", "OWNERACCESS");
    expectWord("option", "OPTION");
  }
  const bool ended = skipSymbol(';');
  if (current().kind != TokenKind::end) {
    if (ended) fail("only one statement can be run at a time");
    fail("an operator or the end of the statement is missing");
  }
  return out;
}

void Parser::parameters(std::vector<FieldDef>& out) {
  do {
    FieldDef& parameter = out.emplace_back();
    parameter.name = name("the name of a parameter");
    const TypeWord* type = current().kind == TokenKind::word ? typeOfWord(current().text) : nullptr;
    if (type == nullptr) fail("a parameter needs a type");
    parameter.type = type->type;
    advance();
    if (skipSymbol('(')) {
      if (current().kind != TokenKind::integer) fail("the size of the parameter is missing");
      advance();
      expectSymbol(')', "a closing parenthesis");
    }
  } while (skipSymbol(','));
  expectSymbol(';', "the semicolon behind the parameters");
}

syntax::SelectPtr Parser::select() {
  syntax::SelectPtr out = selectMember();
  while (skipWord("union")) {
    const bool all = skipWord("all");
    const bool enclosed = skipSymbol('(');
    out->unions.push_back({all, selectMember()});
    if (enclosed) expectSymbol(')', "a closing parenthesis");
    if (!out->unions.back().select->into.empty()) fail("only the first of several queries makes a table");
  }
  if (skipWord("order")) {
    expectWord("by", "BY");
    do {
      syntax::OrderItem& item = out->orderBy.emplace_back();
      item.expression = expression();
      item.descending = skipWord("desc");
      if (!item.descending) skipWord("asc");
    } while (skipSymbol(','));
  }
  return out;
}

syntax::SelectPtr Parser::selectMember() {
  auto out = std::make_unique<syntax::Select>();
  out->position = current().position;
  expectWord("select", "SELECT");
  if (skipWord("distinct")) {
    out->distinct = true;
  } else if (skipWord("distinctrow")) {
    out->distinctRow = true;
  } else {
    skipWord("all");
  }
  if (skipWord("top")) {
    const bool whole =
        current().shaping && std::holds_alternative<std::int32_t>(literalValue(current(), nullptr).data());
    if (!whole) fail("TOP needs a whole number");
    out->top = current().text;
    advance();
    out->percent = skipWord("percent");
  }
  do {
    selectItem(out->items);
  } while (skipSymbol(','));
  if (skipWord("into")) out->into = name("the name of the new table");
  if (skipWord("from")) out->from = sources();
  if (skipWord("where")) out->where = expression();
  if (skipWord("group")) {
    expectWord("by", "BY");
    out->groupBy = expressions();
  }
  if (skipWord("having")) out->having = expression();
  return out;
}

void Parser::selectItem(std::vector<syntax::SelectItem>& out) {
  syntax::SelectItem& item = out.emplace_back();
  item.position = current().position;
  if (skipSymbol('*')) {
    item.star = true;
    return;
  }
  if (atName() && (following().symbol == '.' || following().symbol == '!') && at_ + 2 < tokens_.size() &&
      tokens_[at_ + 2].symbol == '*') {
    item.star = true;
    item.starQualifier = name("a table");
    at_ += 2;
    return;
  }
  item.expression = expression();
  item.expressionEnd = end();
  if (skipWord("as")) item.alias = name("the name behind AS");
  item.end = end();
}

std::vector<Source> Parser::sources() {
  std::vector<Source> out;
  do {
    out.push_back(source());
  } while (skipSymbol(','));
  return out;
}

Source Parser::source() {
  Source left = joinOperand();
  for (;;) {
    Source join;
    join.position = current().position;
    if (skipWord("inner")) {
      join.join = Source::Join::inner;
    } else if (skipWord("left")) {
      join.join = Source::Join::left;
    } else if (skipWord("right")) {
      join.join = Source::Join::right;
    } else {
      return left;
    }
    if (join.join != Source::Join::inner) skipWord("outer");
    expectWord("join", "JOIN");
    join.left = std::make_unique<Source>(std::move(left));
    join.right = std::make_unique<Source>(joinOperand());
    expectWord("on", "ON");
    join.on = expression();
    left = std::move(join);
  }
}

Source Parser::joinOperand() {
  if (!atSymbol('(')) return table();
  const Nesting level(*this);
  const std::size_t position = current().position;
  advance();
  Source inner;
  const bool query = atWord("select");
  if (query) {
    inner.query = select();
  } else {
    inner = source();
  }
  expectSymbol(')', "a closing parenthesis");
  if (query) {
    inner.position = position;
    if (skipWord("as") || atName()) inner.alias = name("the name behind AS");
  }
  return inner;
}

Source Parser::table() {
  Source out;
  out.position = current().position;
  out.table = out.alias = name("the name of a table");
  if (skipWord("as") || atName()) out.alias = name("the name behind AS");
  return out;
}

void Parser::insertInto(Statement& out) {
  out.kind = Statement::Kind::insert;
  expectWord("into", "INTO");
  out.target.position = current().position;
  out.target.table = out.target.alias = name("the name of a table");
  if (skipSymbol('(')) {
    do {
      out.fields.push_back(fieldName());
    } while (skipSymbol(','));
    expectSymbol(')', "a closing parenthesis");
  }
  if (atWord("select")) {
    out.select = select();
    return;
  }
  expectWord("values", "VALUES");
  expectSymbol('(', "an opening parenthesis");
  out.values = expressions();
  expectSymbol(')', "a closing parenthesis");
  if (atSymbol(',')) fail("only one row can be inserted at a time");
}

void Parser::update(Statement& out) {
  out.kind = Statement::Kind::update;
  out.from = sources();
  expectWord("set", "SET");
  do {
    out.fields.push_back(fieldName());
    expectSymbol('=', "the sign = behind a field");
    out.values.push_back(expression());
  } while (skipSymbol(','));
  if (skipWord("where")) out.where = expression();
}

void Parser::remove(Statement& out) {
  out.kind = Statement::Kind::remove;
  skipWord("distinctrow");
  if (!skipSymbol('*') && !atWord("from")) {
    out.rowsOf = name("FROM");
    if (!skipSymbol('.') && !skipSymbol('!')) fail("what to delete is given as *, or as a table and .*");
    expectSymbol('*', "the sign *");
  }
  expectWord("from", "FROM");
  out.from = sources();
  if (skipWord("where")) out.where = expression();
}

syntax::FieldName Parser::fieldName() {
  syntax::FieldName out;
  out.position = current().position;
  out.name = name("the name of a field");
  if (skipSymbol('.') || skipSymbol('!')) {
    out.qualifier = out.name;
    out.name = name("the name of a field");
  }
  return out;
}

}  // namespace voxa::dialect
