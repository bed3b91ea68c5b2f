#include "controllers/possible.h"

#include <algorithm>

namespace voxa {

namespace {

constexpr char assumedMark = '~';
constexpr char unknownMark = '^';
constexpr char between = '|';

}  // namespace

Possible Possible::held(std::string value) {
  Possible possible;
  possible.base_ = Certainty::held;
  possible.last_ = std::move(value);
  return possible;
}

Possible Possible::assumed(std::string value) {
  Possible possible;
  possible.last_ = std::move(value);
  return possible;
}

Possible Possible::unknown() {
  Possible possible;
  possible.base_ = Certainty::unknown;
  return possible;
}

void Possible::becomes(std::string_view value) {
  base_ = Certainty::held;
  last_ = value;
  since_.clear();
}

void Possible::mayBecome(std::string_view value) {
  const bool known = base_ != Certainty::unknown && last_ == value;
  if (known || std::find(since_.begin(), since_.end(), value) != since_.end()) return;
  if (since_.size() == greatestCount) mayBeAnything();
  since_.emplace_back(value);
}

void Possible::mayBeAnything() {
  base_ = Certainty::unknown;
  last_.clear();
  since_.clear();
}

Certainty Possible::certainty() const {
  return since_.empty() ? base_ : Certainty::doubt;
}

bool Possible::mayBe(std::string_view value) const {
  return base_ != Certainty::held || last_ == value ||
         std::find(since_.begin(), since_.end(), value) != since_.end();
}

bool Possible::isThere() const {
  return base_ == Certainty::held && !last_.empty() &&
         std::none_of(since_.begin(), since_.end(), [](const std::string& value) { return value.empty(); });
}

std::optional<std::vector<std::string>> Possible::values() const {
  const bool guessed = base_ == Certainty::assumed && !last_.empty();
  if (base_ == Certainty::unknown || guessed) return std::nullopt;
  std::vector<std::string> all = {last_};
  all.insert(all.end(), since_.begin(), since_.end());
  return all;
}

std::string Possible::text() const {
  std::string text;
  if (base_ == Certainty::assumed) text += assumedMark;
  if (base_ == Certainty::unknown) text += unknownMark;
  text += last_;
  for (const std::string& value : since_) (text += between) += value;
  return text;
}

Possible Possible::read(std::string_view text) {
  Possible possible;
  possible.base_ = Certainty::held;
  if (!text.empty() && (text.front() == assumedMark || text.front() == unknownMark)) {
    possible.base_ = text.front() == assumedMark ? Certainty::assumed : Certainty::unknown;
    text.remove_prefix(1);
  }
  std::size_t end = text.find(between);
  possible.last_ = text.substr(0, end);
  while (end != std::string_view::npos) {
    text.remove_prefix(end + 1);
    end = text.find(between);
    possible.since_.emplace_back(text.substr(0, end));
  }
  return possible;
}

}  // namespace voxa
