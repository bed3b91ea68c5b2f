#include "work/forget_cards.h"

#include <algorithm>

#include "comm/com.h"
#include "platform/notice.h"
#include "work/card_values.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

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
  std::vector<Notice> notices;
  std::set<std::int16_t> tested;
  for (const auto& [place, erasing] : erasing_) {
    if (erasing.controller.active && tested.insert(place.station).second) {
      read = std::max(read, com.refresh(place.station, into(notices)));
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
    std::string why;
    for (const Notice& notice : notices) why += "\n" + notice.message.error.description;
    throw Refusal("the controllers cannot be tested: nothing is changed" + why);
  }
  if (silent.empty()) return;
  throw Refusal(installation_.messages().read("msgComErr247") + ":" + silent +
                "\nNothing is changed: they must erase the cards first.");
}

bool ForgetCards::erase(const Erasing& erasing) {
  const std::vector<std::int32_t> numbers(erasing.numbers.begin(), erasing.numbers.end());
  return installation_.Com().sendLines(clearCardLines(numbers), erasing.controller) == 0;
}

}  // namespace voxa
