// The order of an index, and rows that are sought by it.

#include <algorithm>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"
#include "engines/sqlite/sqlite_recordset.h"
#include "platform/text.h"

namespace voxa {

const TableDef& SqliteRecordset::requireTable() const {
  if (kind() != RecordsetKind::table)
    throw Error(err::dbNotSupported, "Only rows of table kind have an index: open the table by its name");
  return database().tableDef(rows_->translation().table);
}

const IndexDef& SqliteRecordset::indexDef(std::string_view name) const {
  const TableDef& table = requireTable();
  if (const IndexDef* index = table.index(name)) return *index;
  throw Error(err::dbNoSuchIndex,
              "The table \"" + table.name + "\" has no index \"" + std::string(name) + "\"");
}

const std::string& SqliteRecordset::index() const {
  return database().session().guarded([&]() -> const std::string& {
    (void)requireTable();
    static const std::string none;
    return origin_ ? origin_->index : none;
  });
}

void SqliteRecordset::setIndex(std::string_view name) {
  database().session().guarded([&] {
    (void)requireTable();
    Origin from = origin();
    from.index = name.empty() ? std::string() : indexDef(name).name;
    read(std::move(from));
  });
}

std::string SqliteRecordset::inOrderOf(const std::string& index) const {
  std::string text = "SELECT * FROM [" + rows_->translation().table + "] ORDER BY ";
  for (const std::string& field : indexDef(index).fields) text += "[" + field + "], ";
  text.resize(text.size() - 2);
  return text;
}

bool SqliteRecordset::seek(SeekComparison comparison, const std::vector<Value>& keys) {
  return database().session().guarded([&] {
    const TableDef& table = requireTable();
    if (index().empty()) throw Error(err::dbNoCurrentIndex, "Seek needs an index: set one first");
    const IndexDef& order = indexDef(index());
    if (keys.empty() || keys.size() > order.fields.size())
      throw Error(err::dbInvalidArgument, "Seek takes keys for the first fields of the index \"" +
                                              order.name + "\", which has " +
                                              std::to_string(order.fields.size()));
    constexpr const char* signs[] = {"IS", ">=", ">", "<=", "<"};
    const std::string sign = signs[static_cast<std::size_t>(comparison)];
    const bool equal = comparison == SeekComparison::equal;
    const bool backwards = comparison == SeekComparison::lessOrEqual || comparison == SeekComparison::less;
    std::vector<Value> converted;
    std::string each;
    std::string marks;
    std::string ordering;
    for (std::size_t i = 0; i < order.fields.size(); ++i) {
      const std::string name = ddl::quoteName(order.fields[i]);
      ordering += (i > 0 ? ", " : "") + name + (backwards ? " DESC" : "");
      if (i >= keys.size()) continue;
      if (keys[i].isNull() && !equal)
        throw Error(err::dbInvalidArgument, "A key that is Null can be sought as equal only");
      const DataType type = table.field(order.fields[i])->type;
      // A text that is too long for the field is equal to none, and still lies before or behind others.
      converted.push_back(convertForField(keys[i], type == DataType::Text ? DataType::Memo : type, 0,
                                          &database().session().clock));
      each += (i == 0 ? "" : equal ? " AND " : ", ") + name + (equal ? " IS ?" : "");
      marks += i == 0 ? "?" : ", ?";
    }
    const std::string condition = equal ? each : "(" + each + ") " + sign + " (" + marks + ")";
    Statement& statement =
        database().rowStatement("SELECT _rowid_ FROM " + ddl::quoteName(table.name) + " WHERE " + condition +
                                " ORDER BY " + ordering + " LIMIT 1");
    for (std::size_t i = 0; i < converted.size(); ++i) statement.bind(static_cast<int>(i) + 1, converted[i]);
    const int code = statement.step();
    if (code == SQLITE_DONE) {
      statement.reset();
      return false;
    }
    if (code != SQLITE_ROW) database().connection().fail(code);
    const std::int64_t number = statement.integer(0);
    statement.reset();
    const std::vector<std::int64_t>& numbers = rows_->numbers();
    const auto found = std::find(numbers.begin(), numbers.end(), number);
    const std::size_t row =
        found != numbers.end() ? static_cast<std::size_t>(found - numbers.begin()) : rows_->add(number);
    moveTo(static_cast<std::ptrdiff_t>(row), 1);
    return true;
  });
}

}  // namespace voxa
