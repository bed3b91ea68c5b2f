#include "engines/jet_file/catalogue.h"

#include <algorithm>
#include <map>
#include <optional>

#include "engines/jet_file/stored_queries.h"
#include "engines/jet_file/stream.h"
#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::jet {

namespace {

/// A row of a table of the system, by the names of its columns.
class SystemRow {
 public:
  SystemRow(const StreamTable& table, const std::vector<Value>& values) : table_(table), values_(values) {}

  [[nodiscard]] int number(std::string_view column) const {
    const Value& value = at(column);
    if (const auto* whole = std::get_if<std::int32_t>(&value.data())) return *whole;
    if (const auto* small = std::get_if<std::int16_t>(&value.data())) return *small;
    if (const auto* byte = std::get_if<std::uint8_t>(&value.data())) return *byte;
    return 0;
  }
  [[nodiscard]] std::string text(std::string_view column) const {
    const auto* text = std::get_if<std::string>(&at(column).data());
    return text == nullptr ? std::string() : *text;
  }
  [[nodiscard]] std::string bytes(std::string_view column) const {
    const auto* bytes = std::get_if<Bytes>(&at(column).data());
    return bytes == nullptr ? std::string() : bytes->data;
  }

 private:
  [[nodiscard]] const Value& at(std::string_view column) const {
    static const Value missing;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      if (equalNoCase(table_.columns[i].field.name, column)) return values_[i];
    }
    return missing;
  }
  const StreamTable& table_;
  const std::vector<Value>& values_;
};

bool isHidden(std::string_view name) {
  return name.starts_with('~') || toLower(name).starts_with("msys");
}

/// The value that the text of a default is; none for an expression that must be worked out.
std::optional<Value> literal(const std::string& given) {
  std::string text = trimmed(given);
  if (text.starts_with('=')) text = trimmed(text.substr(1));
  if (text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front()) {
    std::string inner;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
      inner += text[i];
      if (text[i] != text.front()) continue;
      if (i + 2 >= text.size() || text[i + 1] != text.front()) return std::nullopt;
      ++i;
    }
    return Value(inner);
  }
  for (const char* word : {"true", "yes", "on"}) {
    if (equalNoCase(text, word)) return Value(true);
  }
  for (const char* word : {"false", "no", "off"}) {
    if (equalNoCase(text, word)) return Value(false);
  }
  if (equalNoCase(text, "null")) return Value();
  if (text.size() >= 2 && text.front() == '#' && text.back() == '#') {
    const auto moment = parseDateLiteral(std::string_view(text).substr(1, text.size() - 2));
    return moment ? std::optional<Value>(*moment) : std::nullopt;
  }
  const auto number = parseNumber(text);
  return number ? std::optional<Value>(*number) : std::nullopt;
}

class CatalogueReader {
 public:
  Catalogue read(Stream& stream) {
    for (Frame frame = stream.next(); frame != Frame::end; frame = stream.next()) {
      // Far more than a file's definitions take, and less than a program that was taken over could send.
      constexpr std::uint64_t most = std::uint64_t{256} * 1024 * 1024;
      if (stream.length() > most)
        throw Error(err::dbNotADatabase, "The database file is damaged: its definitions have no end");
      if (frame == Frame::table && !isHidden(stream.table().name)) addTable(stream.table());
      if (frame == Frame::row) addRow(stream.table(), stream.row());
      if (frame == Frame::note) addNote(stream.note());
    }
    addQueries();
    addRelations();
    return std::move(found_);
  }

 private:
  void note(const std::string& text) { found_.notes.push_back(text); }

  void addNote(const Stream::Told& told) {
    if (isHidden(told.table)) return;
    if (told.note == Note::columnType) {
      note("Column '" + told.column + "' of table '" + told.table +
           "' is not taken over: it has a type without values here");
    } else {
      note("Table '" + told.table + "' is not taken over: its definition is damaged");
      found_.damaged = true;
    }
  }

  void addRow(const StreamTable& table, const std::vector<Value>& values) {
    const SystemRow row(table, values);
    if (equalNoCase(table.name, "MSysObjects")) addObject(row);
    if (equalNoCase(table.name, "MSysQueries")) {
      parts_[row.number("ObjectId")].push_back({row.number("ObjectId"), row.number("Attribute"),
                                                row.number("Flag"), row.text("Expression"), row.text("Name1"),
                                                row.text("Name2"), row.bytes("Order")});
    }
    if (equalNoCase(table.name, "MSysRelationships")) {
      const std::string name = row.text("szRelationship");
      auto relation = std::find_if(relations_.begin(), relations_.end(),
                                   [&](const Stored& stored) { return stored.relation.name == name; });
      if (relation == relations_.end()) {
        relations_.push_back({});
        relation = relations_.end() - 1;
        relation->relation.name = name;
        relation->relation.table = row.text("szReferencedObject");
        relation->relation.foreignTable = row.text("szObject");
        relation->flags = row.number("grbit");
      }
      relation->fields.emplace_back(row.number("icolumn"),
                                    std::pair(row.text("szReferencedColumn"), row.text("szColumn")));
    }
  }

  // Types of objects, as the system's table has them.
  void addObject(const SystemRow& row) {
    constexpr int otherServer = 4;
    constexpr int query = 5;
    constexpr int otherFile = 6;
    const std::string name = row.text("Name");
    if (isHidden(name)) return;
    switch (row.number("Type")) {
      case query:
        queries_.emplace_back(row.number("Id"), name);
        break;
      case otherServer:
      case otherFile:
        note("Table '" + name + "' is not taken over: it is a link to table '" + row.text("ForeignName") +
             "' of " + (row.text("Database").empty() ? "another server" : row.text("Database")));
        break;
      case -32768:
        note("Form '" + name + "' is not taken over");
        break;
      case -32766:
        note("Macro '" + name + "' is not taken over");
        break;
      case -32764:
        note("Report '" + name + "' is not taken over");
        break;
      case -32761:
        note("Module '" + name + "' is not taken over");
        break;
      default:
        break;
    }
  }

  void addTable(const StreamTable& table) {
    TableDef definition{table.name, {}, table.indexes};
    for (const StreamColumn& column : table.columns) {
      FieldDef field = column.field;
      const std::string where = "column '" + field.name + "' of table '" + table.name + "'";
      if (column.randomNumber) {
        if (field.autoIncrement) note("The numbers of " + where + " are not drawn at random here");
      } else if (!column.defaultText.empty() && !field.autoIncrement) {
        setDefault(field, column.defaultText, where);
      }
      definition.fields.push_back(std::move(field));
    }
    if (!table.rowRule.empty()) {
      note("The validation rule of the rows of table '" + table.name +
           "' is not taken over: " + table.rowRule);
    }
    found_.tables.push_back(std::move(definition));
  }

  void setDefault(FieldDef& field, const std::string& text, const std::string& where) {
    try {
      if (const auto value = literal(text)) {
        field.defaultValue = convertForField(*value, field.type, field.size);
        return;
      }
    } catch (const Error&) {
      // It is no value of the field's type: told below.
    }
    note("The default of " + where + " is not taken over: " + text);
  }

  void addQueries() {
    for (auto& [number, name] : queries_) {
      const auto parts = parts_.find(number);
      if (parts == parts_.end()) {
        note("Query '" + name + "' is not taken over: its parts are missing");
        continue;
      }
      ComposedQuery query = composeQuery(std::move(parts->second));
      parts_.erase(parts);
      if (query.sql.empty()) {
        note("Query '" + name + "' is not taken over: " + query.reason);
      } else {
        found_.queries.push_back({name, std::move(query.sql)});
      }
    }
  }

  void addRelations() {
    constexpr int notEnforced = 2;
    constexpr int ofLinks = 4;
    constexpr int cascadeUpdate = 0x100;
    constexpr int cascadeDelete = 0x1000;
    for (Stored& stored : relations_) {
      Relation& relation = stored.relation;
      if (isHidden(relation.table) || isHidden(relation.foreignTable)) continue;
      const TableDef* const table = found_.table(relation.table);
      const TableDef* const foreign = found_.table(relation.foreignTable);
      const std::string what =
          "Relation '" + relation.name + "' of '" + relation.foreignTable + "' to '" + relation.table + "'";
      if ((stored.flags & (notEnforced | ofLinks)) != 0) {
        note(what + " is not taken over: the file does not enforce it");
        continue;
      }
      std::stable_sort(stored.fields.begin(), stored.fields.end(),
                       [](const auto& a, const auto& b) { return a.first < b.first; });
      bool whole = table != nullptr && foreign != nullptr;
      for (auto& [place, pair] : stored.fields) {
        whole = whole && table->field(pair.first) != nullptr && foreign->field(pair.second) != nullptr;
        relation.fields.push_back(std::move(pair));
      }
      if (!whole) {
        note(what + " is not taken over: a table or column of it is missing");
        continue;
      }
      relation.cascadeUpdate = (stored.flags & cascadeUpdate) != 0;
      relation.cascadeDelete = (stored.flags & cascadeDelete) != 0;
      found_.relations.push_back(std::move(relation));
    }
  }

  struct Stored {
    Relation relation;
    int flags = 0;
    std::vector<std::pair<int, std::pair<std::string, std::string>>> fields;
  };
  Catalogue found_;
  std::vector<std::pair<int, std::string>> queries_;
  std::map<int, std::vector<QueryPart>> parts_;
  std::vector<Stored> relations_;
};

}  // namespace

const TableDef* Catalogue::table(std::string_view name) const {
  const auto found = std::find_if(tables.begin(), tables.end(),
                                  [&](const TableDef& table) { return equalNoCase(table.name, name); });
  return found == tables.end() ? nullptr : &*found;
}

Catalogue readCatalogue(Stream& stream) {
  return CatalogueReader().read(stream);
}

}  // namespace voxa::jet
