#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "comm/comm_context.h"
#include "platform/notice.h"
#include "tables/table.h"

namespace voxa {

/// Weekly programs: which daily program is in force on each day of the week and on holidays. Table
/// "WeeklyPrograms"; two families, `ProgType` "C" and "E", each with its own numbers; 0 is "always" and never
/// sent.
class WeeklyProgram : public Table {
 public:
  static constexpr const char* tableName = "WeeklyPrograms";

  explicit WeeklyProgram(CommContext& context) : Table(context, tableName), comm_(context) {}

  [[nodiscard]] std::string DefaultName();  ///< name of the first program 0, "" when there is none
  [[nodiscard]] std::string NeverName();    ///< catalogue text of "nameWeeklyProgNever"

  /// First free `ProgNum` of a family, or -1: above 80 for the family "e" (lower-case to the letter), above
  /// 31 for every other.
  std::int16_t getFreeId(const std::string& ProgType);
  /// Name of a program; "" and a message when there is none.
  std::string getName(const std::string& ProgType, std::int16_t ProgNum);
  /// Number of a program; 0 and a message when there is none of that name.
  std::int16_t getProgNum(const std::string& ProgType, const std::string& Name);
  /// Sends one program when its flag, or DLFull in `Params`, says so: "32" (family "C", else "42"), number,
  /// day programs 1 to 7, holiday program, two digits each; followed by the definition of daily program 1
  /// when a day uses it. 0 success, -1 not found, else a communication code or an error's number, which is
  /// shown whatever `Params` says; a failed program keeps its flag. AlreadyComTested: the communication test
  /// is left out when true, and true afterwards.
  std::int16_t download(const std::string& ProgType, std::int16_t ProgNum,
                        ComponentType compType = CTActiveStations, const std::string& compName = "",
                        std::int16_t Params = DLDefault, bool* AlreadyComTested = nullptr);
  /// Marks and sends every program that satisfies `whereExpr` ("" for all); the first non-zero result.
  std::int16_t generalDownload(ComponentType compType = CTActiveStations, const std::string& compName = "",
                               const std::string& whereExpr = "", bool* AlreadyComTested = nullptr);
  // The same two behind a test of the lines: they ask and show nothing.
  std::int16_t send(const std::string& ProgType, std::int16_t ProgNum, const Component& component,
                    std::int16_t Params, const Tell& teller);
  std::int16_t sendAll(const Component& component, const std::string& whereExpr, const Tell& teller);

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;
  void insertDefaultRecs() override;  ///< a failure is raised

 private:
  CommContext& comm_;
};

/// The command lines of a row of the table; raises what makes it a row that no line can hold.
[[nodiscard]] std::vector<std::string> linesOfWeeklyProgram(const Recordset& row);

}  // namespace voxa
