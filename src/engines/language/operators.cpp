#include <algorithm>

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

/// Unknown when what it would need to be decided compares with Null. No row at all: ALL is true, ANY false.
Term Writer::quantified(const Expression& e, Query query, Scope& scope) {
  std::vector<Term> terms;
  terms.push_back(write(*e.arguments[0], scope));
  terms.push_back({.sql = "c0", .type = query.items[0].type});
  makeComparable(terms);
  const std::string compared = operand(terms[0]) + comparisonText(e.op) + operand(terms[1]);
  const bool all = e.negated;
  return logical(std::string("(SELECT CASE WHEN ") + (all ? "min(" : "max(") + compared +
                     ") = " + (all ? "0 THEN 0" : "1 THEN 1") + " WHEN count(*) > count(" + compared +
                     ") THEN NULL ELSE " + (all ? "1" : "0") + " END FROM (" +
                     query.text({value(query.items[0])}, {"c0"}) + "))",
                 0);
}

Term Writer::binary(const Expression& e, Scope& scope) {
  if (e.op == Operator::logicalAnd || e.op == Operator::logicalOr) return linked(e, scope);
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
    case Operator::exclusiveOr:
    case Operator::equivalent:
    case Operator::implies:
      return logic(e.op, std::move(left), std::move(right));
    default:
      return arithmetic(e.op, std::move(left), std::move(right));
  }
}

/// A term as a part of a condition.
std::string Writer::part(Term term) {
  convert(term, DataType::Boolean);
  return term.chain == 0 || term.chain == comparison ? term.sql : "(" + term.sql + ")";
}

/// AND and OR, however many they link. SQLite's tree grows with each one in a row, and has a greatest height:
/// many are halved.
Term Writer::linked(const Expression& e, Scope& scope) {
  constexpr std::size_t inARow = 64;
  const bool all = e.op == Operator::logicalAnd;
  std::vector<std::string> parts;
  for (const auto& argument : e.arguments) parts.push_back(part(write(*argument, scope)));
  const auto join = [&](const auto& self, std::size_t first, std::size_t end) -> std::string {
    if (end - first > inARow) {
      const std::size_t middle = first + (end - first) / 2;
      return "(" + self(self, first, middle) + ")" + (all ? " AND (" : " OR (") + self(self, middle, end) +
             ")";
    }
    std::string out = parts[first];
    for (std::size_t i = first + 1; i < end; ++i) out += (all ? " AND " : " OR ") + parts[i];
    return out;
  };
  return logical(join(join, 0, parts.size()), all ? 'a' : 'o');
}

Term Writer::logic(Operator op, Term left, Term right) {
  const std::string l = part(std::move(left));
  const std::string r = part(std::move(right));
  switch (op) {
    case Operator::exclusiveOr:
      return logical("(NOT (" + l + ")) <> (NOT " + r + ")");
    case Operator::equivalent:
      return logical("(NOT (" + l + ")) = (NOT " + r + ")");
    default:
      return logical("(NOT (" + l + ")) OR " + r, 'o');
  }
}

Term Writer::arithmetic(Operator op, Term left, Term right) {
  double most = 0;
  switch (op) {
    case Operator::add:
    case Operator::subtract:
      return add(op, std::move(left), std::move(right));
    case Operator::multiply:
      return multiply(std::move(left), std::move(right));
    case Operator::divide:
      return {.sql = "vx_div(" + number(std::move(left)) + ", " + number(std::move(right)) + ")",
              .type = DataType::Double};
    case Operator::power:
      return {.sql = "vx_pow(" + number(std::move(left)) + ", " + number(std::move(right)) + ")",
              .type = DataType::Double};
    case Operator::concatenate:
      return concatenate(std::move(left), right);
    default: {
      // Whole division and remainder round both operands first.
      // SQLite has whole numbers of 64 bits.
      constexpr double most64 = 9223372036854775808.0;
      const auto whole = [&](Term term) {
        if (isWholeType(term.type) && mostOf(term) < most64) {
          most = std::max(most, mostOf(term));
          return operand(term);
        }
        return "vx_store(" + number(std::move(term)) + ", " + typeCode(DataType::Long) + ", 0)";
      };
      std::string sql = op == Operator::modulo ? "vx_mod(" : "vx_idiv(";
      sql += whole(std::move(left)) + ", " + whole(std::move(right)) + ")";
      return {.sql = std::move(sql), .type = DataType::Long, .most = most};
    }
  }
}

/// Null counts as no text, but two of them joined stay Null. A chain '&' has a text in it that is never Null.
Term Writer::concatenate(Term left, const Term& right) {
  const auto never = [this](const Term& term) {
    return term.chain == '&' || (term.slot && slots_[*term.slot].literal && isTextType(term.type));
  };
  if (!never(left) && !never(right))
    return {.sql = "vx_join(" + text(left) + ", " + text(right) + ")", .type = DataType::Text};
  const auto part = [&](const Term& term) {
    if (term.chain == '&') return "(" + term.sql + ")";
    return never(term) ? term.sql : "coalesce(" + text(term) + ", '')";
  };
  std::string l = left.chain == '&' ? std::move(left.sql) : part(left);
  return {.sql = std::move(l) + " || " + part(right), .type = DataType::Text, .chain = '&'};
}

Term Writer::multiply(Term left, Term right) {
  constexpr int factorsOfACall = 100;
  const DataType type = numericType(left.type, right.type);
  const double most = mostOf(left) * mostOf(right);
  const bool goesOn = left.factors > 0 && left.factors < factorsOfACall;
  const int factors = goesOn ? left.factors + 1 : 2;
  std::string l = goesOn ? left.sql.substr(0, left.sql.size() - 1) : number(std::move(left));
  const std::string r = number(std::move(right));
  if (type == DataType::Currency) return {.sql = asAmount(l + " * " + r), .type = type};
  if (most <= greatest) return {.sql = l + " * " + r, .type = type, .chain = '?', .most = most};
  // What is too large must not be multiplied by 0, so every factor is looked at.
  Term out{
      .sql = (goesOn ? std::move(l) : "vx_product(" + l) + ", " + r + ")", .type = type, .most = greatest};
  out.factors = factors;
  return out;
}

/// Texts are joined. A date and a number give a date so many days away. Two dates give their difference in
/// days.
Term Writer::add(Operator op, Term left, Term right) {
  const bool minus = op == Operator::subtract;
  if (left.summed) {
    // The sum goes on within the call: what is too large stays so, whatever is added to it.
    left.sql = left.sql.substr(finiteCall.size(), left.sql.size() - finiteCall.size() - 1);
    left.chain = '+';
  }
  const auto goesOn = [&](char link) { return left.chain == link && !left.condition; };
  const bool texts = isTextType(left.type) || isTextType(right.type);
  const auto textOrNull = [](const Term& term) { return !term.type || isTextType(term.type); };
  if (!minus && texts && textOrNull(left) && textOrNull(right)) {
    const std::string l = goesOn('|') ? left.sql : operand(left);
    return {.sql = l + " || " + operand(right), .type = DataType::Text, .chain = '|'};
  }
  DataType type = numericType(left.type, right.type);
  const bool leftDate = left.type == DataType::Date;
  const bool rightDate = right.type == DataType::Date;
  if (leftDate != rightDate || (leftDate && !minus)) type = DataType::Date;
  const double most = mostOf(left) + mostOf(right);
  const std::string l = goesOn('+') ? left.sql : number(std::move(left));
  std::string sql = l + (minus ? " - " : " + ") + number(std::move(right));
  if (type == DataType::Currency) return {.sql = asAmount(sql), .type = type};
  return computed(std::move(sql), type, most, '+');
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
