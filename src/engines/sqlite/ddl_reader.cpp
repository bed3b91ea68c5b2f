#include <algorithm>
#include <charconv>

#include "engines/sqlite/ddl.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::ddl {

namespace {

/// Reads the text that ddl_writer.cpp made, and what SQLite makes of it when a column is added.
class Reader {
 public:
  explicit Reader(std::string_view sql) : rest_(sql) { advance(); }

  /// Takes the word, in any case, when it comes next.
  bool take(std::string_view word) {
    if (kind_ != Kind::word || !equalNoCase(token_, word)) return false;
    advance();
    return true;
  }
  void need(std::string_view word) {
    if (!take(word)) fail();
  }
  std::string name() { return taken(Kind::name); }
  std::string word() { return taken(Kind::word); }
  [[nodiscard]] bool atName() const { return kind_ == Kind::name; }
  [[nodiscard]] bool atEnd() const { return kind_ == Kind::end; }

  std::vector<std::string> names() {
    std::vector<std::string> list;
    need("(");
    do list.push_back(name());
    while (take(","));
    need(")");
    return list;
  }

  /// Reads the literal behind DEFAULT as a value of the field's type.
  Value literal(const FieldDef& field) {
    if (kind_ == Kind::text) return convertForField(taken(Kind::text), field.type, field.size);
    std::string text = take("-") ? "-" : "";
    text += word();
    if (field.type == DataType::Boolean) {
      if (equalNoCase(text, "FALSE")) return false;
      return text == "0" ? Value() : Value(true);
    }
    double number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size()) fail();
    if (field.type == DataType::Date) return DateTime{number};
    return convertForField(number, field.type, field.size);
  }

  /// Skips a condition in parentheses.
  void skipParentheses() {
    need("(");
    for (int depth = 1; depth > 0; advance()) {
      if (kind_ == Kind::end) fail();
      if (kind_ != Kind::word) continue;
      if (token_ == "(") ++depth;
      if (token_ == ")" && --depth == 0) break;
    }
    advance();
  }

  [[noreturn]] static void fail() {
    throw Error(err::dbNotADatabase, "The definition of a table in the file is not one of this system");
  }

 private:
  enum class Kind { word, name, text, end };  ///< a number and a single mark are words, too

  static bool isWordCharacter(char c) {
    return c == '_' || c == '.' || static_cast<unsigned char>(c) >= 0x80 || (c >= '0' && c <= '9') ||
           (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  }

  std::string taken(Kind kind) {
    if (kind_ != kind) fail();
    std::string text = token_;
    advance();
    return text;
  }

  void quoted(char mark) {
    token_.clear();
    for (std::size_t i = 1; i < rest_.size(); ++i) {
      if (rest_[i] == mark) {
        if (i + 1 == rest_.size() || rest_[i + 1] != mark) {
          rest_.remove_prefix(i + 1);
          return;
        }
        ++i;
      }
      token_ += rest_[i];
    }
    fail();
  }

  void advance() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
    if (rest_.empty()) {
      kind_ = Kind::end;
      return;
    }
    if (rest_.front() == '"' || rest_.front() == '\'') {
      kind_ = rest_.front() == '"' ? Kind::name : Kind::text;
      return quoted(rest_.front());
    }
    kind_ = Kind::word;
    std::size_t length = 0;
    while (length < rest_.size() && isWordCharacter(rest_[length])) {
      // The sign of an exponent is part of the number.
      const bool exponent = (rest_[length] == 'e' || rest_[length] == 'E') && rest_[0] >= '0' &&
                            rest_[0] <= '9' && length + 1 < rest_.size() &&
                            (rest_[length + 1] == '-' || rest_[length + 1] == '+');
      length += exponent ? 2 : 1;
    }
    token_ = rest_.substr(0, std::max<std::size_t>(length, 1));
    rest_.remove_prefix(token_.size());
  }

  std::string_view rest_;
  Kind kind_ = Kind::end;
  std::string token_;
};

DataType readType(Reader& reader, FieldDef& field) {
  const std::string word = reader.word();
  if (equalNoCase(word, "INTEGER")) return DataType::Long;
  const auto* found = std::find_if(std::begin(typeWords), std::end(typeWords),
                                   [&](const TypeWord& t) { return equalNoCase(t.word, word); });
  if (found == std::end(typeWords)) Reader::fail();
  if (greatestSize(found->type) > 0) {
    reader.need("(");
    const std::string digits = reader.word();
    (void)std::from_chars(digits.data(), digits.data() + digits.size(), field.size);
    reader.need(")");
  }
  return found->type;
}

void readColumn(Reader& reader, Table& table) {
  FieldDef field;
  field.name = reader.name();
  field.type = readType(reader, field);
  field.allowZeroLength = isText(field.type);
  std::string constraint;
  for (;;) {
    if (reader.take("COLLATE")) {
      (void)reader.word();
    } else if (reader.take("CONSTRAINT")) {
      constraint = reader.name();
      continue;
    } else if (reader.take("NOT")) {
      reader.need("NULL");
      if (constraint == required) field.required = true;
      if (constraint.starts_with(requiredBy))
        table.requiredBy.push_back(constraint.substr(requiredBy.size()));
      if (constraint.starts_with(primaryBy)) {
        table.primaryBy.push_back(constraint.substr(primaryBy.size()));
        table.keyApart = true;
      }
    } else if (reader.take("DEFAULT")) {
      field.defaultValue = reader.literal(field);
    } else if (reader.take("CHECK")) {
      reader.skipParentheses();
      if (const auto text = ruleOfCheck(constraint)) {
        field.validationRule = *text;
      } else {
        field.allowZeroLength = false;
      }
    } else if (reader.take("PRIMARY")) {
      reader.need("KEY");
      reader.need("AUTOINCREMENT");
      field.autoIncrement = true;
      if (constraint != numbered)
        table.definition.indexes.push_back({constraint, {field.name}, true, true, true});
    } else {
      break;
    }
    constraint.clear();
  }
  table.definition.fields.push_back(std::move(field));
}

bool readCascade(Reader& reader, std::string_view event) {
  reader.need("ON");
  reader.need(event);
  if (reader.take("CASCADE")) return true;
  reader.need("RESTRICT");
  return false;
}

void readTableConstraint(Reader& reader, Table& table) {
  const std::string name = reader.name();
  if (reader.take("PRIMARY")) {
    reader.need("KEY");
    table.definition.indexes.push_back({name, reader.names(), true, true, true});
    return;
  }
  reader.need("FOREIGN");
  reader.need("KEY");
  Relation relation;
  relation.name = name;
  relation.foreignTable = table.definition.name;
  const std::vector<std::string> foreign = reader.names();
  reader.need("REFERENCES");
  relation.table = reader.name();
  const std::vector<std::string> primary = reader.names();
  if (primary.size() != foreign.size()) Reader::fail();
  for (std::size_t i = 0; i < primary.size(); ++i) relation.fields.emplace_back(primary[i], foreign[i]);
  relation.cascadeUpdate = readCascade(reader, "UPDATE");
  relation.cascadeDelete = readCascade(reader, "DELETE");
  table.relations.push_back(std::move(relation));
}

}  // namespace

Table readTable(std::string_view sql) {
  Reader reader(sql);
  Table table;
  reader.need("CREATE");
  reader.need("TABLE");
  table.definition.name = reader.name();
  reader.need("(");
  do {
    if (reader.take("CONSTRAINT")) {
      readTableConstraint(reader, table);
    } else {
      readColumn(reader, table);
    }
  } while (reader.take(","));
  reader.need(")");
  return table;
}

std::optional<IndexDef> readIndex(std::string_view sql, const Table& table) {
  Reader reader(sql);
  IndexDef index;
  reader.need("CREATE");
  index.unique = reader.take("UNIQUE");
  reader.need("INDEX");
  index.name = reader.name();
  reader.need("ON");
  (void)reader.name();
  index.fields = reader.names();
  index.name.erase(0, index.name.find('.') + 1);
  if (index.name.find('.') != std::string::npos) return std::nullopt;
  const auto listed = [&](const std::vector<std::string>& names) {
    return std::find(names.begin(), names.end(), index.name) != names.end();
  };
  index.primary = listed(table.primaryBy);
  index.required = index.primary || listed(table.requiredBy);
  return index;
}

std::optional<std::string> ruleOfCheck(std::string_view constraintName) {
  const std::size_t dot = constraintName.find('.');
  if (dot == std::string_view::npos || constraintName.substr(dot, rule.size()) != rule) return std::nullopt;
  return std::string(constraintName.substr(dot + rule.size()));
}

}  // namespace voxa::ddl
