#pragma once

#include <cstdint>

#include "tables/table.h"

namespace voxa {

/// The links of access groups: which readers a group opens, and by which weekly program. Table
/// "AccGroupReaders"; a reader is linked at most once to a group. Belongs to AccessGroup.
class AccGroupReader : public Table {
 public:
  explicit AccGroupReader(TableContext& context) : Table(context, "AccGroupReaders") {}

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;
};

}  // namespace voxa
