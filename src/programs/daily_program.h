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

/// Daily programs: the time intervals of a day during which access is allowed. Table "DailyPrograms",
/// numbers 0 (never, not sent) to 99; 1 is the whole day. Interval bounds are texts "hh:mm"; an interval
/// "23:59" to "23:59" is empty.
class DailyProgram : public Table {
 public:
  static constexpr const char* tableName = "DailyPrograms";

  explicit DailyProgram(CommContext& context) : Table(context, tableName), comm_(context) {}

  /// First free `Id`, or -1 when it would exceed 99.
  std::int16_t getFreeId();
  /// Sends one program when its flag, or DLFull in `Params`, says so: "31", number, two intervals (four when
  /// `Com.pDailyPrograms4Zones` is 1) of start and end as "hhmm", 23:59 being sent as 2400. 0 success, -1 not
  /// found, else a communication code or an error's number; a failed program keeps its flag.
  /// AlreadyComTested: the communication test is left out when true, and true afterwards.
  std::int16_t download(std::int16_t Id, ComponentType compType = CTActiveStations,
                        const std::string& compName = "", std::int16_t Params = DLDefault,
                        bool* AlreadyComTested = nullptr);
  /// Sends every program; the first non-zero result.
  std::int16_t generalDownload(ComponentType compType = CTActiveStations, const std::string& compName = "",
                               bool* AlreadyComTested = nullptr);
  // The same two behind a test of the lines: they ask and show nothing.
  std::int16_t send(std::int16_t Id, const Component& component, std::int16_t Params, const Tell& teller);
  std::int16_t sendAll(const Component& component, const Tell& teller);

  /// create() with the columns of provideFourZones.
  void createWithFourZones();
  /// Adds the columns of the third and fourth interval, `Start3Interval` to `End4Interval`, where the open
  /// database lacks them; both intervals are empty then. A failure is raised.
  void provideFourZones();

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  void insertDefaultRecs() override;  ///< a failure is raised

 private:
  [[nodiscard]] RowLines lines();
  bool fourZones_ = false;
  CommContext& comm_;
};

/// The command lines of a row of the table; raises what makes it a row that no line can hold. fourZones: of
/// controllers that work with four intervals.
[[nodiscard]] std::vector<std::string> linesOfDailyProgram(const Recordset& row, bool fourZones);

}  // namespace voxa
