#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>

#include "engines/language/definition.h"
#include "engines/language/parser.h"
#include "engines/language/type_words.h"
#include "engines/language/words.h"
#include "platform/text.h"

namespace voxa::dialect {

namespace {

using Kind = Definition::Kind;

class DefinitionParser : private Parser {
 public:
  DefinitionParser(std::string_view sql, const Clock* clock) : Parser(sql), clock_(clock) {}

  Definition run() {
    if (skipWord("create")) {
      create();
    } else if (skipWord("alter")) {
      alter();
    } else {
      expectWord("drop", "CREATE, ALTER or DROP");
      drop();
    }
    skipSymbol(';');
    if (current().kind != TokenKind::end) fail("the end of the statement is missing");
    return std::move(out_);
  }

 private:
  void create() {
    if (skipWord("table")) {
      out_.table.name = name("the name of the new table");
      expectSymbol('(', "an opening parenthesis");
      parts();
      expectSymbol(')', "a closing parenthesis");
    } else if (skipWord("view")) {
      createView();
    } else if (skipWord("procedure") || skipWord("proc")) {
      createProcedure();
    } else {
      createIndex();
    }
  }

  void alter() {
    expectWord("table", "TABLE behind ALTER");
    out_.table.name = name("the name of a table");
    if (skipWord("add")) {
      out_.kind = Kind::addToTable;
      if (!atWord("constraint")) skipWord("column");
      parts();
    } else if (skipWord("alter")) {
      skipWord("column");
      out_.kind = Kind::alterField;
      field();
      if (!out_.table.indexes.empty() || !out_.relations.empty())
        fail("a constraint is added by ALTER TABLE ... ADD CONSTRAINT");
    } else {
      expectWord("drop", "ADD, ALTER or DROP");
      const bool constraint = skipWord("constraint");
      out_.kind = constraint ? Kind::deleteConstraint : Kind::deleteField;
      if (!constraint) skipWord("column");
      out_.name = name(constraint ? "the name of a constraint" : "the name of a field");
    }
  }

  void drop() {
    if (skipWord("table")) {
      out_.kind = Kind::deleteTable;
      out_.table.name = name("the name of a table");
    } else if (skipWord("index")) {
      out_.kind = Kind::deleteIndex;
      out_.name = name("the name of an index");
      expectWord("on", "ON, with the table of the index,");
      out_.table.name = name("the name of a table");
    } else {
      if (!skipWord("view") && !skipWord("procedure") && !skipWord("proc"))
        fail("what to drop is TABLE, INDEX, VIEW or PROCEDURE");
      out_.kind = Kind::deleteQuery;
      out_.name = name("the name of a query");
    }
  }

  /// Fields and constraints, with commas between.
  void parts() {
    do {
      if (atWord("constraint") || atConstraint()) {
        tableConstraint();
      } else {
        field();
      }
    } while (skipSymbol(','));
  }

  /// Whether a constraint without a name begins here. A field may be called as its first word.
  [[nodiscard]] bool atConstraint() const {
    const auto followedBy = [&](std::string_view word) {
      return following().kind == TokenKind::word && isWord(following().text, word);
    };
    return ((atWord("primary") || atWord("foreign")) && followedBy("key")) ||
           (atWord("unique") && following().symbol == '(') || (atWord("not") && followedBy("null"));
  }

  std::string optionalName() {
    return std::string(skipWord("constraint") ? name("the name of the constraint") : "");
  }

  void field() {
    FieldDef& field = out_.table.fields.emplace_back();
    field.name = name("the name of a field");
    const std::string own = field.name;
    type(field);
    if (skipWord("with")) {  // how a text is kept is the engine's matter
      if (!skipWord("compression")) expectWord("comp", "COMPRESSION");
    }
    for (;;) {
      if (skipWord("default")) {
        skipSymbol('=');
        field.defaultValue = constant();
        out_.givesDefault = true;
        continue;
      }
      if (skipWord("disallow")) {
        expectWord("zero", "ZERO LENGTH behind DISALLOW");
        expectWord("length", "LENGTH behind ZERO");
        field.allowZeroLength = false;
        continue;
      }
      if (skipWord("validation")) {
        field.validationRule = text("the rule");
        out_.givesRule = true;
        continue;
      }
      const bool named = atWord("constraint");
      const std::string constraint = optionalName();
      if (skipWord("not")) {
        expectWord("null", "NULL behind NOT");
        field.required = true;
      } else if (!named && skipWord("null")) {
        field.required = false;
      } else if (skipWord("primary")) {
        expectWord("key", "KEY behind PRIMARY");
        index(constraint, {own}, true);
      } else if (skipWord("unique")) {
        index(constraint, {own}, false);
      } else if (atWord("references")) {
        references(constraint, {own});
      } else if (named) {
        failConstraint();
      } else {
        return;
      }
    }
  }

  [[noreturn]] void failConstraint() const {
    fail(atWord("check") ? "CHECK is not part of the language: VALIDATION 'rule' behind a field does it"
                         : "a constraint is PRIMARY KEY, UNIQUE, NOT NULL, FOREIGN KEY or REFERENCES");
  }

  void type(FieldDef& field) {
    const TypeWord* type = current().kind == TokenKind::word ? typeOfWord(current().text) : nullptr;
    if (type == nullptr) {
      for (const std::string_view word : {"guid", "uniqueidentifier", "decimal", "dec", "numeric"}) {
        if (atWord(word)) fail("fields of this type are not kept by this system");
      }
      fail("a field needs a type");
    }
    advance();
    field.type = type->type;
    field.autoIncrement = type->numbered;
    field.allowZeroLength = isText(type->type);
    const bool sized = greatestSize(type->type) > 0;
    if (skipWord("varying") && !sized) fail("VARYING is for texts and bytes");
    if (!skipSymbol('(')) return;
    if (!sized) fail("only a text and BINARY have a size");
    field.size = size();
    expectSymbol(')', "a closing parenthesis");
  }

  int size() {
    constexpr std::size_t digits = 6;
    if (current().kind != TokenKind::integer || current().text.size() > digits) fail("the size is missing");
    const int number = std::atoi(std::string(current().text).c_str());
    if (number == 0) fail("a size is 1 at least");
    advance();
    return number;
  }

  Value constant() {
    const bool negative = skipSymbol('-');
    Value value;
    if (current().isLiteral()) {
      value = literalValue(current(), clock_);
      const auto* whole = std::get_if<std::int32_t>(&value.data());
      const auto* real = std::get_if<double>(&value.data());
      if (negative && whole == nullptr && real == nullptr) fail("a number is missing");
      const bool least = whole != nullptr && *whole == std::numeric_limits<std::int32_t>::min();
      if (negative) value = whole != nullptr && !least ? Value(-*whole) : Value(-value.toDouble());
    } else if (!negative && (atWord("true") || atWord("yes"))) {
      value = true;
    } else if (!negative && (atWord("false") || atWord("no"))) {
      value = false;
    } else if (negative || !atWord("null")) {
      fail("a default is a number, a text, a date, True, False or Null");
    }
    advance();
    return value;
  }

  std::string text(const std::string& what) {
    if (current().kind != TokenKind::text) fail(what + " is missing, as a text in quotes");
    std::string out = literalValue(current(), clock_).toText();
    advance();
    return out;
  }

  void tableConstraint() {
    const std::string constraint = optionalName();
    if (skipWord("primary")) {
      expectWord("key", "KEY behind PRIMARY");
      index(constraint, names(), true);
    } else if (skipWord("unique")) {
      index(constraint, names(), false);
    } else if (skipWord("not")) {
      expectWord("null", "NULL behind NOT");
      for (const std::string& field : names()) require(field);
    } else if (skipWord("foreign")) {
      expectWord("key", "KEY behind FOREIGN");
      if (skipWord("no")) expectWord("index", "INDEX behind NO");
      references(constraint, names());
    } else {
      failConstraint();
    }
  }

  void require(const std::string& field) {
    auto& fields = out_.table.fields;
    const auto own = std::find_if(fields.begin(), fields.end(),
                                  [&](const FieldDef& f) { return equalNoCase(f.name, field); });
    if (own != fields.end()) {
      own->required = true;
    } else {
      out_.required.push_back(field);
    }
  }

  std::vector<std::string> names() {
    std::vector<std::string> list;
    expectSymbol('(', "an opening parenthesis");
    do list.emplace_back(name("the name of a field"));
    while (skipSymbol(','));
    expectSymbol(')', "a closing parenthesis");
    return list;
  }

  void index(const std::string& called, std::vector<std::string> fields, bool primary) {
    out_.table.indexes.push_back({called, std::move(fields), primary, true, primary});
  }

  void references(const std::string& called, const std::vector<std::string>& foreign) {
    Relation& relation = out_.relations.emplace_back();
    relation.name = called;
    relation.foreignTable = out_.table.name;
    expectWord("references", "REFERENCES");
    relation.table = name("the name of a table");
    std::vector<std::string> primary(foreign.size());
    if (atSymbol('(')) primary = names();
    if (primary.size() != foreign.size()) fail("REFERENCES has another number of fields");
    for (std::size_t i = 0; i < foreign.size(); ++i) relation.fields.emplace_back(primary[i], foreign[i]);
    while (skipWord("on")) {
      const bool update = skipWord("update");
      if (!update) expectWord("delete", "UPDATE or DELETE behind ON");
      bool cascade = false;
      if (skipWord("no")) {
        expectWord("action", "ACTION behind NO");
      } else {
        expectWord("cascade", "CASCADE");
        cascade = true;
      }
      (update ? relation.cascadeUpdate : relation.cascadeDelete) = cascade;
    }
  }

  void createIndex() {
    out_.kind = Kind::addToTable;
    IndexDef& made = out_.table.indexes.emplace_back();
    made.unique = skipWord("unique");
    expectWord("index", "TABLE, INDEX, VIEW or PROCEDURE");
    made.name = name("the name of the new index");
    expectWord("on", "ON, with the table of the index,");
    out_.table.name = name("the name of a table");
    expectSymbol('(', "an opening parenthesis");
    do {
      made.fields.emplace_back(name("the name of a field"));
      if (!skipWord("asc")) skipWord("desc");  // an index serves both directions
    } while (skipSymbol(','));
    expectSymbol(')', "a closing parenthesis");
    if (!skipWord("with")) return;
    if (skipWord("primary")) {
      made.primary = made.unique = made.required = true;
    } else if (skipWord("disallow")) {
      expectWord("null", "NULL behind DISALLOW");
      made.required = true;
    } else {  // Nulls are never duplicates here, and cost next to nothing
      expectWord("ignore", "PRIMARY, DISALLOW NULL or IGNORE NULL");
      expectWord("null", "NULL behind IGNORE");
    }
  }

  /// The rest of the statement, without a semicolon at its end.
  std::string_view rest() {
    const std::size_t from = current().position;
    std::size_t to = from;
    while (current().kind != TokenKind::end) {
      if (current().symbol == ';' && following().kind == TokenKind::end) break;
      to = current().position + current().text.size();
      advance();
    }
    return sql().substr(from, to - from);
  }

  void createView() {
    out_.kind = Kind::createQuery;
    out_.query.name = name("the name of the new view");
    std::vector<std::string> columns;
    if (atSymbol('(')) columns = names();
    expectWord("as", "AS");
    if (!atWord("select")) fail("a view is made of a SELECT");
    const std::string_view text = rest();
    const syntax::Statement view = Parser(text).statement();
    if (!view.select->into.empty()) fail("a view makes no table");
    out_.query.sql = columns.empty() ? std::string(text) : renamed(text, *view.select, columns);
  }

  /// The text with other names for its columns.
  std::string renamed(std::string_view text, const syntax::Select& select,
                      const std::vector<std::string>& columns) const {
    if (select.items.size() != columns.size()) fail("the view names another number of fields than SELECT");
    std::string out;
    std::size_t done = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const syntax::SelectItem& item = select.items[i];
      if (item.star) fail("a view that names its fields selects each of them, not *");
      out += std::string(text.substr(done, item.expressionEnd - done)) + " AS [" + columns[i] + "]";
      done = item.end;
    }
    return out += text.substr(done);
  }

  void createProcedure() {
    out_.kind = Kind::createQuery;
    out_.query.name = name("the name of the new procedure");
    std::string parameters;
    if (!atWord("as")) {
      const bool enclosed = skipSymbol('(');
      do {
        const std::size_t from = current().position;
        FieldDef ignored;
        (void)name("the name of a parameter");
        type(ignored);
        const std::size_t to = current().position;
        parameters +=
            (parameters.empty() ? "PARAMETERS " : ", ") + std::string(sql().substr(from, to - from));
      } while (skipSymbol(','));
      if (enclosed) expectSymbol(')', "a closing parenthesis");
      parameters += "; ";
    }
    expectWord("as", "AS");
    if (parameters.empty() && current().kind == TokenKind::text) {
      out_.query.sql = text("the statement");
      return;
    }
    const std::string_view text = rest();
    out_.query.sql = parameters + std::string(text);
    if (parameters.empty() && isDefinition(text)) {
      (void)parseDefinition(text, clock_);
    } else {
      (void)Parser(out_.query.sql).statement();
    }
  }

  const Clock* clock_;
  Definition out_;
};

}  // namespace

bool isDefinition(std::string_view sql) {
  Lexer lexer(sql);
  Token token;
  lexer.next(token);
  if (token.kind != TokenKind::word) return false;
  constexpr std::string_view beginnings[] = {"create", "alter", "drop"};
  if (std::none_of(std::begin(beginnings), std::end(beginnings),
                   [&](std::string_view word) { return isWord(token.text, word); }))
    return false;
  lexer.next(token);  // one word alone is a name
  return token.kind == TokenKind::word;
}

Definition parseDefinition(std::string_view sql, const Clock* clock) {
  return DefinitionParser(sql, clock).run();
}

}  // namespace voxa::dialect
