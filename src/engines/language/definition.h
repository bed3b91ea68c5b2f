#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/schema.h"

namespace voxa {
class Clock;
}

namespace voxa::dialect {

/// What a statement of definitions asks for: CREATE, ALTER or DROP. No engine is known here.
struct Definition {
  enum class Kind : std::uint8_t {
    createTable,
    addToTable,  ///< the fields, indexes and relations of `table`, which exists; `required`
    alterField,  ///< the one field of `table`
    deleteField,
    deleteConstraint,  ///< an index or a relation
    deleteIndex,
    deleteTable,
    createQuery,
    deleteQuery
  };
  Kind kind = Kind::createTable;
  /// The table that the statement is about. An index without a name has none.
  TableDef table;
  /// In which the table is the foreign side. One without a name has none. Where the primary fields are not
  /// given they are "": those of the primary key.
  std::vector<Relation> relations;
  std::vector<std::string> required;  ///< fields that exist and are to be required
  bool givesDefault = false;          ///< alterField: the statement has a default
  bool givesRule = false;             ///< alterField: the statement has a validation rule
  std::string name;                   ///< of the field, constraint, index or query that is deleted
  QueryDef query;                     ///< createQuery
};

/// Whether a text is a statement of definitions, by its first words.
[[nodiscard]] bool isDefinition(std::string_view sql);

/// Reads such a statement; 3075 when it is none. clock: see parseDateLiteral.
[[nodiscard]] Definition parseDefinition(std::string_view sql, const Clock* clock);

}  // namespace voxa::dialect
