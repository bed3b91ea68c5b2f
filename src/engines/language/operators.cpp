#include "engines/language/writer.h"

namespace voxa::dialect {

using syntax::Expression;
using syntax::Operator;

namespace {

const char* comparisonText(Operator op) {
  switch (op) {
    case Operator::equal:
      return " = ";
    case Operator::notEqual:
      return " <> ";
    case Operator::less:
      return " < ";
    case Operator::lessOrEqual:
      return " <= ";
    case Operator::greater:
      return " > ";
    case Operator::greaterOrEqual:
      return " >= ";
    default:
      return nullptr;
  }
}

}  // namespace

Term Writer::binary(const Expression& e, Scope& scope) {
  Term left = write(*e.arguments[0], scope);
  Term right = write(*e.arguments[1], scope);
  if (const char* compared = comparisonText(e.op)) {
    std::vector<Term> terms;
    terms.push_back(std::move(left));
    terms.push_back(std::move(right));
    makeComparable(terms);
    return logical(operand(terms[0]) + compared + operand(terms[1]));
  }
  switch (e.op) {
    case Operator::like:
      return logical((e.negated ? "NOT vx_like(" : "vx_like(") + text(left) + ", " + text(right) + ")");
    case Operator::logicalAnd:
    case Operator::logicalOr:
    case Operator::exclusiveOr:
    case Operator::equivalent:
    case Operator::implies:
      return logic(e.op, std::move(left), std::move(right));
    default:
      return arithmetic(e.op, std::move(left), std::move(right));
  }
}

Term Writer::logic(Operator op, Term left, Term right) {
  const char link = op == Operator::logicalAnd ? 'a' : 'o';
  const auto part = [this](Term term, bool goesOn) {
    convert(term, DataType::Boolean);
    return term.chain == 0 || term.chain == comparison || goesOn ? term.sql : "(" + term.sql + ")";
  };
  const bool goesOn = left.chain == link;
  const std::string l = part(std::move(left), goesOn);
  const std::string r = part(std::move(right), false);
  switch (op) {
    case Operator::logicalAnd:
      return logical(l + " AND " + r, link);
    case Operator::logicalOr:
      return logical(l + " OR " + r, link);
    case Operator::exclusiveOr:
      return logical("(NOT (" + l + ")) <> (NOT " + r + ")");
    case Operator::equivalent:
      return logical("(NOT (" + l + ")) = (NOT " + r + ")");
    default:
      return logical("(NOT (" + l + ")) OR " + r, 'o');
  }
}

Term Writer::arithmetic(Operator op, Term left, Term right) {
  const DataType type = isWholeType(left.type) && isWholeType(right.type) ? DataType::Long : DataType::Double;
  switch (op) {
    case Operator::add:
    case Operator::subtract:
      return add(op, std::move(left), std::move(right));
    case Operator::multiply:
      return {.sql = number(std::move(left)) + " * " + number(std::move(right)), .type = type, .chain = '?'};
    case Operator::divide:
      return {.sql = "1.0 * " + number(std::move(left)) + " / " + number(std::move(right)),
              .type = DataType::Double,
              .chain = '?'};
    case Operator::power:
      return {.sql = "vx_pow(" + number(std::move(left)) + ", " + number(std::move(right)) + ")",
              .type = DataType::Double};
    case Operator::concatenate: {
      // Null counts as no text.
      const auto part = [this](const Term& term) {
        const bool never = term.slot && slots_[*term.slot].literal;
        return never && isTextType(term.type) ? term.sql : "coalesce(" + text(term) + ", '')";
      };
      std::string l = left.chain == '&' ? std::move(left.sql) : part(left);
      return {.sql = std::move(l) + " || " + part(right), .type = DataType::Text, .chain = '&'};
    }
    default: {
      // Whole division and remainder round both operands first.
      const auto whole = [this](Term term) {
        if (isWholeType(term.type)) return operand(term);
        return "vx_store(" + number(std::move(term)) + ", " + typeCode(DataType::Long) + ", 0)";
      };
      return {
          .sql = whole(std::move(left)) + (op == Operator::modulo ? " % " : " / ") + whole(std::move(right)),
          .type = DataType::Long,
          .chain = '?'};
    }
  }
}

/// Texts are joined. A date and a number give a date so many days away. Two dates give their difference in
/// days.
Term Writer::add(Operator op, Term left, Term right) {
  const bool minus = op == Operator::subtract;
  const auto goesOn = [&](char link) { return left.chain == link && !left.condition; };
  const bool texts = isTextType(left.type) || isTextType(right.type);
  const auto textOrNull = [](const Term& term) { return !term.type || isTextType(term.type); };
  if (!minus && texts && textOrNull(left) && textOrNull(right)) {
    const std::string l = goesOn('|') ? left.sql : operand(left);
    return {.sql = l + " || " + operand(right), .type = DataType::Text, .chain = '|'};
  }
  DataType type = isWholeType(left.type) && isWholeType(right.type) ? DataType::Long : DataType::Double;
  const bool leftDate = left.type == DataType::Date;
  const bool rightDate = right.type == DataType::Date;
  if (leftDate != rightDate || (leftDate && !minus)) type = DataType::Date;
  const std::string l = goesOn('+') ? left.sql : number(std::move(left));
  return {.sql = l + (minus ? " - " : " + ") + number(std::move(right)), .type = type, .chain = '+'};
}

Term Writer::between(const Expression& e, Scope& scope) {
  std::vector<Term> terms;
  for (const auto& argument : e.arguments) terms.push_back(write(*argument, scope));
  makeComparable(terms);
  return logical(operand(terms[0]) + (e.negated ? " NOT BETWEEN " : " BETWEEN ") + operand(terms[1]) +
                 " AND " + operand(terms[2]));
}

Term Writer::inList(const Expression& e, Scope& scope) {
  std::vector<Term> terms;
  for (const auto& argument : e.arguments) terms.push_back(write(*argument, scope));
  // Of the values in a list only the left operand decides how texts compare.
  if (terms.size() == 2 && terms[0].field == nullptr) terms[1].field = nullptr;
  makeComparable(terms);
  std::string sql = operand(terms[0]) + (e.negated ? " NOT IN (" : " IN (");
  for (std::size_t i = 1; i < terms.size(); ++i) sql += (i > 1 ? ", " : "") + value(terms[i]);
  return logical(sql + ")");
}

}  // namespace voxa::dialect
