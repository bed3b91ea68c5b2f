#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "comm/comm_context.h"
#include "comm/row_download.h"
#include "platform/notice.h"
#include "tables/table.h"

namespace voxa {

/// Holidays: the dates on which the holiday program of every weekly program is in force, of one year or of
/// every year. Table "Holidays"; `Id` is the slot on the controllers.
class Holidays : public Table {
 public:
  explicit Holidays(CommContext& context) : Table(context, "Holidays"), comm_(context) {}

  /// First free slot, or -1 when it would exceed 20 (60 with controllers of the newer VRMD1 kind).
  /// withNewVRMD1: is not changed.
  std::int16_t getFreeId(bool& withNewVRMD1);
  /// Sends one holiday when its flag, or DLFull in `Params`, says so: "34", slot (two digits), "ddmmyy", the
  /// year 00 meaning every year. The communication is not tested before. 0 success, -1 not found, else a
  /// communication code or an error's number; a failed holiday keeps its flag.
  std::int16_t download(std::int16_t Id, ComponentType compType = CTActiveStations,
                        const std::string& compName = "", std::int16_t Params = DLDefault);
  /// Erases a slot on the controllers of all active stations, after a test of the communication: "34", slot,
  /// "000000". 0 also when the person chose to abort or to go on without controllers that do not answer; else
  /// the line's code or an error's number (shown). Removing the row is the caller's part.
  std::int16_t delete_(std::int16_t Id);
  /// Sends every holiday; the first non-zero result. AlreadyComTested: the communication test is left out
  /// when true.
  std::int16_t generalDownload(ComponentType compType = CTActiveStations, const std::string& compName = "",
                               bool* AlreadyComTested = nullptr);
  // download, and generalDownload behind a test of the lines: they ask and show nothing.
  std::int16_t send(std::int16_t Id, const Component& component, std::int16_t Params, const Tell& teller);
  std::int16_t sendAll(const Component& component, const Tell& teller);

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;

 private:
  [[nodiscard]] RowLines lines();
  CommContext& comm_;
};

/// The command line of a row of the table, as the controllers read it `today`; raises what makes it a row
/// that no line can hold.
[[nodiscard]] std::vector<std::string> linesOfHoliday(const Recordset& row, DateTime today);

}  // namespace voxa
