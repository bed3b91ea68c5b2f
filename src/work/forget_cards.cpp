#include "work/forget_cards.h"

#include <algorithm>

#include "access/card_record.h"
#include "comm/com.h"
#include "files/command_file.h"
#include "work/card_values.h"
#include "work/refusal.h"

#include "platform/database/database.h"
#include "work/installation.h"

namespace voxa {

std::vector<ReachedController> reachOf(Installation& installation, std::int16_t group) {
  std::vector<ReachedController> reach;
  for (GrantedController& controller : controllersOf(installation.database(), group)) {
    ReachedController& reached = reach.emplace_back();
    const auto outputs = installation.database().openRecordset(
        "select Alarms.Num from LiftGroup inner join Alarms on LiftGroup.LiftNum = Alarms.Id "
        "where Alarms.Type = 'M' and LiftGroup.AccessGroup = " +
        std::to_string(group) + " and Alarms.StationId = " + std::to_string(controller.station) +
        " and Alarms.ControllerAddress = " + std::to_string(controller.address));
    for (; !outputs->eof(); outputs->moveNext()) reached.lifts.insert(outputs->get("Num").toInt16());
    reached.controller = std::move(controller);
  }
  return reach;
}

std::vector<GrantedController> without(const std::vector<ReachedController>& reach,
                                       const std::vector<ReachedController>& other) {
  std::vector<GrantedController> controllers;
  for (const ReachedController& one : reach) {
    const bool there = std::any_of(other.begin(), other.end(), [&](const ReachedController& has) {
      return has.controller.station == one.controller.station &&
             has.controller.address == one.controller.address &&
             std::includes(has.lifts.begin(), has.lifts.end(), one.lifts.begin(), one.lifts.end());
    });
    if (!there) controllers.push_back(one.controller);
  }
  return controllers;
}

CardsOfGroup cardsOf(Installation& installation, std::int16_t group) {
  CardsOfGroup cards;
  const auto rows = installation.database().openRecordset(
      "select CardNum, Deleted, CardCodeFlagD from Cardholders where CardNum is not null and AccessGroupId "
      "= " +
      std::to_string(group));
  for (; !rows->eof(); rows->moveNext()) {
    const std::int32_t number = rows->get("CardNum").toInt32();
    if (!rows->get("Deleted").toBool()) cards.live.push_back(number);
    if (rows->get("Deleted").toBool() && rows->get("CardCodeFlagD").toBool()) cards.deleted.push_back(number);
  }
  return cards;
}

void markGroup(Installation& installation, std::int16_t group) {
  const std::string id = std::to_string(group);
  const auto cards = installation.database().openRecordset(
      "select * from Cardholders where Deleted = false and AccessGroupId = " + id);
  if (cards->eof()) return;
  const auto row = installation.database().openRecordset("select * from AccessGroups where Id = " + id);
  row->edit();
  row->set("FlagD", true);
  row->update();
  for (; !cards->eof(); cards->moveNext()) {
    cards->edit();
    markWhole(*cards);
    cards->update();
  }
}

void ForgetCards::on(const std::vector<GrantedController>& controllers,
                     const std::vector<std::int32_t>& numbers) {
  if (numbers.empty()) return;
  for (const GrantedController& controller : controllers) {
    Erasing& erasing = erasing_[controller];
    erasing.controller = controller;
    erasing.numbers.insert(numbers.begin(), numbers.end());
  }
}

void ForgetCards::send() {
  if (erasing_.empty() || installation_.Com().inhibitCom) return;
  requireAnswers();
  std::set<std::int32_t> numbers;
  for (const auto& [place, erasing] : erasing_) {
    numbers.insert(erasing.numbers.begin(), erasing.numbers.end());
  }
  markWhole(installation_, numbers);
  std::string failures;
  for (const auto& [place, erasing] : erasing_) {
    if (!erase(erasing)) failures += installation_.Com().popErrorList();
  }
  if (failures.empty()) return;
  throw Refusal(installation_.messages().read("msgCantSendCommand") + failures +
                "\nNothing else is changed: the controllers must erase the cards first. The cards are marked "
                "to be sent again.");
}

void ForgetCards::requireAnswers() {
  Com& com = installation_.Com();
  auto read = Com::Refresh::read;
  std::set<std::int16_t> tested;
  for (const auto& [place, erasing] : erasing_) {
    if (erasing.controller.active && tested.insert(place.station).second) {
      read = std::max(read, com.refresh(place.station));
    }
  }
  const auto unknown = com.notKnownToAnswer(CTActiveStations, "");
  std::string silent;
  for (const auto& [place, erasing] : erasing_) {
    const bool active = erasing.controller.active;
    const bool answers = com.TestSend(place.station, place.address) &&
                         std::find(unknown.begin(), unknown.end(), place) == unknown.end();
    if (active && answers) continue;
    silent += "\n  " + com.getName(place.station, place.address) + (active ? "" : ": the line is not in use");
  }
  (void)com.popErrorList();  // of the test: it names the same controllers
  if (read == Com::Refresh::broken) {
    throw Refusal("the controllers cannot be tested: nothing is changed");
  }
  if (silent.empty()) return;
  throw Refusal(installation_.messages().read("msgComErr247") + ":" + silent +
                "\nNothing is changed: they must erase the cards first.");
}

bool ForgetCards::erase(const Erasing& erasing) {
  std::vector<std::string> lines;
  for (const std::int32_t number : erasing.numbers) lines.push_back(clearCardLine(number));
  return installation_.Com().sendLines(lines, erasing.controller) == 0;
}

}  // namespace voxa
