// What a new installation is made of, compared whole: schema.txt, which a person has read.

#include <fstream>
#include <map>
#include <sstream>

#include "access/badge_format.h"
#include "journal/journal.h"
#include "messages/strings.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

std::string text(const FieldDef& field) {
  static const std::map<DataType, const char*> types = {
      {DataType::Boolean, "Boolean"}, {DataType::Byte, "Byte"},     {DataType::Integer, "Integer"},
      {DataType::Long, "Long"},       {DataType::Double, "Double"}, {DataType::Date, "Date"},
      {DataType::Text, "Text"},       {DataType::Memo, "Memo"}};
  std::string line = "  " + field.name + " " + types.at(field.type);
  if (field.size != 0) line += " " + std::to_string(field.size);
  if (!field.defaultValue.isNull()) line += " = '" + field.defaultValue.toText() + "'";
  if (field.required) line += " required";
  if (field.allowZeroLength) line += " empty";
  if (field.autoIncrement) line += " counted";
  if (!field.validationRule.empty()) line += " " + field.validationRule;
  return line + "\n";
}

std::string text(const IndexDef& index) {
  std::string line = "  index " + index.name + " on";
  for (const std::string& field : index.fields) line += " " + field;
  if (index.primary) return line + ", primary\n";
  return line + (index.unique ? ", unique" : "") + (index.required ? ", required" : "") + "\n";
}

std::string text(Database& database) {
  std::string all;
  for (const std::string& name : database.tableNames()) {
    const TableDef& table = database.tableDef(name);
    all += table.name + "\n";
    for (const FieldDef& field : table.fields) all += text(field);
    for (const IndexDef& index : table.indexes) all += text(index);
  }
  for (const Relation& relation : database.relations()) {
    all += "relation " + relation.name + ":";
    for (const auto& [primary, foreign] : relation.fields) {
      all += " " + relation.table + "." + primary + " - " + relation.foreignTable + "." + foreign;
    }
    all += std::string(relation.cascadeUpdate ? ", updates" : "") +
           (relation.cascadeDelete ? ", deletes" : "") + "\n";
  }
  for (const QueryDef& query : database.queries()) all += "query " + query.name + ": " + query.sql + "\n";
  return all;
}

class SchemaTest : public test::InstallationTest {};

TEST_F(SchemaTest, OfANewInstallation) {
  createInstallation();
  glob->QDB().BadgeFormat().CreateTable();
  const std::string made =
      text(db()) + text(*glob->QDB().Journal().DB()) + text(library->Strings().database());
  std::ifstream file(SCHEMA);
  std::stringstream expected;
  expected << file.rdbuf();
  EXPECT_EQ(made, expected.str()) << made;
}

}  // namespace
}  // namespace voxa
