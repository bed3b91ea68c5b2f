#include "work/held_codes.h"

#include "comm/com.h"
#include "files/conversions.h"
#include "lines/code.h"
#include "platform/error.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

std::string heldForm(const std::string& code) {
  if (code.empty()) return "";
  try {
    return sentLine("090001" + convertCardCode(code), "").value;
  } catch (const Error&) {
    return "";
  }
}

HeldCodes::HeldCodes(Installation& installation, const std::vector<CardIdentity>& cards)
    : installation_(installation) {
  for (const CardIdentity& card : cards) {
    if (card.newNumber && card.number != 0) byNumber_[card.number];
    if (const std::string code = heldForm(card.code); !code.empty()) byCode_[code];
  }
  std::set<std::int32_t> numbers;
  std::set<std::string> codes;
  for (const auto& [number, none] : byNumber_) numbers.insert(number);
  for (const auto& [code, none] : byCode_) codes.insert(code);
  if (numbers.empty() && codes.empty()) return;
  (void)installation.ledger().look([&](const LedgerView& ledger) {
    for (const LedgerView::HeldCode& held : ledger.heldCodes(numbers, codes)) {
      for (const std::string& code : held.codes) {
        if (const auto asked = byCode_.find(code); asked != byCode_.end()) asked->second.push_back(held);
      }
      if (const auto asked = byNumber_.find(held.number); asked != byNumber_.end())
        asked->second.push_back(held);
    }
  });
}

std::vector<std::string> HeldCodes::namesOf(const Found& cards) const {
  std::set<ControllerPlace> places;
  for (const LedgerView::HeldCode& card : cards) places.insert(card.place);
  std::vector<std::string> names;
  for (const ControllerPlace& place : places)
    names.push_back(installation_.Com().getName(place.station, place.address));
  return names;
}

void HeldCodes::requireFree(const CardIdentity& card, const std::set<std::int32_t>& passOver) const {
  const std::string code = heldForm(card.code);
  const auto refuse = [&](const auto& asked, const auto& key, const auto& isRight, const std::string& what) {
    const auto found = asked.find(key);
    if (found == asked.end()) return;
    Found others = found->second;
    std::erase_if(others, [&](const LedgerView::HeldCode& held) {
      return passOver.contains(held.number) || isRight(held);
    });
    if (others.empty()) return;
    throw Refusal(what + " may still open doors as card " + std::to_string(others.front().number) +
                  ", as it was, at these controllers:" + eachOnALine(namesOf(others)) +
                  "\n'voxa download' makes them take what is right. Of one that is gone for good say 'voxa "
                  "controller replaced'");
  };
  refuse(
      byCode_, code, [&](const LedgerView::HeldCode& held) { return held.number == card.number; },
      "the code " + shownCode(code));
  if (!card.newNumber) return;
  const auto isSame = [&](const LedgerView::HeldCode& held) {
    return held.codes == std::vector<std::string>{code};
  };
  refuse(byNumber_, card.number, isSame, "another code");
}

std::set<std::int32_t> HeldCodes::numbersOf(const std::string& code) const {
  std::set<std::int32_t> numbers;
  const auto found = byCode_.find(heldForm(code));
  if (found == byCode_.end()) return numbers;
  for (const LedgerView::HeldCode& card : found->second) numbers.insert(card.number);
  return numbers;
}

std::vector<std::string> holdersOf(Installation& installation, std::int32_t number) {
  std::vector<ControllerPlace> places;
  (void)installation.ledger().look([&](LedgerView& ledger) {
    ledger.narrowTo(number);
    for (const auto& [place, controller] : ledger.controllers().all()) {
      const CardState card = ledger.holdings(place, {number, number + 1}).card(number);
      if (!card.part(CardField::code).is("")) places.push_back(place);
    }
  });
  std::vector<std::string> names;
  for (const ControllerPlace& place : places)
    names.push_back(installation.Com().getName(place.station, place.address));
  return names;
}

std::set<std::int32_t> heldNumbers(Installation& installation, std::int32_t first, std::int32_t end) {
  std::set<std::int32_t> numbers;
  (void)installation.ledger().look([&](const LedgerView& ledger) {
    for (const auto& [place, controller] : ledger.controllers().all()) {
      for (const auto& [number, card] : ledger.holdings(place, {first, end}).cards) {
        const Possible& code = card.part(CardField::code);
        if (!code.is("") && code != Possible::unknown()) numbers.insert(number);
      }
    }
  });
  return numbers;
}

}  // namespace voxa
