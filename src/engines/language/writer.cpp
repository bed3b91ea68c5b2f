#include "engines/language/writer.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "engines/language/lexer.h"
#include "engines/language/words.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::dialect {

using syntax::Expression;
using syntax::Operator;

namespace {

constexpr std::size_t greatestUndeclared = 255;  // parameters of a statement

[[noreturn]] void failBytes() {
  throw Error(
      err::dbTypeMismatch,
      "Data type mismatch in expression: bytes can be stored, counted, tested for Null and compared with "
      "bytes, and nothing else");
}

/// For whatever needs another value.
void requireNoBytes(const Term& term) {
  if (isBinaryType(term.type)) failBytes();
}

Term constant(std::string_view word) {
  if (isWord(word, "null")) return {.sql = "NULL"};
  const bool yes = isWord(word, "true") || isWord(word, "yes") || isWord(word, "on");
  return {.sql = yes ? "-1" : "0", .type = DataType::Boolean, .chain = yes ? '?' : '\0'};
}

}  // namespace

std::string typeCode(DataType type) {
  return std::to_string(static_cast<int>(type));
}

DataType numericType(const std::optional<DataType>& a, const std::optional<DataType>& b) {
  if (isWholeType(a) && isWholeType(b)) return DataType::Long;
  const auto exact = [](const std::optional<DataType>& type) {
    return type == DataType::Currency || isWholeType(type);
  };
  return exact(a) && exact(b) ? DataType::Currency : DataType::Double;
}

double mostOf(const Term& term) {
  constexpr double amounts = 1e15;
  constexpr double days = 3e6;
  if (term.most > 0) return term.most;
  if (!term.type) return 0;
  if (isWholeType(term.type)) return -static_cast<double>(std::numeric_limits<std::int32_t>::min());
  if (term.type == DataType::Currency) return amounts;
  if (term.type == DataType::Date) return days;
  return term.type == DataType::Single ? std::numeric_limits<float>::max() : greatest;
}

Term computed(std::string sql, DataType type, double most, char chain) {
  if (most <= greatest) return {.sql = std::move(sql), .type = type, .chain = chain, .most = most};
  Term out{.sql = finiteCall + std::move(sql) + ")", .type = type, .most = greatest};
  out.summed = chain == '+';
  return out;
}

std::string asAmount(const std::string& sql) {
  return "vx_store(" + sql + ", " + typeCode(DataType::Currency) + ", 0)";
}

Term logical(std::string sql, char chain) {
  return {.sql = std::move(sql), .type = DataType::Boolean, .chain = chain, .condition = true};
}

std::string joined(const std::vector<std::string>& parts, const char* separator) {
  std::string out;
  for (const std::string& part : parts) out += (out.empty() ? "" : separator) + part;
  return out;
}

std::string quotedName(std::string_view name) {
  std::string out(1, '"');
  for (const char c : name) {
    if (c == '"') out += c;
    out += c;
  }
  return out += '"';
}

std::string collated(const std::string& operand) {
  return operand + " COLLATE " + collation;
}

std::string withoutNumbers(const std::string& sql) {
  std::string out;
  bool number = false;
  bool name = false;  // within the quotes of a name, where the sign of a placeholder means nothing
  for (const char c : sql) {
    if (c == '"') name = !name;
    if (!(number && c >= '0' && c <= '9')) out += c;
    number = !name && (c == '?' || (number && c >= '0' && c <= '9'));
  }
  return out;
}

Error secretColumn(const FieldDef& field) {
  return {err::dbNoPermission, "The column " + field.name +
                                   " is secret: a statement can neither use nor set it, and only a star (*) "
                                   "has it in the result, masked"};
}

void Writer::requireUsable(const std::vector<Term>& terms) {
  for (const Term& term : terms) {
    if (term.secret) throw secretColumn(*term.field);
  }
}

void Writer::fail(std::size_t position, const std::string& what) const {
  failSyntax(sql_, position, what);
}

std::string Writer::value(const Term& term) {
  return term.condition ? "-(" + term.sql + ")" : term.sql;
}

std::string Writer::operand(const Term& term) {
  return term.chain != 0 || term.condition ? "(" + value(term) + ")" : term.sql;
}

std::string Writer::text(const Term& term) {
  if (term.type != DataType::Boolean) return words(term);
  return "vx_text(" + value(term) + ", " + typeCode(DataType::Long) + ")";
}

std::string Writer::words(const Term& term) {
  requireNoBytes(term);
  if (!term.type || isTextType(term.type)) return value(term);
  return "vx_text(" + value(term) + ", " + typeCode(*term.type) + ")";
}

/// Converts a text to that type. A placeholder is converted when it is bound, anything else row by row; there
/// a text that does not read as the type becomes Null.
void Writer::convert(Term& term, DataType type) {
  requireNoBytes(term);
  if (!isTextType(term.type)) return;
  if (term.slot) {
    slots_[*term.slot].convertTo.emplace().type = type;
  } else {
    term.sql = (type == DataType::Date ? "vx_date(" : "vx_number(") + term.sql + ")";
    term.chain = 0;
    term.field = nullptr;
  }
  term.type = type;
}

std::string Writer::number(Term term) {
  convert(term, DataType::Double);
  return operand(term);
}

std::string Writer::date(Term term) {
  convert(term, DataType::Date);
  return operand(term);
}

std::string Writer::truth(Term term) {
  convert(term, DataType::Boolean);
  return term.sql;
}

/// Makes terms comparable. A text is converted to the type that it is compared with; two texts compare
/// without regard to case.
void Writer::makeComparable(std::vector<Term>& terms) {
  if (std::any_of(terms.begin(), terms.end(), [](const Term& t) { return isBinaryType(t.type); })) {
    for (Term& term : terms) {
      if (term.slot && isTextType(term.type) && !slots_[*term.slot].parameter.empty()) {
        slots_[*term.slot].convertTo.emplace().type = DataType::LongBinary;
      } else if (term.type && !isBinaryType(term.type)) {
        failBytes();
      }
    }
    return;
  }
  const auto other = std::find_if(terms.begin(), terms.end(),
                                  [](const Term& t) { return t.type.has_value() && !isTextType(t.type); });
  if (other != terms.end()) {
    // A number in a text keeps its fraction, even when it is compared with a whole type.
    const DataType type =
        other->type == DataType::Date || other->type == DataType::Boolean ? *other->type : DataType::Double;
    for (Term& term : terms) convert(term, type);
    return;
  }
  const bool collates = terms[0].field != nullptr || (terms.size() == 2 && terms[1].field != nullptr);
  const bool anyText =
      std::any_of(terms.begin(), terms.end(), [](const Term& t) { return isTextType(t.type); });
  if (anyText && !collates) terms[0] = {.sql = collated(operand(terms[0])), .type = DataType::Text};
}

Term Writer::write(const Expression& e, Scope& scope) {
  if (scope.groups.empty()) return any(e, scope);
  const int before = scope.ungroupedCount;
  const std::size_t firstSlot = slots_.size();
  Term term = any(e, scope);
  if (scope.ungroupedCount != before && isGrouped(groupOf(term, firstSlot), scope)) {
    scope.ungroupedCount = before;
  }
  return term;
}

Term Writer::any(const Expression& e, Scope& scope) {
  switch (e.kind) {
    case Expression::Kind::literal:
      if (stored_ > 0)
        return placeholder(
            {.literal = {}, .constant = literals_.at(e.literal), .parameter = {}, .convertTo = {}}, e.type);
      return placeholder({.literal = e.literal, .constant = {}, .parameter = {}, .convertTo = {}}, e.type);
    case Expression::Kind::shapingNumber:
      return {.sql = std::string(e.name), .type = e.type};
    case Expression::Kind::word:
      return constant(e.name);
    case Expression::Kind::name:
      return name(e, scope);
    case Expression::Kind::subject:
      return *column({}, scope.tables[0].definition->fields[0].name, scope);
    case Expression::Kind::call:
      return call(e, scope);
    case Expression::Kind::negative: {
      Term term = write(*e.arguments[0], scope);
      const bool amount = term.type == DataType::Currency;
      const DataType type = isWholeType(term.type) ? DataType::Long
                            : amount               ? DataType::Currency
                                                   : DataType::Double;
      const double most = term.most;
      return {.sql = "-" + number(std::move(term)), .type = type, .chain = '?', .most = most};
    }
    case Expression::Kind::logicalNot: {
      Term term = write(*e.arguments[0], scope);
      convert(term, DataType::Boolean);
      return logical("NOT " + (term.chain != 0 ? "(" + term.sql + ")" : term.sql));
    }
    case Expression::Kind::binary:
      return binary(e, scope);
    case Expression::Kind::between:
      return between(e, scope);
    case Expression::Kind::inList:
      return inList(e, scope);
    case Expression::Kind::isNull:
      return logical(operand(write(*e.arguments[0], scope)) + (e.negated ? " IS NOT NULL" : " IS NULL"));
    case Expression::Kind::inSelect:
    case Expression::Kind::exists:
    case Expression::Kind::scalar:
    case Expression::Kind::quantified:
      return query(e, scope);
  }
  fail(e.position, "this cannot be part of an expression");
}

Term Writer::placeholder(Slot slot, DataType type) {
  const std::size_t index = slots_.size();
  slots_.push_back(std::move(slot));
  return {.sql = "?" + std::to_string(index + 1), .type = type, .slot = index};
}

const FieldDef* Writer::parameter(std::string_view name) const {
  const auto found = std::find_if(parameters_.begin(), parameters_.end(),
                                  [&](const FieldDef& p) { return equalNoCase(p.name, name); });
  return found == parameters_.end() ? nullptr : &*found;
}

Term Writer::name(const Expression& e, Scope& scope) {
  const auto valueOf = [&](const FieldDef& declared) {
    return placeholder({.literal = {}, .constant = {}, .parameter = declared.name, .convertTo = {}},
                       declared.type);
  };
  if (e.qualifier.empty()) {
    if (const FieldDef* known = parameter(e.name)) return valueOf(*known);
  }
  if (auto found = column(e.qualifier, e.name, scope)) return *std::move(found);
  if (e.qualifier.empty() && !e.bracketed) {
    for (const std::string_view word : {"yes", "no", "off"}) {
      if (isWord(e.name, word)) return constant(e.name);
    }
  }
  if (e.qualifier.empty() && parameters_.size() < greatestUndeclared) {
    FieldDef undeclared;
    undeclared.name = e.name;
    undeclared.type = DataType::Memo;
    parameters_.push_back(undeclared);
    return valueOf(undeclared);
  }
  const std::string full =
      e.qualifier.empty() ? std::string(e.name) : std::string(e.qualifier) + "." + std::string(e.name);
  // Of two columns of one name a query in the place of a table gives "table.field".
  if (auto found = column({}, full, scope)) return *std::move(found);
  throw Error(err::dbTooFewParameters,
              "Too few parameters: \"" + full + "\" is neither a field nor a parameter");
}

std::optional<Term> Writer::column(std::string_view qualifier, std::string_view name, Scope& scope) const {
  std::optional<Term> found = findColumn(qualifier, name, scope);
  if (found && found->secret) throw secretColumn(*found->field);
  return found;
}

std::optional<Term> Writer::findColumn(std::string_view qualifier, std::string_view name,
                                       Scope& scope) const {
  std::optional<Term> found;
  for (Scope* s = &scope; s != nullptr && !found; s = s->outer) {
    for (std::size_t i = 0; i < s->tables.size(); ++i) {
      const ScopeTable& table = s->tables[i];
      if (!qualifier.empty() && !equalNoCase(qualifier, table.alias)) continue;
      const FieldDef* field = table.definition->field(name);
      if (field == nullptr) continue;
      if (found) {
        throw Error(err::dbAmbiguousName, "The field \"" + std::string(name) +
                                              "\" could be of more than one table of the statement");
      }
      found = Term{
          .sql = table.prefix + quotedName(field->name), .type = field->type, .field = field, .table = i};
      found->secret = schema_.isSecret(*table.definition, *field);
      if (!table.most.empty())
        found->most = table.most[static_cast<std::size_t>(field - table.definition->fields.data())];
    }
    if (found) ++(s == &scope ? scope.ownColumns : scope.outerColumns);
    if (found && !s->insideAggregate) {
      ++s->ungroupedCount;
      s->ungrouped = name;
    }
  }
  return found;
}

Term Writer::query(const Expression& e, Scope& scope) {
  Query query = select(*e.select, &scope);
  if (e.kind == Expression::Kind::exists) return logical("EXISTS (" + query.text({"1"}) + ")", 0);
  requireUsable(query.items);
  if (query.items.size() != 1) fail(e.select->position, "a query within a statement gives one column");
  if (e.kind == Expression::Kind::quantified) return quantified(e, std::move(query), scope);
  if (e.kind == Expression::Kind::scalar) {
    Term out{.type = query.items[0].type, .most = query.items[0].most};
    // Of rows that TOP 1 finds equal the first is taken.
    if (query.single || (query.top == "1" && !query.percent)) {
      out.sql = "(" + query.text(query.columns()) + ")";
      return out;
    }
    if (query.top.empty()) query.keys.clear();
    const std::string two = query.top.empty() ? " LIMIT 2" : "";
    out.sql = "(SELECT vx_one(count(*), max(c0)) FROM (" + query.text(query.columns(), {"c0"}) + two + "))";
    return out;
  }
  std::vector<Term> terms;
  terms.push_back(write(*e.arguments[0], scope));
  terms.push_back(std::move(query.items[0]));
  const bool column = terms[0].field != nullptr;
  if (!column) terms[1].field = nullptr;
  makeComparable(terms);
  return logical(operand(terms[0]) + (e.negated ? " NOT IN (" : " IN (") + query.text({value(terms[1])}) +
                 ")");
}

std::string Writer::condition(const Expression& e, Scope& scope) {
  return truth(write(e, scope));
}

std::string Writer::stored(const Expression& e, const FieldDef& field, Scope& scope) {
  return stored(write(e, scope), field);
}

std::string Writer::stored(Term term, const FieldDef& field) {
  if (term.slot && !term.field) {
    slots_[*term.slot].convertTo = field;
    return term.sql;
  }
  if (!term.type) return field.type == DataType::Boolean ? "0" : "NULL";
  const auto size = [](const FieldDef& f) { return f.size > 0 ? f.size : greatestSize(f.type); };
  // A boolean is Null in a row that an outer join does not find. It has to become False.
  if (term.field != nullptr && term.type == field.type && field.type != DataType::Boolean &&
      size(*term.field) <= size(field)) {
    return term.sql;
  }
  std::string source = isTextType(field.type) ? text(term) : value(term);
  if (source == "-1" || source == "0") {
    if (isWholeType(field.type) && field.type != DataType::Byte) return source;
  }
  return "vx_store(" + source + ", " + typeCode(field.type) + ", " + std::to_string(field.size) + ")";
}

}  // namespace voxa::dialect
