#include <algorithm>
#include <optional>
#include <utility>

#include "engines/language/parser.h"
#include "engines/language/words.h"

namespace voxa::dialect {

using syntax::Expression;
using syntax::Operator;

namespace {

/// Greatest nesting of the text: parentheses, signs, calls within one another.
constexpr int greatestNesting = 100;
/// Greatest height of the tree, which grows with each operator. SQLite allows a thousand levels, and what is
/// written for it may have more of them than this tree.
constexpr int greatestHeight = 900;

struct BinaryOperator {
  std::string_view word;  ///< "" for a symbol
  std::size_t level;
  char symbol;
  Operator op;
};
/// Grouped by level, those that bind loosest first. NOT and the comparisons stand between AND and &.
constexpr BinaryOperator binaryOperators[] = {
    {"imp", 0, 0, Operator::implies},     {"eqv", 1, 0, Operator::equivalent},
    {"xor", 2, 0, Operator::exclusiveOr}, {"or", 3, 0, Operator::logicalOr},
    {"and", 4, 0, Operator::logicalAnd},  {"", 5, '&', Operator::concatenate},
    {"", 6, '+', Operator::add},          {"", 6, '-', Operator::subtract},
    {"mod", 7, 0, Operator::modulo},      {"", 8, '\\', Operator::divideWhole},
    {"", 9, '*', Operator::multiply},     {"", 9, '/', Operator::divide}};
constexpr std::size_t loosestLogic = 0;
constexpr std::size_t tightestLogic = 4;
constexpr std::size_t loosestArithmetic = 5;
constexpr std::size_t tightestArithmetic = 9;

std::optional<Operator> comparisonOperator(char symbol) {
  switch (symbol) {
    case '=':
      return Operator::equal;
    case notEqual:
      return Operator::notEqual;
    case '<':
      return Operator::less;
    case lessOrEqual:
      return Operator::lessOrEqual;
    case '>':
      return Operator::greater;
    case greaterOrEqual:
      return Operator::greaterOrEqual;
    default:
      return std::nullopt;
  }
}

/// Whether a rule that is only this expression means a comparison with the field.
bool isPlainValue(const Expression& e) {
  return e.kind == Expression::Kind::literal || e.kind == Expression::Kind::word ||
         (e.kind == Expression::Kind::negative && isPlainValue(*e.arguments[0]));
}

DataType typeOf(TokenKind kind) {
  switch (kind) {
    case TokenKind::integer:
      return DataType::Long;
    case TokenKind::real:
      return DataType::Double;
    case TokenKind::date:
      return DataType::Date;
    case TokenKind::bytes:
      return DataType::LongBinary;
    default:
      return DataType::Text;
  }
}

}  // namespace

Parser::Nesting::Nesting(Parser& parser) : parser_(parser) {
  if (parser.nesting_ == greatestNesting) parser.fail("the statement is nested too deeply");
  ++parser.nesting_;
}

syntax::ExpressionPtr Parser::rule() {
  rule_ = impliesField_ = true;
  ExpressionPtr out = expression();
  if (current().kind != TokenKind::end) fail("an operator or the end of the rule is missing");
  return out;
}

syntax::ExpressionPtr Parser::make(Expression::Kind kind, std::size_t position) const {
  auto out = std::make_unique<Expression>();
  out->kind = kind;
  out->position = position;
  return out;
}

void Parser::adopt(Expression& parent, ExpressionPtr child) const {
  parent.height = std::max(parent.height, child->height + 1);
  parent.arguments.push_back(std::move(child));
  if (parent.height > greatestHeight) failSyntax(sql_, parent.position, "the statement is nested too deeply");
}

syntax::ExpressionPtr Parser::binary(Operator op, std::size_t position, ExpressionPtr left,
                                     ExpressionPtr right) const {
  auto out = make(Expression::Kind::binary, position);
  out->op = op;
  adopt(*out, std::move(left));
  adopt(*out, std::move(right));
  return out;
}

syntax::ExpressionPtr Parser::expression() {
  const Nesting level(*this);
  return chain(loosestLogic);
}

syntax::ExpressionPtr Parser::subquery(Expression::Kind kind, std::size_t position) {
  if (rule_) failSyntax(sql_, position, "a validation rule holds no query");
  const Nesting level(*this);
  auto out = make(kind, position);
  out->select = select();
  return out;
}

std::vector<syntax::ExpressionPtr> Parser::expressions() {
  // In a list even a rule's value stands for itself and is not compared with the field.
  const bool implies = std::exchange(impliesField_, false);
  std::vector<ExpressionPtr> out;
  do {
    out.push_back(expression());
  } while (skipSymbol(','));
  impliesField_ = implies;
  return out;
}

syntax::ExpressionPtr Parser::chain(std::size_t level) {
  const auto operand = [&] {
    if (level == tightestLogic) return logicalNot();
    if (level == tightestArithmetic) return negative();
    return chain(level + 1);
  };
  ExpressionPtr left = operand();
  bool linked = false;
  for (;;) {
    const auto* found =
        std::find_if(std::begin(binaryOperators), std::end(binaryOperators), [&](const auto& o) {
          return o.level == level && (o.symbol != 0 ? atSymbol(o.symbol) : atWord(o.word));
        });
    if (found == std::end(binaryOperators)) return left;
    const std::size_t position = current().position;
    advance();
    // What OR or AND links many times over is one node, however many they are.
    const bool links = found->op == Operator::logicalAnd || found->op == Operator::logicalOr;
    if (links && linked) {
      adopt(*left, operand());
    } else {
      left = binary(found->op, position, std::move(left), operand());
      linked = links;
    }
  }
}

syntax::ExpressionPtr Parser::logicalNot() {
  if (!atWord("not")) return condition();
  const Nesting level(*this);
  auto out = make(Expression::Kind::logicalNot, current().position);
  advance();
  adopt(*out, logicalNot());
  return out;
}

syntax::ExpressionPtr Parser::condition() {
  const auto subject = [this] { return make(Expression::Kind::subject, current().position); };
  const bool operandMissing = comparisonOperator(current().symbol).has_value() || atWord("in") ||
                              atWord("between") || atWord("like") || atWord("is");
  ExpressionPtr left = impliesField_ && operandMissing ? subject() : chain(loosestArithmetic);
  const std::size_t begin = left->position;
  bool compared = false;
  for (;;) {
    const std::size_t before = at_;
    left = comparison(std::move(left));
    if (at_ == before) break;
    compared = true;
  }
  if (impliesField_ && !compared && isPlainValue(*left)) {
    left = binary(Operator::equal, begin, subject(), std::move(left));
  }
  return left;
}

/// Reads one comparison of `left` with what follows. Returns `left` itself when none follows.
syntax::ExpressionPtr Parser::comparison(ExpressionPtr left) {
  const std::size_t position = current().position;
  if (const auto op = comparisonOperator(current().symbol)) {
    advance();
    const bool all = atWord("all");
    if ((all || atWord("any") || atWord("some")) && following().symbol == '(') {
      advance();
      advance();
      ExpressionPtr out = subquery(Expression::Kind::quantified, position);
      out->op = *op;
      out->negated = all;
      adopt(*out, std::move(left));
      expectSymbol(')', "a closing parenthesis");
      return out;
    }
    return binary(*op, position, std::move(left), chain(loosestArithmetic));
  }
  if (current().kind != TokenKind::word) return left;
  if (skipWord("is")) {
    auto out = make(Expression::Kind::isNull, position);
    out->negated = skipWord("not");
    expectWord("null", "NULL");
    adopt(*out, std::move(left));
    return out;
  }
  const bool negated = atWord("not") && following().kind == TokenKind::word &&
                       (isWord(following().text, "in") || isWord(following().text, "between") ||
                        isWord(following().text, "like"));
  if (negated) advance();
  ExpressionPtr out;
  if (skipWord("like")) {
    out = binary(Operator::like, position, std::move(left), chain(loosestArithmetic));
  } else if (skipWord("between")) {
    out = make(Expression::Kind::between, position);
    adopt(*out, std::move(left));
    adopt(*out, chain(loosestArithmetic));
    expectWord("and", "AND");
    adopt(*out, chain(loosestArithmetic));
  } else if (skipWord("in")) {
    out = in(std::move(left));
  } else {
    return left;
  }
  out->negated = negated;
  return out;
}

syntax::ExpressionPtr Parser::in(ExpressionPtr left) {
  const std::size_t position = current().position;
  expectSymbol('(', "the list behind IN");
  const bool query = atWord("select");
  ExpressionPtr out =
      query ? subquery(Expression::Kind::inSelect, position) : make(Expression::Kind::inList, position);
  adopt(*out, std::move(left));
  if (!query) {
    for (ExpressionPtr& value : expressions()) adopt(*out, std::move(value));
  }
  expectSymbol(')', "a closing parenthesis");
  return out;
}

syntax::ExpressionPtr Parser::negative() {
  if (!atSymbol('-') && !atSymbol('+')) return power();
  const Nesting level(*this);
  const bool minus = atSymbol('-');
  auto out = make(Expression::Kind::negative, current().position);
  advance();
  ExpressionPtr operand = negative();
  if (!minus) return operand;
  adopt(*out, std::move(operand));
  return out;
}

syntax::ExpressionPtr Parser::power() {
  ExpressionPtr left = primary();
  while (atSymbol('^')) {
    const std::size_t position = current().position;
    advance();
    // A sign may follow the operator: 2^-1.
    const bool sign = atSymbol('-') || atSymbol('+');
    left = binary(Operator::power, position, std::move(left), sign ? negative() : primary());
  }
  return left;
}

syntax::ExpressionPtr Parser::primary() {
  const Token& token = current();
  if (token.kind >= TokenKind::integer && token.kind <= TokenKind::bytes) return literal();
  if (skipSymbol('(')) {
    ExpressionPtr out = atWord("select") ? subquery(Expression::Kind::scalar, token.position) : expression();
    expectSymbol(')', "a closing parenthesis");
    return out;
  }
  if (atWord("not")) return logicalNot();
  return named();
}

syntax::ExpressionPtr Parser::literal() {
  const Token& token = current();
  auto out =
      make(token.shaping ? Expression::Kind::shapingNumber : Expression::Kind::literal, token.position);
  out->literal = literals_[at_];
  out->name = token.text;
  out->type = typeOf(token.kind);
  if (out->type == DataType::Long && !token.shaping &&
      std::holds_alternative<double>(literalValue(token, nullptr).data())) {
    out->type = DataType::Double;
  }
  advance();
  return out;
}

/// Reads what begins with a word that is no operator: a constant, function, field or parameter.
syntax::ExpressionPtr Parser::named() {
  const Token& token = current();
  const bool word = token.kind == TokenKind::word;
  if (word && following().symbol == '(') {
    if (skipWord("exists")) {
      expectSymbol('(', "an opening parenthesis");
      ExpressionPtr out = subquery(Expression::Kind::exists, token.position);
      expectSymbol(')', "a closing parenthesis");
      return out;
    }
    // LEFT and RIGHT are the only reserved words that are functions.
    if (atName() || atWord("left") || atWord("right")) return call(token);
  }
  // ON is a constant, too, where an operand is expected.
  const bool constant = word && (atWord("true") || atWord("false") || atWord("null") || atWord("on"));
  if (!constant && !atName()) fail("a value, a field or a function is missing");
  auto out = make(constant ? Expression::Kind::word : Expression::Kind::name, token.position);
  out->bracketed = !word;
  if (constant) {
    out->name = token.text;
    advance();
    return out;
  }
  out->name = name("a name");
  if (skipSymbol('.') || skipSymbol('!')) {
    out->qualifier = out->name;
    // After a table's name and a dot any word is a field.
    if (current().kind == TokenKind::word) {
      out->name = current().text;
      advance();
    } else {
      out->name = name("the name of a field");
    }
    if (atSymbol('.') || atSymbol('!')) fail("a name has two parts at most");
  }
  return out;
}

syntax::ExpressionPtr Parser::call(const Token& function) {
  auto out = make(Expression::Kind::call, function.position);
  out->name = function.text;
  advance();
  advance();
  if (skipSymbol('*')) {
    out->star = true;
  } else if (!atSymbol(')')) {
    for (ExpressionPtr& argument : expressions()) adopt(*out, std::move(argument));
  }
  expectSymbol(')', "a closing parenthesis");
  return out;
}

}  // namespace voxa::dialect
