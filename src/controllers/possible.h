#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxa {

/// How well a value on a controller is known.
enum class Certainty : std::uint8_t {
  held,     ///< acknowledged, and nothing uncertain was sent since
  assumed,  ///< never sent while the ledger was kept; what it should be from before
  doubt,    ///< one of several values
  unknown   ///< nothing is known of it
};

/// The value of one thing on a controller: the last one that was certain or assumed, and those that were sent
/// since and may have arrived. "" is the value of a thing that the controller does not have.
class Possible {
 public:
  /// What a controller is taken to hold of a thing that was never sent to it: nothing.
  Possible() = default;
  [[nodiscard]] static Possible held(std::string value);
  [[nodiscard]] static Possible assumed(std::string value);
  [[nodiscard]] static Possible unknown();

  void becomes(std::string_view value);    ///< it was acknowledged
  void mayBecome(std::string_view value);  ///< it was sent, and nobody knows whether it arrived
  void mayBeAnything();

  [[nodiscard]] Certainty certainty() const;
  /// Whether nothing is known but what may have been added since.
  [[nodiscard]] bool mayBeAny() const { return base_ == Certainty::unknown; }
  [[nodiscard]] bool isHeld() const { return base_ == Certainty::held && since_.empty(); }
  /// Whether the thing may have this value, by what is certain; an assumption excludes nothing.
  [[nodiscard]] bool mayBe(std::string_view value) const;
  /// Whether it has this value, and no other was sent since: certain, or assumed.
  [[nodiscard]] bool is(std::string_view value) const {
    return base_ != Certainty::unknown && since_.empty() && last_ == value;
  }
  /// Whether it is certain that there is a value.
  [[nodiscard]] bool isThere() const;
  /// Every value that it may have; none when it may have any. A thing that was never sent counts as not
  /// there.
  [[nodiscard]] std::optional<std::vector<std::string>> values() const;
  [[nodiscard]] const std::string& last() const { return last_; }  ///< certain or assumed
  [[nodiscard]] const std::vector<std::string>& since() const { return since_; }

  friend bool operator==(const Possible&, const Possible&) = default;

  /// As the ledger stores it: "~" before an assumed value, "^" before an unknown one, then the values with
  /// "|" between them. Values are made of the characters of command lines, blank and 0 to ?.
  [[nodiscard]] std::string text() const;
  [[nodiscard]] static Possible read(std::string_view text);

 private:
  static constexpr std::size_t greatestCount = 8;  ///< of values that are told apart

  Certainty base_ = Certainty::assumed;  ///< held, assumed or unknown: what last_ is
  std::string last_;
  std::vector<std::string> since_;
};

}  // namespace voxa
