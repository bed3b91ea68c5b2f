#include "work/stations.h"

#include <map>

#include "comm/com.h"
#include "comm/dialling.h"
#include "comm/station.h"
#include "controllers/ledger_view.h"
#include "files/conversions.h"
#include "lines/line_speed.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/links.h"
#include "work/look_up.h"
#include "work/place_history.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::int16_t lastPort = 256;
constexpr std::int16_t lastDelay = 32767;
constexpr std::size_t phoneLength = 25;
constexpr std::size_t modemLength = 20;

std::int32_t lineSpeed(const std::string& text) {
  const std::int32_t speed = number32("the speed", text);
  for (const std::int32_t known : lineSpeeds) {
    if (speed == known) return speed;
  }
  throw Refusal("a line works at 4800, 9600, 19200 or 38400 bit/s, not at " + text);
}

std::int16_t portFrom0(const std::string& text) {
  return static_cast<std::int16_t>(numberWithin("the port", text, 1, lastPort) - 1);
}

/// Name of a station in use on a port (from 0), other than that one; "" when there is none.
std::string userOf(Installation& installation, std::int16_t port, std::int16_t otherThan) {
  const auto user = installation.database().openRecordset(
      "parameters pPort long, pOther long; select Name from Stations where ComPort = pPort and Active = true "
      "and Id <> pOther",
      {{"pPort", port}, {"pOther", otherThan}});
  return user->eof() ? "" : user->get("Name").toText();
}

std::int16_t freePort(Installation& installation) {
  std::int16_t port = 0;
  while (!userOf(installation, port, 0).empty()) ++port;
  return port;
}

/// One line per port: two stations in use on it would answer for each other.
void requireFreePort(Installation& installation, std::int16_t port, std::int16_t ownId) {
  const std::string user = userOf(installation, port, ownId);
  if (user.empty()) return;
  throw Refusal("port " + std::to_string(port + 1) + " is used by the active station " + user);
}

void setFields(Recordset& row, const StationTexts& texts) {
  if (texts.name) row.set("Name", checkedPlaceName(*texts.name));
  if (texts.speed) row.set("ComSpeed", lineSpeed(*texts.speed));
  if (texts.phone) row.set("Phone", checkedText("a telephone number", *texts.phone, phoneLength));
  if (texts.modem) row.set("ModemIniFile", checkedText("the modem file", *texts.modem, modemLength));
  if (texts.timeout) row.set("TimeoutDelay", numberWithin("the time-out", *texts.timeout, 1, lastDelay));
  if (texts.waiting) row.set("WaitingDelay", numberWithin("the waiting delay", *texts.waiting, 0, lastDelay));
}

StationRow stationOf(const Recordset& row) {
  StationRow station;
  station.id = row.get("Id").toInt16();
  station.name = row.get("Name").toText();
  station.port = row.get("ComPort").toInt32() + 1;
  station.speed = row.get("ComSpeed");
  station.phone = row.get("Phone");
  station.modem = row.get("ModemIniFile");
  station.timeout = row.get("TimeoutDelay");
  station.waiting = row.get("WaitingDelay");
  station.active = row.get("Active").toBool();
  return station;
}

}  // namespace

AddedStation addStation(Installation& installation, const StationTexts& texts) {
  const bool dialUp = texts.phone && !texts.phone->empty();  // it is in use while a call stands
  const bool active = texts.active.value_or(!dialUp);
  const std::int16_t port = texts.port ? portFrom0(*texts.port) : freePort(installation);
  if (active) requireFreePort(installation, port, 0);
  const std::int16_t id = installation.Stations().getFreeId();
  if (id == -1) throw Refusal("the installation holds all the stations it can (998)");
  StationTexts named = texts;
  if (!named.name) named.name = "";
  Transaction transaction(installation.engine(), installation.database());
  const auto rows = installation.database().openRecordset("select * from Stations");
  rows->addNew();
  rows->set("Id", id);
  rows->set("ComPort", port);
  rows->set("Active", active);
  setFields(*rows, named);
  storeRow(installation, *rows, "Stations", "station");
  installation.Stations().createIniFile(id);
  transaction.commit();
  return {id, static_cast<std::int16_t>(port + 1)};
}

void changeStation(Installation& installation, const std::string& name, const StationTexts& texts) {
  const auto row = stationNamed(installation, name);
  const std::int16_t id = row->get("Id").toInt16();
  const bool wasActive = row->get("Active").toBool();
  const bool active = texts.active.value_or(wasActive);
  const std::int16_t port = texts.port ? portFrom0(*texts.port) : row->get("ComPort").toInt16();
  if (active) requireFreePort(installation, port, id);
  Transaction transaction(installation.engine(), installation.database());
  if (texts.name) keepPlaceHistory(installation, PlaceKind::station, *row, PlaceEnd::renamed);
  row->edit();
  if (texts.port) row->set("ComPort", port);
  if (texts.active) row->set("Active", active);
  setFields(*row, texts);
  storeRow(installation, *row, "Stations", "station");
  if (active && !wasActive) markProgramsForNewController(installation);
  installation.Stations().createIniFile(id);
  transaction.commit();
}

void changeLineSpeed(Installation& installation, const std::string& name, const std::string& speed) {
  const std::int32_t bits = lineSpeed(speed);
  const auto row = stationNamed(installation, name);
  const std::int16_t id = row->get("Id").toInt16();
  const std::int16_t sent = installation.Stations().SendSpeed(id, bits);
  const std::string failures = installation.Com().popErrorList();
  const bool told = sent == 0 && failures.empty();
  if (told) {
    row->edit();
    row->set("ComSpeed", bits);
    row->update();
  }
  installation.Stations().createIniFile(id);  // at the speed of the row again, whichever that is now
  if (!told) throw Refusal("msgCantSendCommand", failures);
}

namespace {

std::int16_t dialUpStation(Installation& installation, const std::string& name) {
  const auto row = stationNamed(installation, name);
  const Value phone = row->get("Phone");
  if (phone.isNull() || phone == Value(""))
    throw Refusal("the station " + name + " has no telephone number: nobody needs to call it");
  return row->get("Id").toInt16();
}

}  // namespace

void connectStation(Installation& installation, const std::string& name) {
  const std::int16_t station = dialUpStation(installation, name);
  if (callStation(installation, station, true) == 0) return;
  throw Refusal("msgUICantConnect", installation.Com().popErrorList());
}

void disconnectStation(Installation& installation, const std::string& name) {
  const std::int16_t station = dialUpStation(installation, name);
  if (hangUpStation(installation, station) == 0) return;
  throw Refusal("msgUICantDisconnect", installation.Com().popErrorList());
}

namespace {

/// What refers to a station, as a person calls it.
std::vector<std::string> usersOf(Installation& installation, std::int16_t station) {
  std::vector<std::string> users;
  const auto read = [&](const std::string& table, const std::string& condition, const std::string& noun) {
    const auto rows =
        installation.database().openRecordset("parameters pId long; select Name from " + table +
                                                  " where StationId = pId" + condition + " order by Name",
                                              {{"pId", station}});
    for (; !rows->eof(); rows->moveNext()) users.push_back(noun + " " + rows->get("Name").toText());
  };
  read("Readers", "", "reader");
  read("Alarms", " and Type = 'M'", "lift output");
  read("Alarms", " and (Type <> 'M' or Type is null)", "alarm");
  return users;
}

/// What keeps the rows of one station from another: each clash on a line of its own.
void requireRoom(Installation& installation, std::int16_t from, std::int16_t to) {
  std::vector<std::string> clashes;
  const auto meet = [&](const std::string& table, const std::string& condition, const char* how) {
    const auto rows = installation.database().openRecordset(
        "parameters pFrom long, pTo long; select m.Name as Mover, o.Name as Owner, m.ControllerAddress as "
        "Address from " +
            table + " as m, " + table +
            " as o where m.StationId = pFrom and o.StationId = pTo and m.ControllerAddress = "
            "o.ControllerAddress and " +
            condition,
        {{"pFrom", from}, {"pTo", to}});
    for (; !rows->eof(); rows->moveNext()) {
      clashes.push_back(rows->get("Mover").toText() + ": at address " + rows->get("Address").toText() + " " +
                        rows->get("Owner").toText() + how);
    }
  };
  meet("Readers", "m.Position = o.Position", " has its position");
  meet("Readers", "m.Position <> o.Position and m.ControllerType <> o.ControllerType",
       " is on a controller of another type");
  meet("Alarms", "m.Type = o.Type and m.Num = o.Num", " has its number");
  if (clashes.empty()) return;
  throw Refusal("not everything finds its place on the other station; nothing is changed:" +
                eachOnALine(clashes));
}

ChangedDoors moveAll(Installation& installation, std::int16_t from, std::int16_t to, bool gone) {
  requireRoom(installation, from, to);
  Database& database = installation.database();
  DoorChange change;
  change.rows = [&] {
    for (const char* table : {"Readers", "Alarms"}) {
      database.execute(std::string("parameters pTo long, pFrom long; update ") + table +
                           " set StationId = pTo where StationId = pFrom",
                       {{"pTo", to}, {"pFrom", from}});
    }
  };
  change.stations = {from, to};
  const auto addresses = database.openRecordset(
      "parameters pId long; select distinct ControllerAddress from Readers where "
      "StationId = pId and ControllerAddress is not null",
      {{"pId", from}});
  for (; !addresses->eof(); addresses->moveNext()) {
    const std::int16_t address = addresses->get(0U).toInt16();
    change.moves.push_back({{from, address}, {to, address}});
  }
  change.gone = gone;
  return changeDoors(installation, change);
}

}  // namespace

DeletedStation deleteStation(Installation& installation, const std::string& name, const std::string& moveTo,
                             bool gone) {
  const StationRow station = findStation(installation, name);
  const std::string called = "station " + std::to_string(station.id) + " (" + station.name + ")";
  const bool connected = station.active && !station.phone.isNull() && station.phone != Value("");
  Database& database = installation.database();
  DeletedStation deleted;
  if (listStations(installation).size() == 1) {
    throw Refusal(called + " is the only one: rename it, or add another one before");
  }
  deleted.moved = usersOf(installation, station.id);
  if (!deleted.moved.empty() && moveTo.empty()) {
    throw Refusal(called +
                  " is used; name the station that this goes to with --move-to, or delete it before:" +
                  eachOnALine(deleted.moved));
  }
  if (deleted.moved.empty() && connected) {
    throw Refusal(called + " is connected: hang it up before ('voxa station disconnect')");
  }
  if (!moveTo.empty()) {
    const std::int16_t to = stationNamed(installation, moveTo)->get("Id").toInt16();
    if (to == station.id) throw Refusal("nothing can stay on the station " + station.name);
    if (!deleted.moved.empty()) deleted.doors = moveAll(installation, station.id, to, gone);
  }
  if (connected) disconnectStation(installation, station.name);
  Transaction transaction(installation.engine(), database);
  keepPlaceHistory(installation, PlaceKind::station, *stationNamed(installation, station.name),
                   PlaceEnd::deleted);
  database.execute("parameters pId long; delete from ComStatus where StationID = pId", {{"pId", station.id}});
  database.execute("parameters pId long; delete from Stations where Id = pId", {{"pId", station.id}});
  installation.Stations().removeIniFile(station.id);
  transaction.commit();
  // Its number is free now: its controllers are retired before another line has it.
  (void)installation.ledger().look([](LedgerView&) {});
  return deleted;
}

StationRow findStation(Installation& installation, const std::string& name) {
  const auto row = stationNamed(installation, name);
  StationRow station = stationOf(*row);
  station.readers =
      installation.database()
          .openRecordset("parameters pId long; select count(*) from Readers where StationId = pId",
                         {{"pId", station.id}})
          ->get(0U)
          .toInt32();
  return station;
}

std::vector<StationRow> listStations(Installation& installation) {
  Database& database = installation.database();
  std::map<std::int16_t, std::int32_t> readers;
  for (const auto counts =
           database.openRecordset("select StationId, count(*) from Readers where StationId is not null group "
                                  "by StationId");
       !counts->eof(); counts->moveNext()) {
    readers[counts->get(0U).toInt16()] = counts->get(1U).toInt32();
  }
  std::vector<StationRow> stations;
  const auto rows = database.openRecordset("select * from Stations order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    stations.push_back(stationOf(*rows));
    stations.back().readers = readers[stations.back().id];
  }
  return stations;
}

}  // namespace voxa
