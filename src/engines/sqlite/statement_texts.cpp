// From a text to the statement that is prepared for it: names of tables and queries, and statements of one
// shape.

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "engines/sqlite/sqlite_database.h"
#include "platform/text.h"

namespace voxa {

namespace {

std::string_view trimmedName(std::string_view name) {
  while (!name.empty() && (name.front() == ' ' || name.front() == '[')) name.remove_prefix(1);
  while (!name.empty() && (name.back() == ' ' || name.back() == ']')) name.remove_suffix(1);
  return name;
}

bool isOneOf(const dialect::Token& token, std::initializer_list<std::string_view> words) {
  return token.kind == dialect::TokenKind::word &&
         std::any_of(words.begin(), words.end(),
                     [&](std::string_view word) { return equalNoCase(token.text, word); });
}

/// Whether a source can only be a name: one word that begins no statement, or a text in brackets.
bool isBareName(std::string_view source) {
  dialect::Lexer lexer(source);
  dialect::Token token;
  dialect::Token behind;
  lexer.next(token);
  lexer.next(behind);
  if (behind.kind != dialect::TokenKind::end) return false;
  return token.kind == dialect::TokenKind::bracketed ||
         (token.kind == dialect::TokenKind::word &&
          !isOneOf(token, {"select", "insert", "update", "delete", "parameters"}));
}

/// The prepared statement of a scanned source; null when its literals need another translation.
Prepared* findPrepared(StatementCache& translated, const dialect::Scanned& scanned) {
  Prepared* found = translated.find(scanned.key);
  return found != nullptr && found->translation->holdsFor(scanned.literals) ? found : nullptr;
}

}  // namespace

std::optional<std::string> SqliteDatabase::textOfName(std::string_view name) {
  OpenFile& open = opened();
  open.catalog.refresh();
  const std::string_view plain = trimmedName(name);
  if (const TableDef* table = open.catalog.table(plain)) return "SELECT * FROM [" + table->name + "]";
  return open.catalog.queryText(plain);
}

bool SqliteDatabase::isTable(std::string_view source) {
  OpenFile& open = file();
  open.catalog.refresh();
  return open.catalog.table(trimmedName(source)) != nullptr;
}

Prepared SqliteDatabase::translate(std::string_view sql) {
  OpenFile& open = file();
  open.catalog.refresh();
  auto translation = std::make_shared<const dialect::Translation>(dialect::translate(sql, open.catalog));
  Statement statement = open.connection.prepareForSchema(translation->sql);
  return {std::move(translation), std::move(statement)};
}

Prepared& SqliteDatabase::translateScanned(std::string_view sql) {
  Prepared made = translate(sql);
  StatementCache& translated = opened().translated;
  if (Prepared* former = translated.find(scanned_.key)) return *former = std::move(made);
  return translated.add(scanned_.key, std::move(made));
}

Prepared& SqliteDatabase::prepared(std::string_view source) {
  OpenFile& open = file();
  std::optional<ReadTogether> look;  // what is read of the file for a new text
  std::optional<Error> unscannable;
  try {
    dialect::scan(source, scanned_, &session_->clock);
    if (Prepared* found = findPrepared(open.translated, scanned_)) return *found;
  } catch (const Error& error) {
    unscannable = error;  // a name may contain what a statement may not
  }
  auto name = open.names.find(std::string(source));
  if (name == open.names.end()) {
    look.emplace(open.connection);
    std::optional<std::string> text = textOfName(source);
    if (!text) {
      if (unscannable) throw *unscannable;
      if (isBareName(source)) {
        throw Error(err::dbUnknownTable,
                    "There is no table or query \"" + std::string(trimmedName(source)) + "\"");
      }
      return translateScanned(source);
    }
    name = open.names.emplace(source, std::move(*text)).first;
  }
  dialect::scan(name->second, scanned_, &session_->clock);
  if (Prepared* found = findPrepared(open.translated, scanned_)) return *found;
  if (!look) look.emplace(open.connection);
  return translateScanned(name->second);
}

QueryInfo SqliteDatabase::describe(std::string_view source) {
  return session_->guarded([&] {
    const dialect::Translation& translation = *prepared(source).translation;
    using Kind = dialect::Translation::Kind;
    QueryInfo info;
    switch (translation.kind) {
      case Kind::select:
        if (translation.unites) info.kind = QueryInfo::Kind::unite;
        break;
      case Kind::insert:
        info.kind = QueryInfo::Kind::append;
        break;
      case Kind::update:
        info.kind = QueryInfo::Kind::update;
        break;
      case Kind::remove:
        info.kind = QueryInfo::Kind::remove;
        break;
      case Kind::into:
        info.kind = QueryInfo::Kind::makeTable;
        break;
      case Kind::definition:
        info.kind = QueryInfo::Kind::definition;
        break;
    }
    info.parameters = translation.parameters;
    info.declared = translation.declared;
    info.columns = translation.columns;
    return info;
  });
}

}  // namespace voxa
