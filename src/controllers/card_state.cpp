#include "controllers/card_state.h"

#include <algorithm>
#include <charconv>

#include "platform/text.h"

namespace voxa {

namespace {

constexpr char betweenParts = ',';
constexpr char betweenOutputs = '+';
constexpr char behindOutput = '=';

}  // namespace

bool isNone(CardField field, std::string_view value) {
  const bool zerosAreNone = field != CardField::code && field != CardField::weekly;
  return value.empty() || (zerosAreNone && value.find_first_not_of('0') == std::string_view::npos);
}

void CardState::take(const SentLine& line, bool certain) {
  if (line.field == CardField::code) return takeCode(line.value, certain);
  Possible& thing = line.field == CardField::lift ? lifts_.try_emplace(line.output, otherLifts_).first->second
                                                  : part(line.field);
  // A controller without the card may drop its parts, or keep them for later.
  if (certain && part(CardField::code).isThere()) {
    thing.becomes(line.value);
  } else {
    thing.mayBecome(line.value);
  }
}

void CardState::takeCode(std::string_view code, bool certain) {
  Possible& present = part(CardField::code);
  if (!certain) {
    present.mayBecome(code);
    if (!code.empty()) return;
    for (std::size_t i = index(CardField::weekly); i < cardFieldCount; ++i) parts_.at(i).mayBecome("");
    for (auto& [output, state] : lifts_) state.mayBecome("");
    otherLifts_.mayBecome("");
    return;
  }
  present.becomes(code);
  if (!code.empty()) return;
  for (Possible& each : parts_) each.becomes("");
  lifts_.clear();
  otherLifts_.becomes("");
}

void CardState::mayBeAnything() {
  for (Possible& each : parts_) each.mayBeAnything();
  for (auto& [output, state] : lifts_) state.mayBeAnything();
  otherLifts_.mayBeAnything();
}

Possible CardState::lift(std::int16_t output) const {
  const auto found = lifts_.find(output);
  return found == lifts_.end() ? otherLifts_ : found->second;
}

bool CardState::isHeld() const {
  return otherLifts_.isHeld() &&
         std::all_of(parts_.begin(), parts_.end(), [](const Possible& each) { return each.isHeld(); }) &&
         std::all_of(lifts_.begin(), lifts_.end(), [](const auto& lift) { return lift.second.isHeld(); });
}

std::string CardState::text() const {
  std::string text;
  for (const Possible& each : parts_) (text += each.text()) += betweenParts;
  text += otherLifts_.text();
  for (const auto& [output, state] : lifts_) {
    ((text += betweenOutputs) += std::to_string(output)) += behindOutput;
    text += state.text();
  }
  return text;
}

CardState CardState::read(std::string_view text) {
  CardState state;
  for (Possible& each : state.parts_) each = Possible::read(takeUntil(text, betweenParts));
  state.otherLifts_ = Possible::read(takeUntil(text, betweenOutputs));
  while (!text.empty()) {
    const std::string_view digits = takeUntil(text, behindOutput);
    std::int16_t output = 0;
    (void)std::from_chars(digits.data(), digits.data() + digits.size(), output);
    state.lifts_[output] = Possible::read(takeUntil(text, betweenOutputs));
  }
  return state;
}

Possible CardState::codeOf(std::string_view text) {
  return Possible::read(takeUntil(text, betweenParts));
}

}  // namespace voxa
