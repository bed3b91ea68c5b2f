#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "controllers/possible.h"
#include "controllers/sent_line.h"

namespace voxa {

/// Whether a value of a card's part is the same to a controller as having none: all zeros, but for the code
/// and the weekly program.
[[nodiscard]] bool isNone(CardField field, std::string_view value);

/// What a controller may hold for one card number. A controller that takes a card's code makes a card without
/// parts when it has none of that number; one that clears the card loses all of its parts.
class CardState {
 public:
  /// Takes a line of the card. certain: the controller acknowledged it.
  void take(const SentLine& line, bool certain);
  void mayBeAnything();

  /// A part. Of a card that may not be there it is the part that the card has if it is.
  [[nodiscard]] const Possible& part(CardField field) const { return parts_.at(index(field)); }
  [[nodiscard]] Possible& part(CardField field) { return parts_.at(index(field)); }
  [[nodiscard]] Possible lift(std::int16_t output) const;
  void setLift(std::int16_t output, const Possible& state) { lifts_[output] = state; }
  /// Outputs of which something was sent, and what is known of every other one.
  [[nodiscard]] const std::map<std::int16_t, Possible>& lifts() const { return lifts_; }
  [[nodiscard]] const Possible& otherLifts() const { return otherLifts_; }
  /// Whether the card and all its parts are certain.
  [[nodiscard]] bool isHeld() const;

  friend bool operator==(const CardState&, const CardState&) = default;

  /// As the ledger stores it: the parts in the order of CardField with "," between, then the outputs.
  [[nodiscard]] std::string text() const;
  [[nodiscard]] static CardState read(std::string_view text);
  /// Only what is known of the code.
  [[nodiscard]] static Possible codeOf(std::string_view text);

 private:
  static std::size_t index(CardField field) { return static_cast<std::size_t>(field); }
  void takeCode(std::string_view code, bool certain);

  std::array<Possible, cardFieldCount> parts_;
  std::map<std::int16_t, Possible> lifts_;
  Possible otherLifts_;
};

}  // namespace voxa
