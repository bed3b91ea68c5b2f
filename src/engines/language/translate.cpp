#include <algorithm>
#include <optional>

#include "engines/language/definition.h"
#include "engines/language/dialect.h"
#include "engines/language/parser.h"
#include "engines/language/writer.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::dialect {

namespace {

constexpr std::string_view selecting = "SELECT ";

class Translator {
 public:
  Translator(std::string_view sql, const Schema& schema)
      : schema_(schema),
        statement_(Parser(sql).statement()),
        writer_(sql, schema, statement_.parameters, out_.slots) {}

  Translation run() {
    switch (statement_.kind) {
      case syntax::Statement::Kind::select:
        select();
        break;
      case syntax::Statement::Kind::insert:
        insert();
        break;
      case syntax::Statement::Kind::update:
        update();
        break;
      case syntax::Statement::Kind::remove:
        remove();
        break;
    }
    out_.parameters = statement_.parameters;
    out_.declared = writer_.declared();
    out_.sameLiterals = writer_.sameLiterals();
    return std::move(out_);
  }

 private:
  void select() {
    const std::string_view into = statement_.select->into;
    out_.kind = into.empty() ? Translation::Kind::select : Translation::Kind::into;
    out_.unites = !statement_.select->unions.empty();
    Writer::Query query = writer_.select(*statement_.select, nullptr);
    std::vector<std::string> columns = query.columns();
    bool masked = false;
    for (std::size_t i = 0; i < query.items.size(); ++i) {
      const Term& item = query.items[i];
      FieldDef& column = out_.columns.emplace_back();
      const bool stored = item.field != nullptr && !item.secret;
      if (stored) {
        column = *item.field;
      } else if (!item.secret) {
        column.type = item.type.value_or(DataType::Text);
      }
      column.name = query.names[i];
      out_.stored.push_back(stored);
      masked = masked || item.secret;
    }
    if (!into.empty()) {
      Writer::requireUsable(query.items);
      out_.table = into;
    } else if (query.scope.tables.size() == 1 && query.scope.tables[0].query.empty() && !query.distinct &&
               !query.grouped && !masked) {
      const ScopeTable& table = query.scope.tables[0];
      out_.table = table.definition->name;
      for (const Term& item : query.items) {
        out_.sourceFields.push_back(item.field != nullptr ? item.field->name : "");
      }
      columns.insert(columns.begin(), table.prefix + "_rowid_");
    }
    out_.sql = query.text(columns);
    if (out_.table.empty() || out_.sql.compare(selecting.size(), columns[0].size(), columns[0]) != 0) return;
    out_.columnsEnd = selecting.size() + 2 * (columns.size() - 1);
    for (const std::string& column : columns) out_.columnsEnd += column.size();
  }

  void insert() {
    out_.kind = Translation::Kind::insert;
    Scope scope;
    const TableDef& table = writer_.addTable(statement_.target, scope);
    out_.table = table.name;
    std::optional<Writer::Query> query;
    if (statement_.select) {
      query = writer_.select(*statement_.select, nullptr);
      Writer::requireUsable(query->items);
    }
    if (query && statement_.fields.empty()) {
      // Without a list the fields are those that the query's columns are called after.
      for (const std::string& name : query->names)
        statement_.fields.push_back({.qualifier = {}, .name = name, .position = 0});
    }
    const std::vector<const FieldDef*> fields = targetFields(table, err::dbUnknownField);
    std::string names;
    for (const FieldDef* field : fields) names += (names.empty() ? "" : ", ") + quotedName(field->name);
    out_.sql = "INSERT INTO " + quotedName(table.name) + " (" + names + ") ";

    std::vector<std::string> values;
    const auto checkCount = [&](std::size_t count) {
      if (count == fields.size()) return;
      throw Error(err::dbValueCount, "INSERT gives " + std::to_string(count) + " values for " +
                                         std::to_string(fields.size()) + " fields");
    };
    if (query) {
      checkCount(query->items.size());
      for (std::size_t i = 0; i < fields.size(); ++i) {
        values.push_back(writer_.stored(query->items[i], *fields[i]));
      }
      out_.sql += query->text(values);
      return;
    }
    checkCount(statement_.values.size());
    Scope none;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      values.push_back(writer_.stored(*statement_.values[i], *fields[i], none));
    }
    out_.sql += "VALUES (";
    for (std::size_t i = 0; i < values.size(); ++i) out_.sql += (i > 0 ? ", " : "") + values[i];
    out_.sql += ")";
  }

  void update() {
    out_.kind = Translation::Kind::update;
    Scope scope;
    const std::string from = writer_.sources(statement_.from, statement_.where, scope);
    const std::size_t target = targetOfUpdate(scope);
    const ScopeTable& table = scope.tables[target];
    out_.table = table.definition->name;
    statement_.target.alias = table.alias;
    const std::vector<const FieldDef*> fields = targetFields(*table.definition, err::dbTooFewParameters);
    std::string set;
    std::string computed;
    const bool alone = scope.tables.size() == 1;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const std::string value = writer_.stored(*statement_.values[i], *fields[i], scope);
      const std::string name = "v" + std::to_string(i);
      set += (i > 0 ? ", " : "") + quotedName(fields[i]->name) + " = " + (alone ? value : "s." + name);
      computed += ", " + value + " AS " + name;
      out_.updatedFields.push_back(fields[i]->name);
    }
    if (alone) {
      out_.sql = "UPDATE " + Writer::tableText(table) + " SET " + set + conditionOf(from, table);
      return;
    }
    // The joined rows are found first, each with its new values.
    const std::string name = quotedName(out_.table);
    out_.sql = "UPDATE " + name + " SET " + set + " FROM (SELECT " + table.prefix + "_rowid_ AS r" +
               computed + from + ") AS s WHERE " + name + "._rowid_ = s.r";
  }

  void remove() {
    out_.kind = Translation::Kind::remove;
    Scope scope;
    const std::string from = writer_.sources(statement_.from, statement_.where, scope);
    std::size_t target = 0;
    if (!statement_.rowsOf.empty()) {
      while (target < scope.tables.size() && !equalNoCase(scope.tables[target].alias, statement_.rowsOf))
        ++target;
      if (target == scope.tables.size())
        writer_.fail(statement_.from[0].position, "the rows to delete are not those of this table");
    } else if (scope.tables.size() > 1) {
      throw Error(err::dbWhichTable,
                  "DELETE with several tables names the one that loses rows: DELETE t.* FROM ...");
    }
    const ScopeTable& table = scope.tables[target];
    requireTable(table);
    out_.table = table.definition->name;
    if (scope.tables.size() == 1) {
      out_.sql = "DELETE FROM " + Writer::tableText(table) + conditionOf(from, table);
    } else {
      out_.sql = "DELETE FROM " + quotedName(out_.table) + " WHERE _rowid_ IN (SELECT " + table.prefix +
                 "_rowid_" + from + ")";
    }
  }

  /// The condition of a statement about one table, of its FROM and WHERE.
  static std::string conditionOf(const std::string& from, const ScopeTable& table) {
    return from.substr(std::string(" FROM ").size() + Writer::tableText(table).size());
  }

  static void requireTable(const ScopeTable& table) {
    if (!table.query.empty())
      throw Error(err::dbNotUpdatableQuery,
                  "The rows of a query cannot be changed by a statement: name its table");
  }

  /// The table that all fields of an UPDATE are of.
  std::size_t targetOfUpdate(const Scope& scope) const {
    std::size_t target = scope.tables.size();
    for (const syntax::FieldName& name : statement_.fields) {
      std::size_t of = scope.tables.size();
      for (std::size_t i = 0; i < scope.tables.size(); ++i) {
        const ScopeTable& table = scope.tables[i];
        if (!name.qualifier.empty() && !equalNoCase(name.qualifier, table.alias)) continue;
        if (table.definition->field(name.name) == nullptr) continue;
        if (of != scope.tables.size())
          throw Error(err::dbAmbiguousName, "The field \"" + std::string(name.name) +
                                                "\" could be of more than one table of the statement");
        of = i;
      }
      if (of == scope.tables.size()) continue;  // no field: told of below
      if (target != scope.tables.size() && target != of)
        throw Error(err::dbNotUpdatableQuery, "One UPDATE changes fields of one table");
      target = of;
    }
    if (target == scope.tables.size()) target = 0;
    requireTable(scope.tables[target]);
    return target;
  }

  /// The fields that the statement writes. None may come twice. unknown: the error for a name that is no
  /// field.
  std::vector<const FieldDef*> targetFields(const TableDef& table, int unknown) const {
    std::vector<const FieldDef*> out;
    for (const syntax::FieldName& name : statement_.fields) {
      const bool ofTable = name.qualifier.empty() || equalNoCase(name.qualifier, statement_.target.alias);
      const FieldDef* field = ofTable ? table.field(name.name) : nullptr;
      if (field == nullptr) {
        throw Error(unknown, "Unknown field: the table \"" + table.name + "\" has no field \"" +
                                 std::string(name.name) + "\"");
      }
      if (std::find(out.begin(), out.end(), field) != out.end()) {
        throw Error(err::dbDuplicateDestination, "The field \"" + field->name + "\" is given twice");
      }
      out.push_back(field);
    }
    if (statement_.fields.empty()) {
      for (const FieldDef& field : table.fields) out.push_back(&field);
    }
    for (const FieldDef* field : out) {
      // To set one can tell what others hold, where a unique index refuses a value that is there.
      if (schema_.isSecret(table, *field)) throw secretColumn(*field);
    }
    return out;
  }

  Translation out_;
  const Schema& schema_;
  syntax::Statement statement_;
  Writer writer_;
};

}  // namespace

bool Translation::holdsFor(const std::vector<Value>& literals) const {
  return std::all_of(sameLiterals.begin(), sameLiterals.end(),
                     [&](const auto& pair) { return literals[pair.first] == literals[pair.second]; });
}

Translation translate(std::string_view sql, const Schema& schema) {
  if (isDefinition(sql)) {
    Translation definition;
    definition.kind = Translation::Kind::definition;
    return definition;
  }
  return Translator(sql, schema).run();
}

}  // namespace voxa::dialect
