#include "site/swipe.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "site/decoder.h"
#include "site/holdings.h"
#include "site/memory.h"

namespace site {

namespace {

// Transaction codes by outcome and reader position.
constexpr std::array<std::array<const char*, 4>, 4> typeCodes = {{{"00", "02", "01", "03"},    // granted
                                                                  {"20", "22", "21", "23"},    // time
                                                                  {"24", "26", "25", "27"},    // rights
                                                                  {"10", "12", "11", "13"}}};  // unknown card

std::string presentedCode(Storage& storage, const Controller& controller, const Swipe& swipe) {
  if (!swipe.code.empty()) {
    const auto code = normalCode(swipe.code);
    if (!code) {
      throw Failure("A card's code is up to eight digits or letters A to F, not \"" + swipe.code + "\".");
    }
    return *code;
  }
  const auto card = cardByNumber(storage, controller.id, swipe.cardNumber);
  if (!card) {
    throw Failure("The controller holds no card " + std::to_string(swipe.cardNumber) +
                  ": its code is needed to present it.");
  }
  return card->code;
}

void check(const Swipe& swipe, const Moment& moment) {
  if (swipe.position < 1 || swipe.position > 4) throw Failure("A reader position is 1 to 4.");
  if (swipe.pin && (swipe.pin->size() != 4 || !std::all_of(swipe.pin->begin(), swipe.pin->end(),
                                                           [](char c) { return c >= '0' && c <= '9'; }))) {
    throw Failure("A personal code is four digits.");
  }
  if (!exists(moment.date) || moment.hour < 0 || moment.hour > 23 || moment.minute < 0 ||
      moment.minute > 59) {
    throw Failure("There is no such date or time.");
  }
}

// address2 blank type2 ddmmyyhhmm data8
std::string recordLine(const Controller& controller, const std::string& typeCode, const Moment& moment,
                       const std::string& data) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%02d %s%02d%02d%02d%02d%02d%s", controller.info.address,
                typeCode.c_str(), moment.date.day, moment.date.month, moment.date.year % 100, moment.hour,
                moment.minute, data.c_str());
  return text.data();
}

std::string cardData(int number) {
  std::string digits = std::to_string(number);
  return "00" + std::string(4 - digits.size(), '0') + digits + "00";
}

}  // namespace

SwipeResult present(Storage& storage, Controller& controller, const Swipe& swipe) {
  const Moment moment = swipe.moment ? *swipe.moment : controller.clock();
  check(swipe, moment);
  const std::string code = presentedCode(storage, controller, swipe);
  const Decision decision = decide(storage, controller.id, code, swipe.position, swipe.pin, moment);

  SwipeResult result;
  result.outcome = decision.outcome;
  result.reason = decision.reason;
  result.typeCode = typeCodes.at(static_cast<std::size_t>(decision.outcome))
                        .at(static_cast<std::size_t>(swipe.position) - 1);
  if (decision.card) result.cardNumber = decision.card->number;
  result.record = recordLine(controller, result.typeCode, moment,
                             result.cardNumber ? cardData(*result.cardNumber) : code);
  record(storage, controller, result.record);
  return result;
}

}  // namespace site
