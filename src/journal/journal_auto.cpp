// Reading every controller in turn, unattended.

#include <optional>
#include <utility>

#include "access/access_context.h"
#include "comm/com.h"
#include "comm/dialling.h"
#include "comm/station.h"
#include "files/seq_file.h"
#include "journal/journal.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"

namespace voxa {

namespace {

/// Whether a run reads the controller: a reader that is not connected yet has none, and a line that is
/// neither in use nor dialled is nobody's failure.
bool isRead(const Recordset& controller) {
  if (controller.get("ControllerAddress").isNull()) return false;
  const Value phone = controller.get("Phone");
  return controller.get("Active").toBool() || !(phone.isNull() || phone == Value(""));
}

/// "Log.txt": what a run did and when. Closed after each line, so that it can be read meanwhile.
class ProgressLog {
 public:
  explicit ProgressLog(AccessContext& context) : context_(context), file_(context) { file_.Name("Log.txt"); }

  void empty() {
    file_.fopen("w");
    file_.fclose();
  }
  /// One line: date, time, the mnemonic's text (itself while it has none), the detail. Returns the last two.
  std::string write(const char* mnemonic, const std::string& detail = "") {
    std::string text = context_.messages().read(mnemonic);
    if (text.empty()) text = mnemonic;
    text += (detail.empty() ? "" : " ") + detail;
    file_.fopen();
    file_.fprint(formatDateTime(context_.clock().now(), "dd/mm/yyyy hh:nn:ss") + " : " + text);
    file_.fclose();
    return text;
  }

 private:
  AccessContext& context_;
  SeqFile file_;
};

}  // namespace

class Journal::AutoRun {
 public:
  AutoRun(Journal& journal, Run& run)
      : journal_(journal), run_(run), context_(journal.access_), com_(context_.Com()), log_(context_) {}

  std::int16_t readAll(Observer* observer);
  /// Ends the call that is up, if one is; what the driver said.
  std::int16_t disconnect();

 private:
  /// Hangs up, and dials a station that has a telephone number: what the driver said to that.
  std::int16_t begin(std::int16_t station);
  void hangUp();
  std::int16_t dial(std::int16_t station);
  std::int16_t readController(const ControllerPlace& source);
  /// A step of a controller failed, or one of the line (address 0): into the log and the run.
  void fail(const ControllerRead& what, const char* mnemonic, const std::string& why);
  [[nodiscard]] Database& database() const;

  Journal& journal_;
  Run& run_;
  AccessContext& context_;
  Com& com_;
  ProgressLog log_;
  std::optional<std::int16_t> station_;
  std::string stationName_;
  std::optional<std::int16_t> dialled_;
};

Database& Journal::AutoRun::database() const {
  return context_.database();
}

std::int16_t Journal::AutoRun::disconnect() {
  if (!dialled_) return 0;
  const std::int16_t station = *std::exchange(dialled_, std::nullopt);
  return hangUpStation(context_, station);
}

void Journal::AutoRun::fail(const ControllerRead& what, const char* mnemonic, const std::string& why) {
  run_.reads.push_back(what);
  run_.reads.back().fail(log_.write(mnemonic, why));
}

void Journal::AutoRun::hangUp() {
  if (!dialled_) return;
  const ControllerPlace line{*dialled_, CmToEachController};
  log_.write("LogDisconnect", stationName_);
  if (const std::int16_t result = disconnect(); result != 0) {
    fail({line, stationName_, result}, "msgUICantDisconnect", com_.popErrorList());
  } else {
    log_.write("msgUIStationDisconnected");
  }
}

std::int16_t Journal::AutoRun::dial(std::int16_t station) {
  context_.clock().wait(secondsBeforeCall);
  log_.write("LogConnect", stationName_);
  dialled_ = station;
  std::int16_t result = callStation(context_, station, false);
  if (result != 0) {
    (void)com_.popErrorList();  // the second attempt decides
    result = callStation(context_, station, false);
  }
  if (result != 0) {
    fail({{station, CmToEachController}, stationName_, result}, "msgUICantConnect", com_.popErrorList());
  } else {
    log_.write("msgUIStationConnected");
  }
  context_.clock().wait(secondsBehindCall);
  return result;
}

std::int16_t Journal::AutoRun::begin(std::int16_t station) {
  hangUp();
  station_ = station;
  stationName_ = context_.Stations().getName(station);
  const auto dialUp =
      database().openRecordset("Select * from Stations where Phone <>'' and ID = " + std::to_string(station));
  return dialUp->eof() ? std::int16_t{0} : dial(station);
}

std::int16_t Journal::AutoRun::readController(const ControllerPlace& source) {
  const std::string name = stationName_ + " - " + std::to_string(source.address);
  log_.write("LogControllerStart", name);
  const std::size_t before = run_.reads.size();
  const std::int16_t result = journal_.readController(
      source,
      [&](ComCommandsEnum command) {
        if (command == CmResetReadPointer) log_.write("LogReset");
        if (command == cmReadMemory) log_.write("LogReadTrans");
        if (command == CmSendClear) log_.write("LogDelete");
      },
      [&](const char* mnemonic, const std::string& why) {
        fail({source, name}, mnemonic, why);
      });
  log_.write("LogControllerEnd");
  if (run_.reads.size() == before) run_.reads.push_back({source, name});
  for (std::size_t i = before; i < run_.reads.size(); ++i) run_.reads[i].result = result;
  return result;
}

std::int16_t Journal::AutoRun::readAll(Observer* observer) {
  log_.empty();
  log_.write("LogProcessStart");
  const auto controllers = database().openRecordset(
      "SELECT Readers.StationId, Readers.ControllerAddress, Stations.Active, Stations.Phone  "
      "FROM Stations INNER JOIN Readers ON Stations.Id = Readers.StationId  "
      "GROUP BY Readers.StationId, Readers.ControllerAddress, Stations.Active, Stations.Phone "
      "ORDER BY Readers.StationId, Readers.ControllerAddress");
  std::size_t total = 0;
  for (; !controllers->eof(); controllers->moveNext()) total += isRead(*controllers) ? 1 : 0;
  if (total > 0) controllers->moveFirst();
  std::size_t number = 0;
  std::int16_t first = 0;
  for (; !controllers->eof(); controllers->moveNext()) {
    const std::int16_t station = controllers->get("StationId").toInt16();
    const Value controller = controllers->get("ControllerAddress");
    if (controller.isNull()) continue;
    if (isRead(*controllers)) ++number;
    const auto count = [&](std::int16_t result) {
      if (first == 0) first = result;
    };
    if (station != station_) count(begin(station));
    if (!com_.isInUse(station)) continue;  // one that could not be dialled was told
    if (observer != nullptr) observer->progress("Reading controller", number, total);
    count(readController({station, controller.toInt16()}));
  }
  hangUp();
  log_.write("LogProcessEnd");
  return first;
}

Journal::Run Journal::readEach(Observer* observer) {
  Run result;
  AutoRun run(*this, result);
  const auto orTold = [&](const std::function<std::int16_t()>& step) {
    bool broken = true;
    const std::int16_t status = context_.attempt([&] {
      const std::int16_t done = step();
      broken = false;
      return done;
    });
    if (broken) {
      tell(context_, into(result.notices), {"msgCantTransferTransac", "Journal.readAuto"});
    }
    return status;
  };
  result.status = orTold([&] { return run.readAll(observer); });
  // A run that broke off leaves no telephone line open.
  (void)orTold([&] { return run.disconnect(); });
  return result;
}

std::int16_t Journal::readAuto() {
  const Run run = readEach(nullptr);
  context_.show(run.notices);
  return run.status;
}

}  // namespace voxa
