#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "comm/comm_context.h"
#include "tables/table.h"

namespace voxa {

/// Stations: the communication lines, each a serial port, optionally with a modem and a telephone number.
/// Table "Stations", ids 1 to 998; a new database holds the local station. Not downloaded: no FlagD columns.
///
/// A station that is not found is reported ("msgCantFindStation"), and so is a failing query.
class Station : public Table {
 public:
  static constexpr const char* tableName = "Stations";

  explicit Station(CommContext& context) : Table(context, tableName), comm_(context) {}

  /// First free `Id`, or -1 when it would exceed 998.
  std::int16_t getFreeId();
  /// Id by name, -1 when not found. isActive: receives whether the line is in use, when given.
  std::int16_t getId(const std::string& stationName, bool* isActive = nullptr);
  /// Name by id, "" when not found. noMessage: silent about a station that is not found or has an empty name.
  std::string getName(std::int16_t Id, bool noMessage = false);
  bool isActive(std::int16_t StationID);  ///< false when not found
  /// Name of an active station on a port (counted from 0), or "".
  std::string getActiveStationOnPort(std::int16_t comPort);
  void setActive(std::int16_t Id, bool active);  ///< a failure is raised
  std::string findConnected();                   ///< name of an active station with a telephone number, or ""
  /// Port counted from 1, the controller's address in two digits and the speed, joined: port 0, address 5,
  /// 4800 bit/s give "1054800". "" when not found.
  std::string GetCompar(std::int16_t Id, std::int16_t ControllerAddr);
  /// Writes "S" + three-digit id + ".ini" of the current folder, which configures the driver for the line.
  /// timeOutDelay, Speed: 0 takes the row's. 0, or -1 when the station is not found (the file is empty then).
  /// A failing write is raised, and so are lines that another process has (line_span.h), a text that would
  /// begin another line, and a modem's ini file that is a device or on the network (`err::invalidArgument`);
  /// the file stays as it was then.
  std::int16_t createIniFile(std::int16_t Id, std::int16_t timeOutDelay = 0, std::int32_t Speed = 0);
  /// Deletes that file, if there is one. Raises what keeps it.
  void removeIniFile(std::int16_t Id);
  /// Tells every controller of the line to change to a speed of 4800, 9600, 19200 or 38400 bit/s. Since they
  /// may listen at any other speed, the broadcast is made at each. Leaves the ini file at the last of them:
  /// the caller stores the new `ComSpeed` and calls createIniFile. 0, or the first other result of the
  /// broadcasts, as Com::Send has it; what the line answered is in `Com.errorList`. Raises what createIniFile
  /// does.
  std::int16_t SendSpeed(std::int16_t StationID, std::int32_t Speed);

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  void insertDefaultRecs() override;  ///< a failure is raised

 private:
  std::vector<std::string> iniLines(const Recordset& row, std::int16_t timeOutDelay, std::int32_t Speed);
  std::string getControllerList(std::int16_t Id);
  CommContext& comm_;
};

}  // namespace voxa
