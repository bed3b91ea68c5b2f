#include "platform/database/schema.h"

#include <algorithm>

#include "platform/text.h"

namespace voxa {

const FieldDef* TableDef::field(std::string_view fieldName) const {
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [&](const FieldDef& f) { return equalNoCase(f.name, fieldName); });
  return found == fields.end() ? nullptr : &*found;
}

}  // namespace voxa
