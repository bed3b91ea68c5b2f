#include "engines/language/dialect.h"
#include "engines/language/parser.h"
#include "engines/language/writer.h"
#include "platform/text.h"

namespace voxa::dialect {

namespace {

constexpr std::string_view rowName = "vx_row";

/// The tables of the database, and the row.
class WithRow : public Schema {
 public:
  WithRow(const Schema& others, const TableDef& row) : others_(others), row_(row) {}

  [[nodiscard]] const TableDef* table(std::string_view name) const override {
    return equalNoCase(name, rowName) ? &row_ : others_.table(name);
  }
  [[nodiscard]] std::optional<std::string> queryText(std::string_view name) const override {
    return others_.queryText(name);
  }
  [[nodiscard]] bool isSecret(const TableDef& table, const FieldDef& field) const override {
    return &table != &row_ && others_.isSecret(table, field);
  }
  [[nodiscard]] const Clock* clock() const override { return others_.clock(); }

 private:
  const Schema& others_;
  const TableDef& row_;
};

}  // namespace

std::string rowTestText(std::string_view condition, std::string_view ordering, std::string_view table) {
  std::string text = "SELECT 1 FROM [" + std::string(rowName) + "]";
  if (!table.empty()) text += " AS [" + std::string(table) + "]";
  if (!condition.empty()) text += " WHERE (" + std::string(condition) + ")";
  if (!ordering.empty()) text += " ORDER BY " + std::string(ordering);
  return text;
}

RowTest translateRowTest(std::string_view text, const std::vector<FieldDef>& columns, const Schema& schema) {
  const TableDef row{std::string(rowName), columns, {}};
  const WithRow withRow(schema, row);
  const syntax::Statement statement = Parser(text).statement();
  RowTest out;
  Translation& translation = out.translation;
  std::string values;
  for (const FieldDef& column : columns) {
    translation.slots.push_back({.literal = {}, .constant = {}, .parameter = column.name, .convertTo = {}});
    const std::string value = "?" + std::to_string(translation.slots.size());
    values += (values.empty() ? "" : ", ") + (isTextType(column.type) ? collated(value) : value) + " AS " +
              quotedName(column.name);
  }
  Writer writer(text, withRow, translation.parameters, translation.slots);
  const Writer::Query query = writer.select(*statement.select, nullptr);
  std::string keys;
  for (const Writer::Query::Key& key : query.keys) {
    keys += (keys.empty() ? "" : ", ") + key.sql;
    out.descending.push_back(key.descending);
  }
  translation.sql = "WITH " + quotedName(rowName) + " AS (SELECT " + values + ") SELECT " +
                    (keys.empty() ? "1" : keys) + query.rest;
  return out;
}

}  // namespace voxa::dialect
