#pragma once

#include <cstdint>
#include <string>

#include "app/table.h"

namespace voxa {

/// Cardholders: one row per card, known to the controllers by its number and its 8-digit code. Table
/// "Cardholders", with the stored query "AccessGroupReaders" of a group's readers.
class Cardholder : public Table {
 public:
  explicit Cardholder(Library& library) : Table(library, "Cardholders") {}

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;
};

}  // namespace voxa
