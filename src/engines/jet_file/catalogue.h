#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/database/schema.h"

namespace voxa::jet {

class Stream;

/// What a file holds but for its rows.
struct Catalogue {
  std::vector<TableDef> tables;  ///< in the order of the file
  std::vector<Relation> relations;
  std::vector<QueryDef> queries;
  std::vector<std::string> notes;  ///< what could not be taken over, and why
  bool damaged = false;            ///< some of that could once be read

  /// The table of that name in any case; nullptr when there is none.
  [[nodiscard]] const TableDef* table(std::string_view name) const;
};

/// Reads what the reader program sends for "catalogue". Errors: those of Stream.
[[nodiscard]] Catalogue readCatalogue(Stream& stream);

}  // namespace voxa::jet
