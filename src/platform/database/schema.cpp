#include "platform/database/schema.h"

#include <algorithm>

#include "platform/text.h"

namespace voxa {

namespace {

template <typename Part>
const Part* named(const std::vector<Part>& parts, std::string_view name) {
  const auto found = std::find_if(parts.begin(), parts.end(),
                                  [&](const Part& part) { return equalNoCase(part.name, name); });
  return found == parts.end() ? nullptr : &*found;
}

}  // namespace

const FieldDef* TableDef::field(std::string_view fieldName) const {
  return named(fields, fieldName);
}

const IndexDef* TableDef::index(std::string_view indexName) const {
  return named(indexes, indexName);
}

void addField(TableDef& td, const std::string& name, DataType type, int size, const Value& defaultValue) {
  FieldDef field;
  field.name = name;
  field.type = type;
  field.size = size;
  field.defaultValue = defaultValue;
  td.fields.push_back(std::move(field));
}

void addIndex(TableDef& td, const std::string& name, std::initializer_list<const char*> fields,
              IndexKind kind) {
  IndexDef index;
  index.name = name;
  index.fields.assign(fields.begin(), fields.end());
  index.primary = kind == IndexKind::primary;
  index.unique = kind != IndexKind::plain;
  index.required = kind == IndexKind::primary || kind == IndexKind::uniqueRequired;
  td.indexes.push_back(std::move(index));
}

}  // namespace voxa
