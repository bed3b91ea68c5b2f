#pragma once

#include "tables/table.h"

namespace voxa {

/// Alarms, inputs and outputs of the controllers; `Type` "M" are lift outputs. Table "Alarms", and with it
/// the table "LiftGroup", which says which lift outputs an access group may use. Both are kept, related and
/// created with every new database; what is downloaded of them are the lift outputs, with the cardholders.
class Alarm : public Table {
 public:
  explicit Alarm(TableContext& context) : Table(context, "Alarms") {}

  std::int16_t create() override;  ///< builds both tables
  [[nodiscard]] std::vector<TableDef> definitions() override;
  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;
};

}  // namespace voxa
