#include <algorithm>
#include <cstddef>
#include <utility>

#include "engines/language/parser.h"
#include "engines/language/writer.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::dialect {

using syntax::Source;

std::string Writer::sortable(const Term& term) {
  return isTextType(term.type) && term.field == nullptr ? collated(operand(term)) : value(term);
}

/// What a query gives, as the table in whose place it stands.
const TableDef& Writer::derive(const Query& query, ScopeTable& table) {
  TableDef& definition = *derived_.emplace_back(std::make_unique<TableDef>());
  definition.name = table.alias;
  std::vector<std::string> columns;
  std::vector<std::string> called;
  for (std::size_t i = 0; i < query.items.size(); ++i) {
    const Term& item = query.items[i];
    FieldDef& field = definition.fields.emplace_back();
    field.type = item.type.value_or(DataType::Text);
    if (item.field != nullptr && !item.secret) field.size = item.field->size;
    field.name = query.names[i];
    table.most.push_back(item.most);
    columns.push_back(sortable(item));
    called.push_back(quotedName(field.name));
  }
  table.query = "(" + query.text(columns, called) + ")";
  return definition;
}

/// A stored query in the place of a table: its own text, with its own literals.
void Writer::storedQuery(const std::string& text, ScopeTable& table) {
  constexpr int deepest = 20;
  if (stored_ == deepest)
    throw Error(err::dbCircular,
                "The query \"" + table.alias + "\" is made of itself, or of too many others");
  const std::string& kept = *texts_.emplace_back(std::make_unique<std::string>(text));
  Scanned scanned;
  scan(kept, scanned, schema_.clock());
  const syntax::Statement statement = Parser(kept).statement();
  if (statement.kind != syntax::Statement::Kind::select || !statement.select->into.empty())
    throw Error(err::dbInvalidOperation, "The query \"" + table.alias + "\" gives no rows");
  for (const FieldDef& declared : statement.parameters) declare(declared);
  const std::string_view outerText = std::exchange(sql_, kept);
  std::vector<Value> outerLiterals = std::exchange(literals_, std::move(scanned.literals));
  ++stored_;
  table.definition = &derive(select(*statement.select, nullptr), table);
  --stored_;
  sql_ = outerText;
  literals_ = std::move(outerLiterals);
}

/// A parameter that a stored query declares is one of the whole statement; the first declaration of a name
/// counts.
void Writer::declare(const FieldDef& parameter) {
  const auto known = std::find_if(parameters_.begin(), parameters_.end(), [&](const FieldDef& other) {
    return equalNoCase(other.name, parameter.name);
  });
  const auto undeclared = parameters_.begin() + static_cast<std::ptrdiff_t>(declared_);
  if (known < undeclared) return;
  if (known != parameters_.end()) parameters_.erase(known);
  parameters_.insert(parameters_.begin() + static_cast<std::ptrdiff_t>(declared_++), parameter);
}

const TableDef& Writer::addTable(const Source& source, Scope& scope) {
  ScopeTable table;
  table.alias = source.alias;
  table.definition = source.query ? nullptr : schema_.table(source.table);
  if (source.query) {
    table.definition = &derive(select(*source.query, nullptr), table);
  } else if (table.definition == nullptr) {
    const std::optional<std::string> text = schema_.queryText(source.table);
    if (!text)
      throw Error(err::dbUnknownTable, "There is no table or query \"" + std::string(source.table) + "\"");
    storedQuery(*text, table);
  } else if (equalNoCase(source.alias, table.definition->name)) {
    table.alias = table.definition->name;
  }
  for (const ScopeTable& other : scope.tables) {
    if (equalNoCase(other.alias, table.alias)) {
      fail(source.position, "two tables of the statement are called \"" + other.alias + "\"");
    }
  }
  table.prefix = quotedName(table.alias) + ".";
  return *scope.tables.emplace_back(std::move(table)).definition;
}

std::string Writer::tableText(const ScopeTable& table) {
  if (!table.query.empty()) return table.query + " AS " + quotedName(table.alias);
  std::string out = quotedName(table.definition->name);
  if (table.alias != table.definition->name) out += " AS " + quotedName(table.alias);
  return out;
}

/// Writes a FROM clause and adds its tables to the scope. Inner joins become a list of tables, so that SQLite
/// chooses their order; their conditions go to `filter` and are written when all tables are known. The side
/// of an outer join that may be missing keeps its conditions in that join's ON.
std::string Writer::from(const Source& source, Scope& scope, Conditions& filter) {
  if (source.join == Source::Join::none) {
    addTable(source, scope);
    return tableText(scope.tables.back());
  }
  const bool inner = source.join == Source::Join::inner;
  const auto side = [&](const Source& s, Conditions& conditions) {
    std::string text = from(s, scope, conditions);
    const bool alone = s.join == Source::Join::none || (inner && s.join == Source::Join::inner);
    return alone ? text : "(" + text + ")";
  };
  if (inner) {
    std::string text = side(*source.left, filter);
    text += ", " + side(*source.right, filter);
    filter.push_back(source.on.get());
    return text;
  }
  const bool rightStays = source.join == Source::Join::right;
  Conditions own;
  std::string left = side(*source.left, rightStays ? own : filter);
  std::string right = side(*source.right, rightStays ? filter : own);
  own.push_back(source.on.get());
  if (rightStays) std::swap(left, right);
  return left + " LEFT JOIN " + right + " ON " + allOf(own, scope);
}

std::string Writer::allOf(const Conditions& conditions, Scope& scope) {
  if (conditions.size() == 1) return condition(*conditions[0], scope);
  std::vector<std::string> texts;
  for (const auto* c : conditions) texts.push_back("(" + condition(*c, scope) + ")");
  return joined(texts, " AND ");
}

std::string Writer::sources(const std::vector<Source>& sources, const syntax::ExpressionPtr& where,
                            Scope& scope) {
  std::vector<std::string> texts;
  Conditions filter;
  for (const Source& source : sources) {
    std::string text = from(source, scope, filter);
    const bool outerJoin = source.join == Source::Join::left || source.join == Source::Join::right;
    texts.push_back(outerJoin && sources.size() > 1 ? "(" + text + ")" : std::move(text));
  }
  if (where) filter.push_back(where.get());
  std::string out;
  if (!texts.empty()) out = " FROM " + joined(texts, ", ");
  if (!filter.empty()) out += " WHERE " + allOf(filter, scope);
  return out;
}

}  // namespace voxa::dialect
