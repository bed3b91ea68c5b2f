#include "work/readers.h"

#include "comm/com.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/links.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::int16_t lastAddress = 16;
constexpr std::int16_t lastPosition = 4;

void requireType(const std::string& type) {
  if (type != "QSX3" && type != "VRMD1") throw Refusal("a controller is a QSX3 or a VRMD1, not " + type);
}

}  // namespace

std::int16_t controllerAddress(const std::string& text) {
  return numberWithin("the controller's address", text, 1, lastAddress);
}

AddedReader addReader(Installation& installation, const ReaderTexts& texts) {
  const std::int16_t station = stationNamed(installation, texts.station)->get("Id").toInt16();
  const std::int16_t address = controllerAddress(texts.address);
  const std::int16_t position = numberWithin("the position", texts.position, 1, lastPosition);
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

std::vector<ReaderRow> listReaders(Installation& installation) {
  std::vector<ReaderRow> readers;
  const auto rows = installation.database().openRecordset(
      "select Readers.Id, Readers.Name, StationId, Stations.Name as Station, ControllerAddress, Position, "
      "ControllerType from Readers inner join Stations on Readers.StationId = Stations.Id "
      "order by Readers.Id");
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
