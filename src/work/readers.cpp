#include "work/readers.h"

#include "comm/com.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "files/conversions.h"
#include "platform/database/database.h"
#include "platform/text.h"
#include "work/card_values.h"
#include "work/group_reach.h"
#include "work/installation.h"
#include "work/links.h"
#include "work/look_up.h"
#include "work/place_history.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::int16_t defaultGroup = 0;
constexpr std::int16_t lastAddress = 16;
constexpr std::int16_t lastPosition = 4;

void requireType(const std::string& type) {
  if (type != "QSX3" && type != "VRMD1") throw Refusal("a controller is a QSX3 or a VRMD1, not " + type);
}

std::int16_t readerPosition(const std::string& text) {
  return numberWithin("the position", text, 1, lastPosition);
}

}  // namespace

std::int16_t controllerAddress(const std::string& text) {
  return numberWithin("the controller's address", text, 1, lastAddress);
}

AddedReader addReader(Installation& installation, const ReaderTexts& texts) {
  const std::int16_t station = stationNamed(installation, texts.station)->get("Id").toInt16();
  const std::int16_t address = controllerAddress(texts.address);
  const std::int16_t position = readerPosition(texts.position);
  requireType(texts.type);
  AddedReader added;
  added.id = installation.Readers().getFreeId();
  if (added.id == -1) throw Refusal("the installation holds all the readers it can (998)");
  added.newController = !isKnownController(installation, station, address, added.id);
  Transaction transaction(installation.engine(), installation.database());
  const auto rows = installation.database().openRecordset("select * from Readers");
  rows->addNew();
  rows->set("Id", added.id);
  rows->set("Name", checkedPlaceName(texts.name));
  rows->set("StationId", station);
  rows->set("ControllerType", texts.type);
  rows->set("ControllerAddress", address);
  rows->set("Position", position);
  storeRow(installation, *rows, "Readers", "reader");
  if (added.newController) markProgramsForNewController(installation);
  const bool cards = linkNewReader(installation, added.id);
  added.cardsToSend = cards && installation.Com().isInUse(station);
  // The driver learns from the station's file which controllers are on the line.
  installation.Stations().createIniFile(station);
  transaction.commit();
  return added;
}

std::vector<ReaderRow> listReaders(Installation& installation, const ReaderFilter& filter) {
  Value station;
  Value group;
  if (!filter.station.empty()) station = stationNamed(installation, filter.station)->get("Id");
  if (!filter.group.empty()) group = GroupNames(installation).id(filter.group);
  std::vector<ReaderRow> readers;
  const auto rows = installation.database().openRecordset(
      "parameters pStation long, pGroup long; select Readers.Id, Readers.Name, StationId, Stations.Name as "
      "Station, ControllerAddress, Position, ControllerType from Readers inner join Stations on "
      "Readers.StationId = Stations.Id where (pStation is null or StationId = pStation) and (pGroup is null "
      "or Readers.Id in (select ReaderId from AccGroupReaders where AccessGroupId = pGroup)) "
      "order by Readers.Id",
      {{"pStation", station}, {"pGroup", group}});
  for (; !rows->eof(); rows->moveNext()) {
    ReaderRow& reader = readers.emplace_back();
    reader.id = rows->get("Id").toInt32();
    reader.name = rows->get("Name").toText();
    reader.stationId = rows->get("StationId").toInt16();
    reader.station = rows->get("Station").toText();
    reader.address = rows->get("ControllerAddress");
    reader.position = rows->get("Position");
    reader.type = rows->get("ControllerType");
  }
  return readers;
}

namespace {

std::vector<ReaderDetails::Grant> grantsOf(Installation& installation, std::int32_t reader) {
  std::vector<ReaderDetails::Grant> grants;
  Database& database = installation.database();
  const auto links = database.openRecordset(
      "parameters pReader long; select g.Id, g.Name, a.WeeklyProgType, a.WeeklyProgNum from AccGroupReaders "
      "a, AccessGroups g where g.Id = a.AccessGroupId and a.ReaderId = pReader order by g.Id",
      {{"pReader", reader}});
  for (; !links->eof(); links->moveNext()) {
    const Value number = links->get(3U);
    const auto program = database.openRecordset(
        "parameters pFamily memo, pNumber long; select Name from WeeklyPrograms where ProgType = pFamily and "
        "ProgNum = pNumber",
        {{"pFamily", links->get(2U)}, {"pNumber", number}});
    grants.push_back({links->get(0U).toInt16(), links->get(1U).toText(),
                      !program->eof()   ? program->get("Name").toText()
                      : number.isNull() ? ""
                                        : number.toText()});
  }
  return grants;
}

std::unique_ptr<Recordset> readerNumbered(Installation& installation, std::int32_t id) {
  return installation.database().openRecordset("parameters pId long; select * from Readers where Id = pId",
                                               {{"pId", id}});
}

/// Readers of a controller other than that one.
std::unique_ptr<Recordset> neighbours(Installation& installation, const ControllerPlace& place,
                                      std::int32_t otherThan) {
  return installation.database().openRecordset(
      "parameters pStation long, pAddress long, pOther long; select * from Readers where StationId = "
      "pStation "
      "and ControllerAddress = pAddress and Id <> pOther order by Position",
      {{"pStation", place.station}, {"pAddress", place.address}, {"pOther", otherThan}});
}

ControllerPlace controllerOf(const Recordset& reader) {
  return {nullToInt(reader.get("StationId")), nullToInt(reader.get("ControllerAddress"))};
}

/// The lift outputs of a controller whose last reader that one is.
std::vector<std::string> liftsLeftBy(Installation& installation, const Recordset& reader) {
  std::vector<std::string> lifts;
  const ControllerPlace place = controllerOf(reader);
  if (!neighbours(installation, place, reader.get("Id").toInt32())->eof()) return lifts;
  const auto rows = installation.database().openRecordset(
      "parameters pStation long, pAddress long; select Name from Alarms where Type = 'M' and StationId = "
      "pStation and ControllerAddress = pAddress order by Num",
      {{"pStation", place.station}, {"pAddress", place.address}});
  for (; !rows->eof(); rows->moveNext()) lifts.push_back(rows->get("Name").toText());
  return lifts;
}

/// One reader that is being changed.
class ReaderWork {
 public:
  ReaderWork(Installation& installation, const std::string& reader, const ReaderChange& change)
      : installation_(installation), change_(change) {
    const auto row = readerNamed(installation, reader);
    id_ = row->get("Id").toInt32();
    from_ = to_ = controllerOf(*row);
    position_ = row->get("Position");
    const Value type = row->get("ControllerType");
    if (!type.isNull()) ownType_ = type_ = type.toText();
    if (change.station) to_.station = stationNamed(installation, *change.station)->get("Id").toInt16();
    if (change.address) to_.address = controllerAddress(*change.address);
    if (change.position) position_ = readerPosition(*change.position);
    const auto others = neighbours(installation, to_, id_);
    if (to_ != from_ && !others->eof() && !others->get("ControllerType").isNull()) {
      type_ = others->get("ControllerType").toText();
    }
    if (change.type) type_ = toUpper(*change.type);
    requireType(type_);
    for (; !others->eof(); others->moveNext()) {
      if (others->get("ControllerType") != Value(type_)) typeToo_.push_back(others->get("Name").toText());
    }
    if (to_ != from_) liftsLeft_ = liftsLeftBy(installation, *row);
  }

  ChangedReader make() {
    ChangedReader changed;
    if (!change_.station && !change_.address && !change_.position && !change_.type) {
      Transaction transaction(installation_.engine(), installation_.database());
      setRow();
      transaction.commit();
      return changed;
    }
    DoorChange doors;
    doors.rows = [this] { setRow(); };
    doors.stations = {to_.station};
    if (from_.station != 0) doors.stations.insert(from_.station);
    if (to_ != from_) doors.moves = {{from_, to_}};
    doors.gone = change_.gone;
    changed.doors = changeDoors(installation_, doors);
    changed.typeToo = typeToo_;
    changed.liftsLeft = liftsLeft_;
    return changed;
  }

 private:
  void setRow() {
    const auto row = readerNumbered(installation_, id_);
    row->edit();
    row->set("StationId", to_.station);
    if (change_.address) row->set("ControllerAddress", to_.address);
    row->set("Position", position_);
    if (type_ != ownType_) row->set("ControllerType", type_);
    setReaderSettings(installation_, *row, change_.settings);
    storeRow(installation_, *row, "Readers", "reader");
    for (const auto other = neighbours(installation_, to_, id_); !typeToo_.empty() && !other->eof();
         other->moveNext()) {
      other->edit();
      other->set("ControllerType", type_);
      other->update();
    }
  }

  Installation& installation_;
  const ReaderChange& change_;
  std::int32_t id_ = 0;
  ControllerPlace from_, to_;
  Value position_;
  std::string ownType_, type_;
  std::vector<std::string> typeToo_, liftsLeft_;
};

}  // namespace

ReaderDetails findReader(Installation& installation, const std::string& reader) {
  const auto row = readerNamed(installation, reader);
  ReaderDetails details;
  details.row.id = row->get("Id").toInt32();
  details.row.name = row->get("Name").toText();
  details.row.stationId = nullToInt(row->get("StationId"));
  details.row.station = installation.Stations().getName(details.row.stationId, true);
  details.row.address = row->get("ControllerAddress");
  details.row.position = row->get("Position");
  details.row.type = row->get("ControllerType");
  details.groups = grantsOf(installation, details.row.id);
  details.settings = readerSettings(installation, *row);
  return details;
}

ChangedReader changeReader(Installation& installation, const std::string& reader,
                           const ReaderChange& change) {
  return ReaderWork(installation, reader, change).make();
}

void renameReader(Installation& installation, const std::string& reader, const std::string& name) {
  const auto row = readerNamed(installation, reader);
  Transaction transaction(installation.engine(), installation.database());
  keepPlaceHistory(installation, PlaceKind::reader, *row, PlaceEnd::renamed);
  row->edit();
  row->set("Name", checkedPlaceName(name));
  storeRow(installation, *row, "Readers", "reader");
  transaction.commit();
}

DeletedReader deleteReader(Installation& installation, const std::string& reader,
                           const ReaderRemoval& removal) {
  const auto row = readerNamed(installation, reader);
  const std::int32_t id = row->get("Id").toInt32();
  const std::string name = row->get("Name").toText();
  std::vector<ReaderDetails::Grant> grants = grantsOf(installation, id);
  std::erase_if(grants, [](const auto& grant) { return grant.group == defaultGroup; });
  if (!grants.empty() && removal.moveTo.empty() && !removal.revoke) {
    std::vector<std::string> users;
    for (const auto& grant : grants) users.push_back(grant.groupName + " (" + grant.program + ")");
    throw Refusal("reader " + std::to_string(id) + " (" + name +
                  ") is opened by access groups: name the reader that they open instead with --move-to, or "
                  "take it away from them with --revoke:" +
                  eachOnALine(users));
  }
  DeletedReader deleted;
  deleted.liftsLeft = liftsLeftBy(installation, *row);
  std::int32_t target = 0;
  if (!removal.moveTo.empty()) {
    const auto other = readerNamed(installation, removal.moveTo);
    target = other->get("Id").toInt32();
    if (target == id) throw Refusal("the access groups cannot stay with the reader " + name);
    for (const auto& grant : grants) {
      if (!linkOf(installation, grant.group, target)->eof()) continue;  // which it opens already
      deleted.grants.push_back(grant.groupName + " opens " + other->get("Name").toText() + " by " +
                               grant.program);
    }
  }
  DoorChange change;
  change.rows = [&] {
    for (const auto& grant : grants) {
      const auto link = linkOf(installation, grant.group, id);
      const auto there = linkOf(installation, grant.group, target);
      if (target == 0 || !there->eof()) continue;
      there->addNew();
      there->set("AccessGroupId", grant.group);
      there->set("ReaderId", target);
      there->set("WeeklyProgType", link->get("WeeklyProgType"));
      there->set("WeeklyProgNum", link->get("WeeklyProgNum"));
      there->set("FlagD", !cardsOf(installation, grant.group).live.empty());
      there->update();
    }
    const auto gone = readerNumbered(installation, id);
    keepPlaceHistory(installation, PlaceKind::reader, *gone, PlaceEnd::deleted);
    gone->remove();  // its links go with it
  };
  if (const ControllerPlace place = controllerOf(*row); place.station != 0) change.stations = {place.station};
  change.gone = removal.gone;
  deleted.doors = changeDoors(installation, change);
  return deleted;
}

ReaderPlace placeOf(Installation& installation, const std::string& station, const std::string& reader) {
  const auto row = readerNamed(installation, reader);
  const std::int16_t id = stationNamed(installation, station)->get("Id").toInt16();
  if (row->get("StationId").toInt32() != id) {
    throw Refusal("the reader " + reader + " is not on the station " + station);
  }
  if (row->get("ControllerAddress").isNull() || row->get("Position").isNull()) {
    throw Refusal("the reader " + reader + " is not connected to a controller");
  }
  return {{id, row->get("ControllerAddress").toInt16()}, row->get("Position").toInt16()};
}

}  // namespace voxa
