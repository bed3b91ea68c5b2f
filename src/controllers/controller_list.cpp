#include "controllers/controller_list.h"

#include "controllers/card_state.h"
#include "controllers/digest.h"
#include "controllers/thing_slot.h"
#include "files/conversions.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "tables/table_context.h"

namespace voxa {

namespace {

std::string textOf(const Value& value) {
  return value.isNull() ? "" : value.toText();
}

}  // namespace

LedgerController ledgerController(const Recordset& row) {
  LedgerController controller;
  controller.id = row.get(0U).toInt32();
  controller.place = {row.get(1U).toInt16(), row.get(2U).toInt16()};
  controller.type = textOf(row.get(3U));
  controller.changes = row.get(4U).toInt32();
  controller.since = row.get(5U).toDateTime();
  controller.stationName = textOf(row.get(6U));
  const Value retired = row.get(7U);
  if (!retired.isNull()) controller.retired = retired.toDateTime();
  const Value contact = row.get(8U);
  if (!contact.isNull()) controller.lastContact = contact.toDateTime();
  return controller;
}

ControllerList::ControllerList(Database& ledger, TableContext& context) : ledger_(ledger), context_(context) {
  readLedger();
  const std::shared_ptr<Database> main = context.DB();
  if (!main) return;
  try {
    readInstallation(*main);
  } catch (const Error& error) {
    unread_ = error;  // it is locked, or no main database: what the ledger knows of the controllers holds
    return;
  }
  align();
}

void ControllerList::readLedger() {
  const auto rows = ledger_.openRecordset(std::string("select ") + ledgerControllerColumns +
                                          ", ComPort, Phone from Controllers where Retired is null");
  for (; !rows->eof(); rows->moveNext()) {
    const LedgerController controller = ledgerController(*rows);
    knownLines_[controller.place] = {controller.stationName, rows->get(9U), textOf(rows->get(10U))};
    controllers_[controller.place] = controller;
  }
}

void ControllerList::readInstallation(Database& main) {
  const auto stations = main.openRecordset("select Id, Name, ComPort, Phone from Stations");
  for (; !stations->eof(); stations->moveNext()) {
    lines_[stations->get(0U).toInt16()] = {textOf(stations->get(1U)), stations->get(2U),
                                           textOf(stations->get(3U))};
  }
  const auto readers = main.openRecordset("select StationId, ControllerAddress, ControllerType from Readers");
  for (; !readers->eof(); readers->moveNext()) {
    const ControllerPlace place{nullToInt(readers->get(0U)), nullToInt(readers->get(1U))};
    // Whatever a row calls it: lines have two forms.
    const std::string type = textOf(readers->get(2U)) == "VRMD1" ? "VRMD1" : "QSX3";
    const auto [known, added] = types_.emplace(place, type);
    if (!added && known->second != type) known->second.clear();
  }
}

void ControllerList::requireInstallation() const {
  if (unread_) throw Error(*unread_);
}

void ControllerList::align() {
  for (auto known = controllers_.begin(); known != controllers_.end();) {
    LedgerController& controller = known->second;
    const auto line = lines_.find(controller.place.station);
    const Line& before = knownLines_.at(controller.place);
    if (line == lines_.end()) {
      retire(controller);
      known = controllers_.erase(known);
      continue;
    }
    // Another line under the number of this one, or the same one of which everything was changed.
    if (isAnother(before, line->second)) forgetHoldings(controller);
    const auto type = types_.find(controller.place);
    const std::string now = type == types_.end() ? "" : type->second;
    const bool sameLine = before.name == line->second.name && before.port == line->second.port &&
                          before.phone == line->second.phone;
    // One that has no reader for a while, or readers of two types, keeps its type until there is another.
    const bool otherType = !now.empty() && now != controller.type;
    if (otherType && !controller.type.empty()) forgetHoldings(controller);
    if (!sameLine || otherType) {
      const auto row =
          ledger_.openRecordset("select * from Controllers where Id = " + std::to_string(controller.id));
      row->edit();
      if (otherType) row->set("Type", now);
      row->set("StationName", line->second.name);
      row->set("ComPort", line->second.port);
      row->set("Phone", line->second.phone);
      row->update();
    }
    if (type != types_.end()) controller.type = now;
    ++known;
  }
  for (const auto& [place, type] : types_) {
    if (!controllers_.contains(place) && lastRetired(place)) (void)at(place);
  }
}

std::optional<std::int32_t> ControllerList::lastRetired(const ControllerPlace& place) const {
  const auto row = ledger_.openRecordset(
      "parameters pStation short, pAddress short; select max(Id) as Last from Controllers where Station = "
      "pStation and "
      "Address = pAddress and Retired is not null",
      {{"pStation", place.station}, {"pAddress", place.address}});
  const Value last = row->get("Last");
  return last.isNull() ? std::nullopt : std::optional(last.toInt32());
}

bool ControllerList::isAnother(const Line& known, const Line& now) {
  const bool direct = known.phone.empty() && now.phone.empty();  // which has no number that could change
  return known.name != now.name && known.port != now.port && (direct || known.phone != now.phone);
}

void ControllerList::retire(const LedgerController& controller) {
  ledger_.execute("update Controllers set Retired = Now() where Id = " + std::to_string(controller.id));
}

void ControllerList::forgetHoldings(const LedgerController& controller) {
  const std::int32_t first = controller.id * slotsOfController;
  const auto forget = [&](std::int32_t from, std::int32_t end, const std::string& state) {
    ledger_.execute("update Things set State = '" + state + "' where Id between " +
                    std::to_string(first + from) + " and " + std::to_string(first + end - 1));
  };
  CardState card;
  card.mayBeAnything();
  forget(0, firstSlotBehindCards, card.text());
  forget(firstSlotBehindCards, slotsOfController, Possible::unknown().text());
  forgetDigests(controller);
}

void ControllerList::forgetDigests(const LedgerController& controller) {
  const std::int32_t first = controller.id * bucketsOfController;
  ledger_.execute("delete from Digests where Id between " + std::to_string(first) + " and " +
                  std::to_string(first + bucketsOfController - 1));
}

LedgerController& ControllerList::add(const ControllerPlace& place, const std::string& typeBefore) {
  LedgerController controller;
  controller.place = place;
  controller.type = typeBefore;
  controller.since = context_.clock().now();
  if (const auto type = types_.find(place); type != types_.end()) controller.type = type->second;
  const auto line = lines_.find(place.station);
  const auto rows = ledger_.openRecordset("select * from Controllers where Id = 0");
  rows->addNew();
  rows->set("Station", place.station);
  rows->set("Address", place.address);
  rows->set("Type", controller.type);
  rows->set("StationName", line == lines_.end() ? "" : line->second.name);
  rows->set("ComPort", line == lines_.end() ? Value() : line->second.port);
  rows->set("Phone", line == lines_.end() ? "" : line->second.phone);
  rows->set("Since", controller.since);
  rows->update();
  controller.id = ledger_.openRecordset("select max(Id) as Last from Controllers")->get("Last").toInt32();
  return controllers_[place] = controller;
}

LedgerController& ControllerList::at(const ControllerPlace& place) {
  if (const auto known = controllers_.find(place); known != controllers_.end()) return known->second;
  LedgerController& controller = add(place);
  // It may be the one that was there when its station was deleted, and hold what that one held.
  const std::optional<std::int32_t> before = lastRetired(place);
  if (!before) return controller;
  mayHoldWhatWasAt(*before, controller);
  return controller;
}

void ControllerList::mayHoldWhatWasAt(std::int32_t before, const LedgerController& controller) {
  const std::int32_t from = before * slotsOfController;
  const std::int32_t to = controller.id * slotsOfController;
  const std::string moved = "Id + " + std::to_string(to - from);
  ledger_.execute("insert into Things (Id, State) select " + moved + ", State from Things where Id between " +
                  std::to_string(from) + " and " + std::to_string(from + slotsOfController - 1) + " and " +
                  moved + " not in (select Id from Things where Id between " + std::to_string(to) + " and " +
                  std::to_string(to + slotsOfController - 1) + ")");
  forgetHoldings(controller);
}

void ControllerList::carryOver(const ControllerPlace& from, const ControllerPlace& to) {
  const LedgerController* before = find(from);
  if (before == nullptr) return;
  const std::int32_t id = before->id;
  const LedgerController& now = at(to);
  if (now.id != id) mayHoldWhatWasAt(id, now);
}

std::set<ControllerPlace> ControllerList::refresh(const std::set<ControllerPlace>& places) {
  std::set<ControllerPlace> changed;
  if (places.empty()) return changed;
  std::set<ControllerPlace> gone = places;
  const auto rows = ledger_.openRecordset(
      "parameters pFirst short, pLast short; select Station, Address, Id, Changes from Controllers where "
      "Station between pFirst and pLast and Retired is null",
      {{"pFirst", places.begin()->station}, {"pLast", places.rbegin()->station}});
  for (; !rows->eof(); rows->moveNext()) {
    const ControllerPlace place{rows->get(0U).toInt16(), rows->get(1U).toInt16()};
    if (gone.erase(place) == 0) continue;
    const std::int32_t id = rows->get(2U).toInt32();
    const std::int32_t changes = rows->get(3U).toInt32();
    const auto known = controllers_.find(place);
    if (known != controllers_.end() && known->second.id == id && known->second.changes == changes) continue;
    changed.insert(place);
    LedgerController& controller = controllers_[place];
    controller.id = id;
    controller.place = place;
    controller.changes = changes;
    if (const auto type = types_.find(place); type != types_.end()) controller.type = type->second;
  }
  for (const ControllerPlace& place : gone) {
    if (controllers_.erase(place) != 0) changed.insert(place);
  }
  return changed;
}

const LedgerController* ControllerList::find(const ControllerPlace& place) const {
  const auto known = controllers_.find(place);
  return known == controllers_.end() ? nullptr : &known->second;
}

std::vector<ControllerPlace> ControllerList::ofStation(std::int16_t station) const {
  std::vector<ControllerPlace> places;
  for (const auto& [place, controller] : controllers_) {
    if (place.station == station) places.push_back(place);
  }
  for (const auto& [place, type] : types_) {
    if (place.station == station && find(place) == nullptr) places.push_back(place);
  }
  return places;
}

std::string ControllerList::nameOf(std::int16_t station) const {
  const auto line = lines_.find(station);
  return line == lines_.end() ? "" : line->second.name;
}

LedgerController& ControllerList::replace(const ControllerPlace& place) {
  std::string type;
  if (const auto known = controllers_.find(place); known != controllers_.end()) {
    type = known->second.type;
    retire(known->second);
    controllers_.erase(known);
  }
  return add(place, type);
}

}  // namespace voxa
