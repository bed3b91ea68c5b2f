// What a text is: a statement with parameters, a stored query, a table.

#include "engines/dao/statements.h"

#include <algorithm>
#include <iterator>

#include "engines/dao/dao_database.h"
#include "engines/dao/definitions.h"
#include "platform/text.h"

namespace voxa {

namespace dao {

namespace {

std::string_view firstWord(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t\r\n("), text.size());
  text.remove_prefix(begin);
  return text.substr(0, text.find_first_of(" \t\r\n("));
}

/// The text up to `separator` outside of brackets; takes it and the separator off.
std::string_view takeOutsideBrackets(std::string_view& text, char separator) {
  int depth = 0;
  std::size_t at = 0;
  for (; at < text.size() && (depth != 0 || text[at] != separator); ++at) {
    if (text[at] == '[' || text[at] == '(') ++depth;
    if (text[at] == ']' || text[at] == ')') --depth;
  }
  const std::string_view part = text.substr(0, at);
  text.remove_prefix(std::min(at + 1, text.size()));
  return part;
}

bool isDeclaration(std::string_view sql) {
  return equalNoCase(firstWord(sql), "parameters");
}

}  // namespace

bool isStatement(std::string_view text) {
  static constexpr std::string_view words[] = {"select", "insert", "update",     "delete",    "create",
                                               "alter",  "drop",   "parameters", "transform", "table"};
  const std::string_view first = firstWord(text);
  return text.size() > first.size() && std::any_of(std::begin(words), std::end(words),
                                                   [&](std::string_view w) { return equalNoCase(first, w); });
}

void setParameters(const Object& query, const Database::Parameters& parameters) {
  forEach(query.object(Kind::parameters, "Parameters"), [&](const Object& parameter) {
    const std::string name = parameter.text("Name");
    const auto found = std::find_if(parameters.begin(), parameters.end(),
                                    [&](const auto& given) { return equalNoCase(given.first, name); });
    if (found != parameters.end()) parameter.put("Value", found->second);
  });
}

std::size_t declaredParameters(std::string_view sql) {
  if (!isDeclaration(sql)) return 0;
  std::string_view declaration = takeOutsideBrackets(sql, ';');
  std::size_t count = 0;
  for (; !declaration.empty(); ++count) (void)takeOutsideBrackets(declaration, ',');
  return count;
}

QueryInfo::Kind queryKind(std::int32_t type) {
  switch (type) {
    case 32:
      return QueryInfo::Kind::remove;
    case 48:
      return QueryInfo::Kind::update;
    case 64:
      return QueryInfo::Kind::append;
    case 80:
      return QueryInfo::Kind::makeTable;
    case 96:
      return QueryInfo::Kind::definition;
    case 128:
      return QueryInfo::Kind::unite;
    default:  // 0, and 16 of one with columns by values
      return QueryInfo::Kind::select;
  }
}

}  // namespace dao

using dao::Kind;
using dao::Object;

Object DaoDatabase::queryFor(std::string_view source) const {
  if (!dao::isStatement(source)) {
    try {
      return current(Kind::queryDefs, "QueryDefs").item(std::string(source));
    } catch (const Error& error) {
      if (error.number() != err::dbNotInCollection) throw;
    }
  }
  const std::string sql =
      dao::isStatement(source) ? std::string(source) : "SELECT * FROM " + dao::quoted(source);
  return opened().object(Kind::queryDef, "CreateQueryDef", "", sql);
}

QueryInfo DaoDatabase::describe(std::string_view source) {
  return session_->guarded([&] {
    const Object query = queryFor(source);
    QueryInfo info{.kind = dao::queryKind(query.number("Type"))};
    info.declared = dao::declaredParameters(query.text("SQL"));
    dao::forEach(query.object(Kind::parameters, "Parameters"), [&](const Object& parameter) {
      info.parameters.push_back(
          {.name = parameter.text("Name"), .type = dao::typeOf(parameter.number("Type"))});
    });
    if (info.kind == QueryInfo::Kind::select || info.kind == QueryInfo::Kind::unite) {
      dao::forEach(query.object(Kind::fields, "Fields"),
                   [&](const Object& field) { info.columns.push_back(dao::readColumn(field)); });
    }
    return info;
  });
}

std::vector<QueryDef> DaoDatabase::queries() const {
  return session_->guarded([&] {
    std::vector<QueryDef> out;
    dao::forEach(current(Kind::queryDefs, "QueryDefs"), [&](const Object& query) {
      QueryDef found{query.text("Name"), query.text("SQL")};
      if (!found.name.starts_with("~")) out.push_back(std::move(found));  // those are the library's own
    });
    return out;
  });
}

void DaoDatabase::createQuery(const QueryDef& query) {
  session_->guarded([&] {
    if (query.name.empty()) throw Error(err::dbInvalidArgument, "Invalid argument: a query needs a name");
    (void)opened().call("CreateQueryDef", query.name, query.sql);
  });
}

void DaoDatabase::deleteQuery(std::string_view name) {
  session_->guarded([&] { (void)current(Kind::queryDefs, "QueryDefs").call("Delete", std::string(name)); });
}

}  // namespace voxa
