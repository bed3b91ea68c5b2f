// Which controllers answer: the table ComStatus, its refresh from the station result files, the question
// whether to go on without those that do not answer.

#include <algorithm>

#include "comm/com.h"
#include "comm/com_status_table.h"
#include "comm/comm_context.h"
#include "comm/station.h"
#include "comm/station_result_file.h"
#include "files/line_span.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/ui/prompts.h"
#include "tables/table.h"

namespace voxa {

namespace {

constexpr std::int16_t answered = 1;
constexpr std::int16_t notAnswered = -1;

FailureMessage cantRefresh() {
  return {"msgUnexpecErr", "Com.UpdateComStatus"};
}

DateTime noDate() {
  return toDateTime({1980, 1, 1, 0, 0, 0});
}

}  // namespace

void createComStatus(Database& database) {
  database.createTable(comStatusDefinition());
}

TableDef comStatusDefinition() {
  TableDef td;
  td.name = "ComStatus";
  addField(td, "StationID", DataType::Integer);
  addField(td, "CtrAddr", DataType::Integer);
  addField(td, "Status", DataType::Integer);
  addField(td, "Date", DataType::Date);
  return td;
}

std::string Com::resultFileName(std::int16_t station) const {
  return Chemin + "\\RS" + zeroPadded(station, 3) + ".OUT";
}

void Com::removeResultFile(std::int16_t station) const {
  const std::string resultFile = resultFileName(station);
  if (files::exists(resultFile)) files::remove(resultFile);
}

bool Com::TestSend(std::int16_t StationID, std::int16_t controllerID) {
  std::string query = "select Status From ComStatus where StationID =" + std::to_string(StationID);
  if (controllerID != CmToEachController) query += " and CtrAddr = " + std::to_string(controllerID);
  const auto rows = database()->openRecordset(query);
  for (; !rows->eof(); rows->moveNext()) {
    if (rows->get(std::size_t{0}) == Value(notAnswered)) return false;
    if (controllerID != CmToEachController) return true;
  }
  return true;
}

void Com::updateDBComStatus(std::int16_t StationID, std::int16_t controllerID, std::int16_t Status,
                            DateTime mDate) {
  const auto rows =
      database()->openRecordset("select * From ComStatus where StationID =" + std::to_string(StationID) +
                                " and CtrAddr = " + std::to_string(controllerID));
  if (rows->eof()) {
    rows->addNew();
    rows->set("StationID", StationID);
    rows->set("CtrAddr", controllerID);
  } else {
    rows->edit();
  }
  rows->set("Status", Status);
  rows->set("Date", mDate);
  rows->update();
}

void Com::noteAnswer(std::int16_t StationID, std::int16_t controllerID) {
  if (TestSend(StationID, controllerID)) return;
  updateDBComStatus(StationID, controllerID, answered, noDate());
  answering_[StationID].insert(controllerID);
}

void Com::noteSilence(std::int16_t StationID, std::int16_t controllerID) {
  if (TestSend(StationID, controllerID)) updateDBComStatus(StationID, controllerID, notAnswered, noDate());
}

void Com::UpdateComStatus(std::optional<std::int16_t> StationID,
                          std::optional<std::int16_t> /*controllerID*/) {
  (void)refresh(StationID, showing(context_));
}

Com::Refresh Com::refresh(std::optional<std::int16_t> onlyStation, const Tell& teller) {
  Refresh worst = Refresh::read;
  const std::int16_t failed = context_.attempt([&] {
    std::string query = "select Id From Stations where Active = true";
    if (onlyStation) {
      query = "Select ID From Stations where ID = " + std::to_string(*onlyStation);
    } else {
      database()->execute("DELETE ComStatus.* FROM ComStatus");
    }
    const auto stations = database()->openRecordset(query);
    for (; !stations->eof(); stations->moveNext()) {
      worst = std::max(worst, refreshStation(stations->get("Id").toInt16(), teller));
    }
  });
  if (failed == 0) return worst;
  tell(context_, teller, cantRefresh());
  return Refresh::broken;
}

Com::Refresh Com::refreshStation(std::int16_t station, const Tell& teller) {
  bool read = false;
  answering_[station].clear();
  const std::int16_t failed = context_.attempt([&] {
    try {
      read = readStation(station);
    } catch (const Error& failure) {
      throw Error(failure.number(), getName(station, CmToEachController) + ": " + failure.description());
    }
  });
  if (failed != 0) {
    tell(context_, teller, cantRefresh());
    return Refresh::broken;
  }
  return read ? Refresh::read : Refresh::unanswered;
}

bool Com::readStation(std::int16_t station) {
  const std::string resultFile = resultFileName(station);
  const bool inUse = isInUse(station);
  StationResult result;
  {
    const LineSpan lines(context_);
    lines.require();
    context_.Stations().createIniFile(station);
    if (!inhibitCom) removeResultFile(station);  // that of an earlier read would pass for the answer
    const std::int16_t sent = Send(CmReadDate, station, CmToEachController);
    if (!inUse) return true;  // which the send has said, and nobody was asked
    const bool leftFile = files::exists(resultFile);
    if (inhibitCom && !leftFile) return true;  // nobody was ever asked
    // A read that failed as a whole, and has said so, tells nothing about single controllers.
    if (!leftFile && sent != 0 && sent != perController) return false;
    result = readStationResult(context_, resultFile);
  }
  storeStation(station, result);
  for (std::int16_t address = 1; address <= StationResult::controllers; ++address) {
    if (result.answered(address)) answering_[station].insert(address);
  }
  return true;
}

void Com::storeStation(std::int16_t station, const StationResult& result) {
  Transaction transaction(context_.engine(), *database());
  for (std::int16_t address = 1; address <= StationResult::controllers; ++address) {
    if (result.answered(address)) {
      updateDBComStatus(station, address, answered, result.date(address).value_or(noDate()));
    } else if (result.failed(address)) {
      updateDBComStatus(station, address, notAnswered, noDate());
    }
  }
  transaction.commit();
}

bool Com::TestCom(ComponentType compType, const std::string& compName) {
  return test({compType, compName}, showing(context_)).allAnswer;
}

Com::Test Com::test(const Component& component, const Tell& teller) {
  const std::string& compName = component.name;
  Refresh read = Refresh::read;
  Test found;
  const std::int16_t failed = context_.attempt([&] {
    requireKnown(component.type);
    std::string query;
    switch (component.type) {
      case CTActiveStations:
        read = refresh({}, teller);
        query =
            "select * From ComStatus, Stations where ComStatus.StationID = Stations.ID and "
            "abs(Stations.Active)=1 ";
        break;
      case CTStation: {
        const auto stations =
            database()->openRecordset("select * From Stations where Stations.Name = '" + compName + "'");
        if (!stations->eof()) read = refresh(stations->get("Id").toInt16(), teller);
        query =
            "select * From ComStatus, Stations where ComStatus.StationID = Stations.ID and "
            "abs(Stations.Active)=1 and Stations.Name = '" +
            compName + "'";
        break;
      }
      case CTReader: {
        const auto readers =
            database()->openRecordset("select * From Readers where  Readers.Name = '" + compName + "'");
        if (!readers->eof()) read = refresh(readers->get("StationID").toInt16(), teller);
        query =
            "select * From ComStatus, Readers where CtrAddr = Readers.ControllerAddress and  "
            "ComStatus.StationID=[Readers].[StationID] and Readers.Name = '" +
            compName + "'";
        break;
      }
    }
    const auto rows = database()->openRecordset(query);
    found.allAnswer = read == Refresh::read;
    for (; !rows->eof() && found.allAnswer; rows->moveNext()) {
      found.allAnswer = rows->get("Status") != Value(notAnswered);
    }
  });
  if (failed != 0) {
    found.allAnswer = false;
    tell(context_, teller, {"msgUnexpecErr", "Com.TestCom"});
  }
  found.broken = failed != 0 || read == Refresh::broken;
  return found;
}

std::vector<ControllerPlace> Com::notAnswering(ComponentType compType, const std::string& compName) {
  std::string query;
  std::string station = "StationID";
  switch (compType) {
    case CTActiveStations:
      query =
          "select * From ComStatus, Stations where ComStatus.StationID = Stations.ID and "
          "abs(Stations.Active)=1 and ComStatus.Status = -1";
      break;
    case CTStation:
      query =
          "select * From ComStatus, Stations where ComStatus.StationID = Stations.ID and "
          "abs(Stations.Active)=1 and Stations.Name = '" +
          compName + "' and ComStatus.Status = -1";
      break;
    case CTReader:
      query =
          "select ComStatus.* From ComStatus, Readers where CtrAddr = Readers.ControllerAddress and "
          "Readers.Name = '" +
          compName + "'";
      break;
  }
  const auto rows = database()->openRecordset(query);
  std::vector<ControllerPlace> found;
  for (; !rows->eof(); rows->moveNext()) {
    found.push_back({rows->get(station).toInt16(), rows->get("CtrAddr").toInt16()});
  }
  return found;
}

Answer Com::askAboutSilent(const std::vector<ControllerPlace>& silent) {
  Messages& strings = context_.messages();
  std::string question = strings.read("msgChooseAbort1");
  for (const ControllerPlace& target : silent) question += "\r\n" + getName(target.station, target.address);
  for (const char* text : {"msgChooseAbort2", "msgChooseAbort3", "msgChooseAbort4"}) {
    question += "\r\n" + strings.read(text);
  }
  return context_.prompts().messageBox(question, style::abortRetryIgnore, strings.read("MDIkrvCaption"));
}

bool Com::MsgChooseAbort(ComponentType compType, const std::string& compName) {
  bool abort = false;
  context_.attempt({"msgUnexpecErr", "Com.MsgChooseAbort"}, [&] {
    requireKnown(compType);
    for (;;) {
      const std::vector<ControllerPlace> silent = notAnswering(compType, compName);
      if (silent.empty()) return;
      const Answer answer = askAboutSilent(silent);
      abort = answer == Answer::abort;
      if (answer != Answer::retry || TestCom(compType, compName)) return;
    }
  });
  return abort;
}

bool Com::hasAnswered(const ControllerPlace& place) const {
  const auto found = answering_.find(place.station);
  return found != answering_.end() && found->second.contains(place.address);
}

std::vector<ControllerPlace> Com::notKnownToAnswer(ComponentType compType, const std::string& compName) {
  const auto concerns = [&](ComponentType type, const Value& name) {
    return compType == CTActiveStations || (compType == type && equalNoCase(name.toText(), compName));
  };
  std::set<ControllerPlace> answering;
  std::set<ControllerPlace> silent;
  std::set<ControllerPlace> found;
  const auto rows = database()->openRecordset(
      "select StationID, CtrAddr, Status, Name from ComStatus, Stations where ComStatus.StationID = "
      "Stations.ID");
  for (; !rows->eof(); rows->moveNext()) {
    const ControllerPlace place{rows->get("StationID").toInt16(), rows->get("CtrAddr").toInt16()};
    if (rows->get("Status") == Value(notAnswered)) {
      silent.insert(place);
      if (concerns(CTStation, rows->get("Name"))) found.insert(place);
    } else if (!answering_.contains(place.station) || answering_[place.station].contains(place.address)) {
      answering.insert(place);
    }
  }
  const auto readers = database()->openRecordset(
      "select StationId, ControllerAddress, Readers.Name as Reader, Stations.Name as Station, Active "
      "from Readers inner join Stations on Readers.StationId = Stations.Id "
      "where ControllerAddress is not null");
  for (; !readers->eof(); readers->moveNext()) {
    const ControllerPlace place{readers->get("StationId").toInt16(),
                                readers->get("ControllerAddress").toInt16()};
    if (!concerns(CTStation, readers->get("Station")) && !concerns(CTReader, readers->get("Reader")))
      continue;
    const bool unknown = !inhibitCom && readers->get("Active").toBool() && !answering.contains(place);
    if (unknown || silent.contains(place)) found.insert(place);
  }
  return {found.begin(), found.end()};
}

bool Com::readyToSend(ComponentType compType, const std::string& compName, bool* alreadyTested) {
  if (alreadyTested != nullptr && *alreadyTested) return true;
  if (!TestCom(compType, compName) && !inhibitCom && MsgChooseAbort(compType, compName)) return false;
  if (alreadyTested != nullptr) *alreadyTested = true;
  return true;
}

}  // namespace voxa
