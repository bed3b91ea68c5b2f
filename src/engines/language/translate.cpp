#include <algorithm>
#include <optional>

#include "engines/language/dialect.h"
#include "engines/language/parser.h"
#include "engines/language/writer.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::dialect {

namespace {

class Translator {
 public:
  Translator(std::string_view sql, const Schema& schema)
      : statement_(Parser(sql).statement()), writer_(sql, schema, statement_.parameters, out_.slots) {}

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
    out_.sameLiterals = writer_.sameLiterals();
    return std::move(out_);
  }

 private:
  void select() {
    out_.kind = Translation::Kind::select;
    Writer::Query query = writer_.select(*statement_.select, nullptr);
    std::vector<std::string> columns = query.columns();
    for (std::size_t i = 0; i < query.items.size(); ++i) {
      const Term& item = query.items[i];
      FieldDef& column = out_.columns.emplace_back();
      if (item.field != nullptr) {
        column = *item.field;
      } else {
        column.type = item.type.value_or(DataType::Text);
      }
      column.name = query.names[i];
      out_.stored.push_back(item.field != nullptr);
    }
    if (query.scope.tables.size() == 1 && !query.distinct && !query.grouped) {
      const ScopeTable& table = query.scope.tables[0];
      out_.table = table.definition->name;
      for (const Term& item : query.items) {
        out_.sourceFields.push_back(item.field != nullptr ? item.field->name : "");
      }
      columns.insert(columns.begin(), table.prefix + "_rowid_");
    }
    out_.sql = query.text(columns);
  }

  void insert() {
    out_.kind = Translation::Kind::insert;
    Scope scope;
    const TableDef& table = writer_.addTable(statement_.target, scope);
    out_.table = table.name;
    std::optional<Writer::Query> query;
    if (statement_.select) query = writer_.select(*statement_.select, nullptr);
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
    const TableDef& table = writer_.addTable(statement_.target, scope);
    out_.table = table.name;
    out_.sql = "UPDATE " + Writer::tableText(scope.tables[0]) + " SET ";
    const std::vector<const FieldDef*> fields = targetFields(table, err::dbTooFewParameters);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const std::string value = writer_.stored(*statement_.values[i], *fields[i], scope);
      out_.sql += (i > 0 ? ", " : "") + quotedName(fields[i]->name) + " = " + value;
      out_.updatedFields.push_back(fields[i]->name);
    }
    where(scope);
  }

  void remove() {
    out_.kind = Translation::Kind::remove;
    Scope scope;
    out_.table = writer_.addTable(statement_.target, scope).name;
    out_.sql = "DELETE FROM " + Writer::tableText(scope.tables[0]);
    where(scope);
  }

  void where(Scope& scope) {
    if (statement_.where) out_.sql += " WHERE " + writer_.condition(*statement_.where, scope);
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
    return out;
  }

  Translation out_;
  syntax::Statement statement_;
  Writer writer_;
};

}  // namespace

bool Translation::holdsFor(const std::vector<Value>& literals) const {
  return std::all_of(sameLiterals.begin(), sameLiterals.end(),
                     [&](const auto& pair) { return literals[pair.first] == literals[pair.second]; });
}

Translation translate(std::string_view sql, const Schema& schema) {
  return Translator(sql, schema).run();
}

}  // namespace voxa::dialect
