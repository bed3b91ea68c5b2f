#pragma once

#include <cstdint>

#include "app/table.h"

namespace voxa {

/// The links of access groups: which readers a group opens, and by which weekly program. Table
/// "AccGroupReaders"; a reader is linked at most once to a group. Belongs to AccessGroup.
class AccGroupReader : public Table {
 public:
  explicit AccGroupReader(Library& library) : Table(library, "AccGroupReaders") {}

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;
};

}  // namespace voxa
