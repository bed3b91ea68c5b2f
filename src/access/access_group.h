#pragma once

#include <cstdint>
#include <string>

#include "access/acc_group_reader.h"
#include "app/table.h"

namespace voxa {

/// Access groups: where and when their cards open. Table "AccessGroups"; group 0 is the default group. With
/// it goes the link table of readers and weekly programs (AccGroupReader), which is built by the same calls.
class AccessGroup : public Table {
 public:
  explicit AccessGroup(Library& library) : Table(library, "AccessGroups"), links_(library) {}

  [[nodiscard]] std::string DefaultName();  ///< name of group 0
  std::int16_t getFreeId();                 ///< first free `Id`
  /// Group by name; -1 and "msgCantFindAccessGroup" when there is none.
  std::int16_t getId(const std::string& Name);

  std::int16_t create() override;  ///< builds both tables
  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;
  void insertDefaultRecs() override;

 private:
  AccGroupReader links_;
};

}  // namespace voxa
