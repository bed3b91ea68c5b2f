#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "comm/inter.h"
#include "files/file_context.h"
#include "platform/notice.h"

namespace voxa {

class Database;
class CommContext;
class SeqFile;
struct DateTime;
struct StationResult;

/// The single road from the data to the door controllers, and the owner of the installation's paths.
///
/// Results are 16-bit: 0 success, -1 inactive station or unknown component, 1 to 16 communication failure,
/// 247 a station-wide date read or send that not every controller answered, others as the driver gave them,
/// 70 another process has the lines, or the number of an unexpected error that was shown. A communication
/// failure, and lines that are in use, show nothing: they add lines to `errorList`, which the operation that
/// caused it reads with popErrorList and shows when it is done.
/// TestSend, updateDBComStatus, getName and ResetRSOUT raise a failure of the database or the file system.
///
/// Who answers, and the questions about it, are in com_status.cpp, the sends to components and of lines in
/// com_fan_out.cpp, a single operation is in com.cpp.
class Com : public Paths {
 public:
  explicit Com(CommContext& context);

  std::string errorList;  ///< error text of the operations since the last popErrorList
  /// 1: the controllers work with four intervals a day (see DailyProgram::provideFourZones).
  std::int16_t pDailyPrograms4Zones = 0;
  std::int16_t CheckDelay = 0;     ///< held for the clients
  bool MustShowComStatus = false;  ///< held for the clients
  bool inhibitCom = false;         ///< Send calls no driver operation and behaves as if it had succeeded
  bool writeLog = false;           ///< every driver call and its result goes to the log

  /// Runs one operation on a controller (address 1 to 16), on each controller of a station (0) or on all of
  /// its line at once (95). Controllers that did not answer at the last check are skipped without a word.
  /// Silence: records nothing in errorList. Autodetection: sends to inactive stations too.
  std::int16_t Send(ComCommandsEnum command, std::int16_t StationID, std::int16_t ControllerAddr = 0,
                    bool Silence = false, bool Autodetection = false);
  /// Whether the controller (0: every controller of the station) may be addressed after the last check.
  [[nodiscard]] bool TestSend(std::int16_t StationID, std::int16_t controllerID);
  /// Whether the station is there and in use; without a word when it is not.
  [[nodiscard]] bool isInUse(std::int16_t StationID);
  /// Writes command lines into the command file and sends it: to a component; to a controller; to one of
  /// which TestSend has just said that it may be addressed, which ends a Reading of the main database before
  /// the driver is called.
  std::int16_t sendLines(const std::vector<std::string>& lines, ComponentType compType,
                         const std::string& compName);
  std::int16_t sendLines(const std::vector<std::string>& lines, const ControllerPlace& place);
  std::int16_t sendLinesTested(const std::vector<std::string>& lines, const ControllerPlace& place);
  /// Refreshes the status of the component's controllers; true when every station could be read and no
  /// controller is marked as not answering.
  bool TestCom(ComponentType compType = CTActiveStations, const std::string& compName = "");
  /// What a test found. broken: it failed of itself, for a station or altogether, which has been told.
  struct Test {
    bool allAnswer = false;  ///< as TestCom returns it
    bool broken = false;
  };
  [[nodiscard]] Test test(const Component& component, const Tell& teller);
  /// Asks whether to abort when controllers of the component are marked as not answering; true: abort.
  bool MsgChooseAbort(ComponentType compType = CTActiveStations, const std::string& compName = "");
  /// Reads the dates of a station's controllers, of all active stations when none is given, and writes what
  /// answered into ComStatus. Only what the driver leaves during the read counts, whatever its result: the
  /// result file of an earlier one is deleted first. A station that cannot be read is told by its name and
  /// stops no other. controllerID changes nothing: a station is read as a whole.
  void UpdateComStatus(std::optional<std::int16_t> StationID = {},
                       std::optional<std::int16_t> controllerID = {});
  /// What came of UpdateComStatus, the worst of all stations.
  enum class Refresh : std::uint8_t {
    read,        ///< the driver has told who answers
    unanswered,  ///< it failed as a whole, which stands in errorList
    broken       ///< nobody could be asked, which has been told
  };
  Refresh refresh(std::optional<std::int16_t> onlyStation, const Tell& teller);
  void updateDBComStatus(std::int16_t StationID, std::int16_t controllerID, std::int16_t Status,
                         DateTime mDate);
  /// A controller has just answered, whatever the last test found: what is sent does not pass it over.
  void noteAnswer(std::int16_t StationID, std::int16_t controllerID);
  /// A controller is not known to answer: what is sent passes it over until a test finds that it does.
  void noteSilence(std::int16_t StationID, std::int16_t controllerID);
  /// "Local Controller 3  -  Front door": station, controller unless 0 or 95, the controller's readers.
  [[nodiscard]] std::string getName(std::int16_t StationID, std::int16_t ControllerAddr);
  /// The same of every controller with a reader, by place.
  [[nodiscard]] std::map<ControllerPlace, std::string> controllerNames();
  /// Whether the last refresh of its station has found that it answers.
  [[nodiscard]] bool hasAnswered(const ControllerPlace& place) const;
  /// A fresh, silent date read of the controller, or of the station without its old result file.
  std::int16_t ResetRSOUT(std::int16_t StationID, std::int16_t ControllerAddr);
  std::string popErrorList();  ///< errorList, which is empty then

  std::int16_t sendToReader(ComCommandsEnum command, const std::string& readerName);
  std::int16_t sendToStation(ComCommandsEnum command, const std::string& stationName);
  std::int16_t sendBrodcast(ComCommandsEnum command);  ///< address 95 of every active station
  std::int16_t sendToActiveStations(ComCommandsEnum command);
  std::int16_t sendToComp(ComCommandsEnum command, ComponentType compType = CTActiveStations,
                          const std::string& compName = "");
  /// Sends one command text; a failure is shown.
  std::int16_t sendCommand(const std::string& commandCode, ComponentType compType = CTActiveStations,
                           const std::string& compName = "");
  /// The same, telling a failure.
  std::int16_t sendCommand(const std::string& commandCode, const Component& component, const Tell& teller);

  /// The component's controllers that the last test does not know to answer: those that did not, and those
  /// with a reader on a station in use of which it says nothing, since the station's read failed as a whole
  /// or left them out. The last may be addressed (TestSend); whoever takes nobody's silence for an answer
  /// counts them in. While communications are inhibited only the first.
  [[nodiscard]] std::vector<ControllerPlace> notKnownToAnswer(ComponentType compType,
                                                              const std::string& compName);
  /// The test that precedes a download or read: tests the component and lets the person abort when a
  /// controller does not answer and communications are not inhibited. False: the person chose to abort.
  /// alreadyTested: may be null; when true nothing is tested; true afterwards unless the person chose to
  /// abort.
  [[nodiscard]] bool readyToSend(ComponentType compType, const std::string& compName, bool* alreadyTested);
  /// Asks what to do about controllers that do not answer: abort, retry or ignore.
  [[nodiscard]] Answer askAboutSilent(const std::vector<ControllerPlace>& silent);

 private:
  static constexpr std::int16_t perController = 247;  // the station result file tells who did not answer

  std::int16_t sendChecked(ComCommandsEnum command, const ControllerPlace& target, bool silence,
                           bool autodetection);
  /// Behind the test whether the target answers. tested: it was made within a Reading, which ends here.
  std::int16_t sendNow(ComCommandsEnum command, const ControllerPlace& target, bool silence,
                       bool autodetection, bool tested);
  std::int16_t sendToAnswering(ComCommandsEnum command, std::int16_t station);
  std::int16_t callDriver(ComCommandsEnum command, const ControllerPlace& target, std::int16_t driverAddress);
  void recordFailure(std::int16_t result, ComCommandsEnum command, const ControllerPlace& target,
                     std::int16_t driverAddress);
  std::int16_t eachActiveStation(ComCommandsEnum command, std::int16_t address);
  Refresh refreshStation(std::int16_t station, const Tell& teller);
  bool readStation(std::int16_t station);
  void storeStation(std::int16_t station, const StationResult& result);
  [[nodiscard]] std::vector<ControllerPlace> notAnswering(ComponentType compType,
                                                          const std::string& compName);
  [[nodiscard]] std::string resultFileName(std::int16_t station) const;
  void removeResultFile(std::int16_t station) const;  // if there is one
  [[nodiscard]] std::shared_ptr<Database> database();
  /// One event into the log, on disk when this returns: a driver that never comes back is in it, and calls
  /// within a call keep their order. withCommands: followed by the command file; last: by an empty line.
  void log(const std::string& event, bool withCommands, bool last);

  CommContext& context_;
  Inter inter_;
  // Who answered the last refresh of a station: ComStatus keeps what an earlier one found of the others.
  std::map<std::int16_t, std::set<std::int16_t>> answering_;
};

}  // namespace voxa
