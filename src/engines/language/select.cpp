#include <algorithm>
#include <charconv>
#include <utility>

#include "engines/language/writer.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::dialect {

using syntax::Source;

namespace {

/// Whether no two rows have the same value in the field.
bool isKey(const TableDef& table, const FieldDef& field) {
  return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const IndexDef& index) {
    const bool whole = index.primary || (index.unique && (index.required || field.required));
    return whole && index.fields.size() == 1 && equalNoCase(index.fields[0], field.name);
  });
}

/// A term for a clause in which SQLite would take a whole number for the position of a column.
std::string sortKey(const Term& term) {
  return term.sql == "-1" || term.sql == "0" ? "NULL" : Writer::sortable(term);
}

}  // namespace

std::vector<std::string> Writer::Query::columns() const {
  std::vector<std::string> out;
  for (const Term& item : items) out.push_back(distinct ? sortable(item) : value(item));
  return out;
}

std::string Writer::Query::text(const std::vector<std::string>& columns,
                                const std::vector<std::string>& called) const {
  const auto ordered = [](const std::vector<std::string>& sorted, const std::vector<Key>& ways) {
    std::string out = sorted.empty() ? "" : " ORDER BY ";
    for (std::size_t i = 0; i < sorted.size(); ++i)
      out += (i > 0 ? ", " : "") + sorted[i] + (ways[i].descending ? " DESC" : "");
    return out;
  };
  const auto named = [](std::vector<std::string> texts, const auto& nameOf) {
    for (std::size_t i = 0; i < texts.size(); ++i) texts[i] += " AS " + nameOf(i);
    return texts;
  };
  const auto own = [&](const std::vector<std::string>& texts) {
    return called.empty() ? texts : named(texts, [&](std::size_t i) { return called[i]; });
  };
  const std::string selecting = distinct && !rowsDiffer ? "SELECT DISTINCT " : "SELECT ";
  std::vector<std::string> plain;
  for (const Key& key : keys) plain.push_back(key.sql);
  if (top.empty() || (!percent && (keys.empty() || keysDiffer))) {
    return selecting + joined(own(columns), ", ") + rest + ordered(plain, keys) +
           (top.empty() ? "" : " LIMIT " + top);
  }
  // Rows that are equal in the ordering have one rank.
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns.size(); ++i) names.push_back("c" + std::to_string(i));
  std::vector<std::string> inner = named(columns, [&](std::size_t i) { return names[i]; });
  std::string from = rest;
  if (distinct) {
    // The ranks are those of the rows that are left, so these are made first.
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const std::string name = "k" + std::to_string(i);
      inner.push_back(keys[i].sql + " AS " + name);
      plain[i] = keys[i].isText ? collated(name) : name;
    }
    from = " FROM (SELECT DISTINCT " + joined(inner, ", ") + rest + ")";
    inner = names;
  }
  const std::string order = ordered(plain, keys);
  inner.push_back((keys.empty() ? "row_number() OVER (" : "rank() OVER (") + order + ") AS r");
  if (percent) inner.emplace_back("count(*) OVER () AS n");
  return "SELECT " + joined(own(names), ", ") + " FROM (SELECT " + joined(inner, ", ") + from +
         ") WHERE r <= " + (percent ? "(n * " + top + " + 99) / 100" : top) + " ORDER BY r";
}

Group Writer::groupOf(const Term& term, std::size_t firstSlot) const {
  return {withoutNumbers(term.sql), firstSlot, slots_.size() - firstSlot};
}

/// Whether GROUP BY lists the term. Its literals and parameters must be the same, too.
bool Writer::isGrouped(const Group& term, const Scope& scope) {
  return std::any_of(scope.groups.begin(), scope.groups.end(), [&](const Group& group) {
    if (group.shape != term.shape || group.slotCount != term.slotCount) return false;
    LiteralPairs pairs;
    for (std::size_t i = 0; i < group.slotCount; ++i) {
      const Slot& one = slots_[group.firstSlot + i];
      const Slot& other = slots_[term.firstSlot + i];
      if (one.constant != other.constant) return false;
      if (one.parameter != other.parameter || one.literal.has_value() != other.literal.has_value())
        return false;
      if (!one.literal) continue;
      if (literals_[*one.literal] != literals_[*other.literal]) return false;
      pairs.emplace_back(*one.literal, *other.literal);
    }
    sameLiterals_.insert(sameLiterals_.end(), pairs.begin(), pairs.end());
    return true;
  });
}

Writer::Query Writer::select(const syntax::Select& select, Scope* outer) {
  return select.unions.empty() ? member(select, outer) : compound(select, outer);
}

/// The queries that UNION links, as one table "u" with columns c0, c1 and so on.
Writer::Query Writer::compound(const syntax::Select& select, Scope* outer) {
  std::vector<Query> members;
  members.push_back(member(select, outer));
  for (const syntax::Select::Member& each : select.unions) {
    members.push_back(member(*each.select, outer));
    if (members.back().items.size() != members[0].items.size())
      throw Error(err::dbUnionColumns, "The queries that UNION links have different numbers of columns");
  }
  Query out;
  out.scope.outer = outer;
  out.grouped = true;
  out.names = members[0].names;
  out.sources.resize(out.names.size());
  std::vector<Common> common;
  for (std::size_t i = 0; i < out.names.size(); ++i) {
    std::vector<const Term*> all;
    for (const Query& each : members) all.push_back(&each.items[i]);
    common.push_back(commonOf(all));
    out.items.push_back({.sql = "u.c" + std::to_string(i), .type = common[i].type, .most = common[i].most});
  }
  std::string texts;
  for (std::size_t m = 0; m < members.size(); ++m) {
    std::vector<std::string> columns;
    std::vector<std::string> called;
    for (std::size_t i = 0; i < common.size(); ++i) {
      const Term& item = members[m].items[i];
      columns.push_back(common[i].mixed ? collated("(" + text(item) + ")") : sortable(item));
      called.push_back("c" + std::to_string(i));
    }
    const std::string text = members[m].text(columns, called);
    if (m > 0) texts += select.unions[m - 1].all ? " UNION ALL " : " UNION ";
    texts += members[m].top.empty() ? text : "SELECT * FROM (" + text + ")";
  }
  out.rest = " FROM (" + texts + ") AS u";
  for (const syntax::OrderItem& item : select.orderBy) {
    std::size_t column = out.names.size();
    const std::string_view name = item.expression->name;
    if (item.expression->kind == syntax::Expression::Kind::shapingNumber) {
      column = columnOf(*item.expression, out.names.size());
    } else if (item.expression->kind == syntax::Expression::Kind::name) {
      const auto named = std::find_if(out.names.begin(), out.names.end(),
                                      [&](const std::string& other) { return equalNoCase(other, name); });
      column = static_cast<std::size_t>(named - out.names.begin());
    }
    if (column >= out.names.size())
      fail(item.expression->position, "the result of UNION is ordered by columns of its first query");
    const Term& term = out.items[column];
    out.keys.push_back({sortKey(term), isTextType(term.type), item.descending});
  }
  return out;
}

Writer::Query Writer::member(const syntax::Select& select, Scope* outer) {
  Query out;
  Scope& scope = out.scope;
  scope.outer = outer;
  out.distinct = select.distinct;
  out.rest = sources(select.from, select.where, scope);

  std::vector<std::string> groups;
  std::vector<Group> grouped;
  if (!select.groupBy.empty() && literals_.empty() && stored_ == 0) {
    Scanned scanned;
    scan(sql_, scanned, schema_.clock());
    literals_ = std::move(scanned.literals);
  }
  scope.outer = nullptr;  // SQLite groups and orders by a query's own columns alone
  for (const auto& group : select.groupBy) {
    const std::size_t firstSlot = slots_.size();
    const Term term = write(*group, scope);
    groups.push_back(sortKey(term));
    grouped.push_back(groupOf(term, firstSlot));
  }
  scope.groups = std::move(grouped);
  scope.ungroupedCount = 0;
  scope.aggregatesAllowed = true;
  scope.outer = outer;
  items(select, out);
  if (out.distinct) requireUsable(out.items);
  if (select.having && groups.empty() && !scope.aggregated) {
    fail(select.having->position, "HAVING needs GROUP BY or an aggregate function among what is selected");
  }
  std::string having = select.having ? " HAVING " + condition(*select.having, scope) : "";
  scope.outer = nullptr;
  if (select.unions.empty()) order(select, out, outer != nullptr);
  out.grouped = scope.aggregated || !groups.empty();
  out.single = groups.empty() && (scope.aggregated || select.from.empty());
  if (out.grouped && scope.ungroupedCount > 0) {
    throw Error(err::dbNotAggregated, "The field \"" + scope.ungrouped +
                                          "\" is neither in GROUP BY nor part of an aggregate function");
  }
  if (select.distinctRow && scope.tables.size() > 1 && !out.grouped) {
    // DISTINCTROW: one row for each combination of rows of the tables that the result shows.
    std::vector<bool> shown(scope.tables.size());
    for (const Term& item : out.items) {
      if (item.field != nullptr) shown[item.table] = true;
    }
    for (std::size_t i = 0; i < shown.size(); ++i) {
      if (shown[i] && scope.tables[i].query.empty()) groups.push_back(scope.tables[i].prefix + "_rowid_");
    }
  }
  out.rowsDiffer = outer == nullptr && scope.tables.size() == 1 &&
                   std::any_of(out.items.begin(), out.items.end(), [&](const Term& item) {
                     return item.field != nullptr && isKey(*scope.tables[0].definition, *item.field);
                   });
  if (!groups.empty()) out.rest += " GROUP BY " + joined(groups, ", ");
  out.rest += having;
  out.top = select.top;
  out.percent = select.percent;
  return out;
}

void Writer::items(const syntax::Select& select, Query& out) {
  Scope& scope = out.scope;
  std::vector<bool> renamed;
  const auto add = [&](Term term, const syntax::Expression* source, std::string name, bool fromColumn) {
    out.items.push_back(std::move(term));
    out.sources.push_back(source);
    out.names.push_back(std::move(name));
    renamed.push_back(fromColumn);
  };
  for (const syntax::SelectItem& item : select.items) {
    if (item.star) {
      bool found = false;
      for (std::size_t i = 0; i < scope.tables.size(); ++i) {
        if (!item.starQualifier.empty() && !equalNoCase(item.starQualifier, scope.tables[i].alias)) continue;
        found = true;
        for (const FieldDef& field : scope.tables[i].definition->fields) {
          Term term = *findColumn(scope.tables[i].alias, field.name, scope);
          // The value does not get as far as the result: nothing that is done to it can tell it.
          if (term.secret) {
            term.sql = "'" + std::string(mask) + "'";
            term.type = DataType::Text;
          }
          add(std::move(term), nullptr, field.name, true);
        }
      }
      if (!found) fail(item.position, "this is none of the statement's tables");
      continue;
    }
    Term term = write(*item.expression, scope);
    const bool plainColumn = item.alias.empty() && term.field != nullptr;
    std::string name = !item.alias.empty() ? std::string(item.alias)
                       : plainColumn       ? term.field->name
                                           : "Expr" + std::to_string(1000 + out.items.size());
    add(std::move(term), item.expression.get(), std::move(name), plainColumn);
  }
  // Columns of the same name get the names of their tables in front.
  const std::vector<std::string> plain = out.names;
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const auto same = std::count_if(plain.begin(), plain.end(),
                                    [&](const std::string& other) { return equalNoCase(other, plain[i]); });
    if (renamed[i] && same > 1) out.names[i] = scope.tables[out.items[i].table].alias + "." + plain[i];
  }
}

/// The index of the column that a number in an ordering names, of so many.
std::size_t Writer::columnOf(const syntax::Expression& number, std::size_t columns) const {
  std::size_t position = 0;
  const char* const end = number.name.data() + number.name.size();
  const bool read = std::from_chars(number.name.data(), end, position).ec == std::errc();
  if (!read || position == 0 || position > columns)
    fail(number.position, "the result has no column of that number");
  return position - 1;
}

/// within: another query is around this one. Then the ordering cannot use columns of that query, not even by
/// a number.
void Writer::order(const syntax::Select& select, Query& out, bool within) {
  for (const syntax::OrderItem& item : select.orderBy) {
    Term term;
    if (item.expression->kind == syntax::Expression::Kind::shapingNumber) {
      const std::size_t column = columnOf(*item.expression, out.items.size());
      const syntax::Expression* source = out.sources[column];
      term = source != nullptr && within ? write(*source, out.scope) : out.items[column];
      if (term.secret) throw secretColumn(*term.field);
    } else {
      term = write(*item.expression, out.scope);
    }
    const auto selected = [&](const Term& other) {
      return withoutNumbers(other.sql) == withoutNumbers(term.sql);
    };
    if (out.distinct && std::none_of(out.items.begin(), out.items.end(), selected)) {
      throw Error(err::dbOrderNotSelected,
                  "With DISTINCT rows are ordered by what they show: select what ORDER BY names, too");
    }
    out.keys.push_back({sortKey(term), isTextType(term.type), item.descending});
    if (out.scope.tables.size() == 1 && term.field != nullptr && term.table == 0)
      out.keysDiffer = out.keysDiffer || isKey(*out.scope.tables[0].definition, *term.field);
  }
}

}  // namespace voxa::dialect
