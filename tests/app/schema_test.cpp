// What a new installation is made of, compared whole with docs/tables.md: the first three cells of its rows.

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>

#include "access/badge_format.h"
#include "controllers/ledger.h"
#include "support/installation_test.h"
#include "work/cards.h"
#include "work/stations.h"

namespace voxa {
namespace {

std::string row(const std::string& name, const std::string& second, const std::string& third) {
  return "| `" + name + "` | " + second + " | " + third + " |\n";
}

std::string row(const FieldDef& field, const std::vector<IndexDef>& indexes) {
  using enum DataType;
  static const std::map<DataType, std::string> types = {
      {Boolean, "Boolean"}, {Byte, "Byte"}, {Integer, "Integer"}, {Long, "Long"},
      {Date, "Date"},       {Text, "Text"}, {Memo, "Memo"}};
  std::string more = field.defaultValue.isNull() ? "" : "; default " + field.defaultValue.toText();
  if (field.required) more += "; required";
  if ((field.type == Text || field.type == Memo) && !field.allowZeroLength) more += "; no empty text";
  if (field.autoIncrement) more += "; counted";
  if (!field.validationRule.empty()) more += "; " + field.validationRule;
  for (const IndexDef& index : indexes) {
    const auto at = std::find(index.fields.begin(), index.fields.end(), field.name);
    if (at == index.fields.end()) continue;
    const auto place = index.fields.size() > 1 ? " " + std::to_string(at - index.fields.begin() + 1) : "";
    more += "; index " + index.name + place + (index.primary ? ": primary" : index.unique ? ": unique" : "");
    if (index.required && !index.primary) more += ", required";
  }
  return row(field.name, types.at(field.type) + (field.size == 0 ? "" : " " + std::to_string(field.size)),
             more.empty() ? more : more.substr(2));
}

std::string rowsOf(const std::string& file, const Database& database) {
  std::string all = "## `" + file + "`\n";
  for (const std::string& name : database.tableNames()) {
    const TableDef& table = database.tableDef(name);
    all += "### `" + name + "`\n";
    for (const FieldDef& field : table.fields) all += row(field, table.indexes);
  }
  for (const Relation& of : database.relations()) {
    std::string joined;
    for (const auto& [primary, foreign] : of.fields)
      joined += " and " + of.foreignTable + "." + foreign + " = " + of.table + "." + primary;
    const std::string updates = of.cascadeUpdate ? "updates " : "";
    all += row(of.name, joined.substr(5), updates + (of.cascadeDelete ? "deletes" : ""));
  }
  for (const QueryDef& query : database.queries()) all += row(query.name, query.sql, "");
  return all;
}

class SchemaTest : public test::InstallationTest {};

TEST_F(SchemaTest, OfANewInstallation) {
  createInstallation();
  glob->QDB().BadgeFormat().CreateTable();
  const std::string number = std::to_string(addCard(*library, {.name = "Ann", .code = "1", .group = "0"}));
  changeCard(*library, number, {.name = "Anna"});
  changeStation(*library, "Local", {.name = "Line"});
  library->ledger().provide();
  restart();  // the definitions are what the files say, not what made them
  std::string made;
  for (const char* file : {"KRV.mdb", "Journal.MDB", "I18N.MDB", "Ledger.MDB"})
    made += rowsOf(file, *engine->open(file));
  const std::regex cells("^(###? `.*|\\| `[^|]*\\|[^|]*\\|[^|]*\\|).*");
  std::ifstream page(TABLES);
  std::string told;
  for (std::string line; std::getline(page, line);)
    told += std::regex_replace(line, cells, "$1\n", std::regex_constants::format_no_copy);
  EXPECT_EQ(told, made);
}

}  // namespace
}  // namespace voxa
