#pragma once

#include <cstdint>

#include "app/table.h"

namespace voxa {

/// Holidays: the dates on which the holiday program of every weekly program is in force, of one year or of
/// every year. Table "Holidays"; `Id` is the slot on the controllers.
class Holidays : public Table {
 public:
  explicit Holidays(Library& library) : Table(library, "Holidays") {}

  /// First free slot, or -1 when it would exceed 20 (60 with controllers of the newer VRMD1 kind).
  std::int16_t getFreeId(bool withNewVRMD1);

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
};

}  // namespace voxa
