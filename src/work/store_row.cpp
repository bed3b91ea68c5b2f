#include "work/store_row.h"

#include <algorithm>

#include "platform/database/database.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

namespace {

/// A column as a person calls it.
std::string wordOf(const std::string& column) {
  static const std::pair<const char*, const char*> words[] = {
      {"Name", "name"},         {"CardNum", "number"},    {"CardCode", "code"},
      {"StationId", "station"}, {"ProgType", "family"},   {"ControllerAddress", "controller address"},
      {"Num", "output number"}, {"Position", "position"}, {"Type", "type"},
      {"ProgNum", "number"},    {"Id", "number"}};
  const auto* found = std::find_if(std::begin(words), std::end(words),
                                   [&](const auto& word) { return equalNoCase(word.first, column); });
  return found == std::end(words) ? column : found->second;
}

bool same(const Value& one, const Value& other) {
  return !one.isNull() && !other.isNull() && equalNoCase(one.toText(), other.toText());
}

bool sameFields(const Recordset& one, const Recordset& other, const IndexDef& index) {
  return std::all_of(index.fields.begin(), index.fields.end(),
                     [&](const std::string& field) { return same(one.get(field), other.get(field)); });
}

std::string listed(const std::vector<std::string>& fields) {
  std::string text;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == fields.size() ? " and " : ", ") + wordOf(fields[i]);
  }
  return text;
}

std::string nameOf(const Recordset& row, const IndexDef& primary) {
  std::string number;
  for (const std::string& field : primary.fields) number += row.get(field).toText();
  const Value name = row.get("Name");
  return number + (name.isNull() || name.toText().empty() ? "" : " (" + name.toText() + ")");
}

/// A Refusal when a row of the table has what the row that could not be saved has.
void nameOther(Installation& installation, const Recordset& row, const std::string& table,
               const std::string& noun) {
  const TableDef& definition = installation.database().tableDef(table);
  const auto primary = std::find_if(definition.indexes.begin(), definition.indexes.end(),
                                    [](const IndexDef& index) { return index.primary; });
  if (primary == definition.indexes.end()) return;
  for (const auto other = installation.database().openRecordset("select * from " + table); !other->eof();
       other->moveNext()) {
    if (sameFields(row, *other, *primary)) continue;  // itself
    for (const IndexDef& index : definition.indexes) {
      if (!index.unique || index.primary || !sameFields(row, *other, index)) continue;
      const bool several = index.fields.size() > 1;
      throw Refusal("the " + listed(index.fields) + (several ? " are" : " is") + " already in use: " + noun +
                    " " + nameOf(*other, *primary) + " has " + (several ? "them" : "it"));
    }
  }
}

}  // namespace

void storeRow(Installation& installation, Recordset& row, const std::string& table, const std::string& noun) {
  try {
    row.update();
  } catch (const Error& failure) {
    if (failure.number() == err::dbDuplicate) nameOther(installation, row, table, noun);
    throw;
  }
}

}  // namespace voxa
