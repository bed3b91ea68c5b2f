#pragma once

#include <cstdint>
#include <string>

#include "tables/table.h"

namespace voxa {

/// Readers: the doors. A controller is found by its station and its address on that line, and its doors by
/// `Position`. Table "Readers", numbers 1 to 998, one reader per door of a controller, each on an existing
/// station. The lookups report a reader that is not found ("msgCantFindReader") and a failing query.
class Reader : public Table {
 public:
  static constexpr const char* tableName = "Readers";

  explicit Reader(TableContext& context) : Table(context, tableName) {}

  /// First free `Id`, or -1 when it would exceed 998.
  std::int16_t getFreeId();
  /// Station and controller address of a reader, by name or number; 0 when found, else -1.
  std::int16_t getControllerAddr(const std::string& readerName, std::int16_t& StationID,
                                 std::int16_t& ControllerAddr);
  std::int16_t getControllerAddrID(std::int32_t readerId, std::int16_t& StationID,
                                   std::int16_t& ControllerAddr);
  /// Number of the reader at a door, -1 when there is none. noMessage: silent about that.
  std::int16_t getId(std::int16_t StationID, std::int16_t ControllerAddr, std::int16_t readerPos,
                     bool noMessage = false);
  std::int16_t getIdByName(const std::string& Name);             ///< 0, not -1, when there is none
  std::string getName(std::int16_t Id, bool noMessage = false);  ///< "" when there is none

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;

 private:
  std::int16_t controllerOf(const std::string& condition, const Value& what, std::int16_t& StationID,
                            std::int16_t& ControllerAddr);
};

/// Why a reader's controller cannot be addressed by itself, "" when it can. Addresses are 1 to 16; 0 and 95
/// would reach the whole line, and others another reader's controller.
[[nodiscard]] std::string addressFault(const std::string& readerName, const Value& controllerAddress);

}  // namespace voxa
