#include "controllers/card_plan.h"

#include <algorithm>
#include <bitset>
#include <charconv>

#include "controllers/times_plan.h"

namespace voxa {

namespace {

using Fields = std::bitset<cardFieldCount>;

constexpr std::size_t index(CardField field) {
  return static_cast<std::size_t>(field);
}

constexpr CardField doors[] = {CardField::door1, CardField::door2};

bool hasValue(const Possible& part) {
  return part.certainty() != Certainty::unknown && !part.last().empty() &&
         std::none_of(part.since().begin(), part.since().end(),
                      [](const std::string& value) { return value.empty(); });
}

bool mayOpen(const CardState& held, CardField door) {
  return !held.part(door).is("0") && !held.part(door).is("");
}
bool mayOpen(const CardState& held) {
  return std::any_of(std::begin(doors), std::end(doors), [&](CardField door) { return mayOpen(held, door); });
}

/// Whether a controller may have another value of a card than the rows say.
bool differs(const CardState& held, CardField field, const std::string& ofRow) {
  const std::string value = ledgerValue(field, ofRow);
  return !held.part(field).is(value) && !(isNone(field, value) && held.part(field).is(""));
}

/// The weekly programs that a card may have at a controller; none when it may be any.
std::optional<std::set<std::int16_t>> programsOf(const CardState& held) {
  const Possible& program = held.part(CardField::weekly);
  if (program.mayBeAny()) return std::nullopt;
  std::set<std::int16_t> programs;
  bool known = true;
  const auto take = [&](const std::string& number) {
    std::int16_t value = 0;
    const char* const end = number.data() + number.size();
    known = known && std::from_chars(number.data(), end, value).ptr == end;
    if (!number.empty()) programs.insert(value);
  };
  take(program.last());
  for (const std::string& number : program.since()) take(number);
  return known ? std::optional(programs) : std::nullopt;
}

/// What happens to the times of a card as the controller has it.
TimesPlan::Change timesChange(const CardsAt& at, const CardState& held) {
  if (!at.timesSent) return TimesPlan::Change::none;
  const auto programs = programsOf(held);
  if (!programs) return at.times.ofAny();
  TimesPlan::Change worst = TimesPlan::Change::none;
  for (const std::int16_t program : *programs) worst = std::max(worst, at.times.of(program));
  return worst;
}

/// What must wait until the card is shut or gone. least: what has to happen to the times; of a card that
/// changes itself any change, since the new times are not those of the old row. Not for one of which nothing
/// but its number is known: a controller that refuses such a line would get no times any more.
void keepBack(const CardsAt& at, const CardState& held, PlanItem& item,
              TimesPlan::Change least = TimesPlan::Change::simple) {
  const bool known = std::any_of(std::begin(doors), std::end(doors), [&](CardField door) {
    return mayOpen(held, door) && held.part(door) != Possible::unknown();
  });
  if (!known || timesChange(at, held) < least) return;
  const auto programs = programsOf(held);
  if (!programs) {
    item.keepsBack = at.times.changes();
    return;
  }
  for (const std::int16_t program : *programs) item.keepsBack.merge(at.times.needsOf(program));
}

/// Compares one card at one controller, and makes its item.
class Comparison {
 public:
  Comparison(const CardsAt& at, const ImageCard& card, const ImageRights& granted, const CardState& held)
      : at_(at), card_(card), granted_(granted), held_(held), image_(Image::on(card, granted)) {
    for (std::size_t i = 0; i < cardFieldCount; ++i) {
      const auto field = static_cast<CardField>(i);
      differs_[i] = differs(held, field, image_.value(field));
    }
    for (const std::int16_t output : granted.lifts) {
      if (!held.lift(output).is("1")) missingLifts_.push_back(output);
    }
  }

  std::optional<PlanItem> item(bool creditSent) {
    const bool absent = code().is("");
    const bool creditMarked = card_.marks[creditPart];
    // Another code is another card: it gets its credit, whatever was on its way before.
    const bool sendsCredit = creditMarked && (!creditSent || differs_[index(CardField::code)]);
    const bool eraseFirst = absent ? keepsParts() : hasOtherLift();
    if (differs_.none() && missingLifts_.empty() && !eraseFirst && !sendsCredit && !at_.full)
      return times(PlanReason::timesChange);
    PlanItem item = begun(absent, eraseFirst, creditSent);
    item.creditMarked = creditMarked;
    item.creditAnew = eraseFirst && !absent;
    // What a controller keeps of a card that may not be there, it may have dropped.
    const bool whole = absent || eraseFirst || !hasValue(code()) || at_.full;
    Fields sent = differs_;
    if (sendsCredit) sent.set(index(CardField::credit));
    if (whole) sent.set();
    if (!code().isThere()) sent.set(index(CardField::code));
    if (eraseFirst) {
      item.of(PlanPhase::erase).push_back(clearCardLine(card_.number));
    } else if (!absent && mayOpen(held_) && mixes(sendsCredit)) {
      shut(item, sent);
    }
    keepBack(at_, held_, item);
    fill(item, sent, whole ? granted_.lifts : missingLifts_, absent || eraseFirst);
    return item;
  }

 private:
  [[nodiscard]] const Possible& code() const { return held_.part(CardField::code); }

  PlanItem begun(bool absent, bool eraseFirst, bool creditSent) const {
    PlanItem item;
    item.number = card_.number;
    item.program = programToWaitFor();
    item.reason = reason(absent, eraseFirst, creditSent);
    const bool again = item.reason == PlanReason::answerLost || item.reason == PlanReason::unknown;
    item.action = again ? PlanItem::Action::sendAgain : PlanItem::Action::send;
    return item;
  }

  [[nodiscard]] PlanReason reason(bool absent, bool eraseFirst, bool creditSent) const {
    if (at_.isNew) return PlanReason::newController;
    const bool creditAlone =
        differs_.count() == 1 && differs_[index(CardField::credit)] && missingLifts_.empty();
    if (creditSent && creditAlone) return PlanReason::creditMarked;
    bool doubt = false;
    bool unknown = false;
    const auto look = [&](const Possible& part) {
      doubt = doubt || part.certainty() == Certainty::doubt;
      unknown = unknown || part.certainty() == Certainty::unknown;
    };
    for (std::size_t i = 0; i < cardFieldCount; ++i) {
      if (differs_[i]) look(held_.part(static_cast<CardField>(i)));
    }
    for (const std::int16_t output : missingLifts_) look(held_.lift(output));
    if (unknown) return PlanReason::unknown;
    if (doubt) return PlanReason::answerLost;
    if (absent) return PlanReason::notSent;
    if (eraseFirst) return PlanReason::liftTaken;
    if (differs_[index(CardField::code)] && mayOpen(held_)) return PlanReason::oldCard;
    if (differs_.any() || !missingLifts_.empty()) return PlanReason::changed;
    return card_.marks[creditPart] && !at_.full ? PlanReason::creditMarked : PlanReason::requested;
  }

  /// Whether it will open for another code, under another program or until another day.
  [[nodiscard]] bool opensOtherwise() const {
    return differs_[index(CardField::code)] || differs_[index(CardField::weekly)] ||
           differs_[index(CardField::lastDay)];
  }

  /// Without times being sent, a card that was open as the rows have it, but for those times, opens again.
  [[nodiscard]] std::int16_t programToWaitFor() const {
    const std::int16_t program = granted_.rights.weeklyProgram;
    const bool wasOpen = std::all_of(std::begin(doors), std::end(doors), [&](CardField door) {
      return image_.value(door) != "1" || held_.part(door).is("1");
    });
    return !at_.timesSent && !opensOtherwise() && wasOpen ? std::int16_t{0} : program;
  }

  /// Whether the controller may know something of a card that it does not have: that is in force as soon as
  /// the card is there.
  [[nodiscard]] bool keepsParts() const {
    for (std::size_t i = 0; i < cardFieldCount; ++i) {
      if (!held_.part(static_cast<CardField>(i)).is("")) return true;
    }
    if (!held_.otherLifts().is("")) return true;
    return std::any_of(held_.lifts().begin(), held_.lifts().end(),
                       [](const auto& lift) { return !lift.second.is(""); });
  }
  /// Whether it may have a lift output that its group does not grant.
  [[nodiscard]] bool hasOtherLift() const {
    if (!held_.otherLifts().is("")) return true;
    return std::any_of(held_.lifts().begin(), held_.lifts().end(), [&](const auto& lift) {
      const auto& outputs = granted_.lifts;
      return !lift.second.is("") && std::find(outputs.begin(), outputs.end(), lift.first) == outputs.end();
    });
  }

  /// What happens to the times of the program that it may have, and to those of the one that it gets.
  [[nodiscard]] TimesPlan::Change timesChange() const {
    if (!at_.timesSent) return TimesPlan::Change::none;
    return std::max(at_.times.of(granted_.rights.weeklyProgram), voxa::timesChange(at_, held_));
  }

  /// Whether in between it could open as neither the old nor the new rows have it: when more changes than one
  /// line can. Doors that are shut and doors that are opened do not mix, since the ones come first.
  [[nodiscard]] bool mixes(bool sendsCredit) const {
    // Nor under times that are not, or cannot be, those of the rows.
    if (opensOtherwise() && !at_.times.needsOf(granted_.rights.weeklyProgram).empty()) return true;
    Fields others = differs_;
    for (const CardField door : doors) others.reset(index(door));
    if (sendsCredit) others.set(index(CardField::credit));
    const bool anyDoor = differs_[index(CardField::door1)] || differs_[index(CardField::door2)];
    const std::size_t changes = others.count() + missingLifts_.size() + (anyDoor ? 1 : 0);
    if (changes == 0) return timesChange() == TimesPlan::Change::mixed;
    return changes > 1 || timesChange() != TimesPlan::Change::none;
  }

  void add(PlanItem& item, PlanPhase phase, CardField field, const std::string& value) const {
    item.of(phase).push_back(cardLine(field, card_.number, value, at_.controllerType));
  }

  // What is told of a card that is not certainly there is told again behind its code.
  void shut(PlanItem& item, Fields& sent) const {
    for (const CardField door : doors) {
      if (!mayOpen(held_, door)) continue;
      add(item, PlanPhase::shut, door, "0");
      sent[index(door)] = image_.value(door) == "1" || !code().isThere();
    }
  }

  /// The lines of the fields in `sent`. fresh: the controller does not have the card until then.
  void fill(PlanItem& item, const Fields& sent, const std::vector<std::int16_t>& lifts, bool fresh) const {
    for (std::size_t i = 0; i < cardFieldCount; ++i) {
      const auto field = static_cast<CardField>(i);
      if (!sent[i]) continue;
      const std::string& value = image_.value(field);
      const bool door = std::find(std::begin(doors), std::end(doors), field) != std::end(doors);
      const PlanPhase phase = !door                        ? PlanPhase::cards
                              : value == "1"               ? PlanPhase::doors
                              : fresh || !code().isThere() ? PlanPhase::cards
                                                           : PlanPhase::shut;
      add(item, phase, field, value);
    }
    for (const std::int16_t output : lifts) add(item, PlanPhase::cards, CardField::lift, liftValue(output));
  }

  /// The card is as it should be; it is shut while its times change if they mix.
  std::optional<PlanItem> times(PlanReason reason) {
    if (!mayOpen(held_) || timesChange() != TimesPlan::Change::mixed) return std::nullopt;
    PlanItem item;
    item.number = card_.number;
    item.program = granted_.rights.weeklyProgram;
    item.action = PlanItem::Action::shutMeanwhile;
    item.reason = reason;
    Fields sent;
    sent[index(CardField::code)] = !code().isThere();
    shut(item, sent);
    fill(item, sent, {}, false);
    keepBack(at_, held_, item, TimesPlan::Change::mixed);
    return item;
  }

  const CardsAt& at_;
  const ImageCard& card_;
  const ImageRights& granted_;
  const CardState& held_;
  CardImage image_;
  Fields differs_;
  std::vector<std::int16_t> missingLifts_;
};

}  // namespace

std::optional<PlanItem> wantedCard(const CardsAt& at, const ImageCard& card, const ImageRights& granted,
                                   const CardState& held, bool creditSent) {
  return Comparison(at, card, granted, held).item(creditSent);
}

std::optional<PlanItem> unwantedCard(const CardsAt& at, std::int32_t number, PlanReason reason,
                                     const CardState& held) {
  const Possible& code = held.part(CardField::code);
  if (code.is("")) return std::nullopt;
  PlanItem item;
  item.number = number;
  item.action = PlanItem::Action::erase;
  item.reason = code.certainty() == Certainty::unknown ? PlanReason::unknown
                : !hasValue(code)                      ? PlanReason::answerLost
                                                       : reason;
  item.of(PlanPhase::erase).push_back(clearCardLine(number));
  keepBack(at, held, item);
  return item;
}

std::optional<PlanItem> faultyCard(const CardsAt& at, const ImageCard& card, const ImageRights* granted,
                                   const CardState& held) {
  if (held.part(CardField::code).is("") || !mayOpen(held)) return std::nullopt;
  std::optional<CardImage> rights;
  if (granted != nullptr) rights = Image::on(card, *granted);
  const auto isTaken = [&](CardField door) {
    if (card.barred || !rights) return card.barred;
    const auto changed = [&](CardField field) { return differs(held, field, rights->value(field)); };
    return rights->value(door) != "1" || changed(CardField::weekly) || changed(CardField::code) ||
           changed(CardField::lastDay);
  };
  const bool taken = std::any_of(std::begin(doors), std::end(doors),
                                 [&](CardField door) { return mayOpen(held, door) && isTaken(door); });
  const bool mixed = timesChange(at, held) == TimesPlan::Change::mixed;
  if (!taken && !mixed) return std::nullopt;
  // A door of a card that may not be there is not certainly shut by its line.
  const PlanReason reason = card.barred ? PlanReason::blocked
                            : taken     ? PlanReason::changed
                                        : PlanReason::timesChange;
  if (taken && !held.part(CardField::code).isThere()) return unwantedCard(at, card.number, reason, held);
  PlanItem item;
  item.number = card.number;
  item.action = taken ? PlanItem::Action::send : PlanItem::Action::shutMeanwhile;
  item.reason = reason;
  const auto programs = programsOf(held);
  if (programs && programs->size() == 1) item.program = *programs->begin();
  for (const CardField door : doors) {
    if (!mayOpen(held, door) || !(mixed || isTaken(door))) continue;
    item.of(PlanPhase::shut).push_back(cardLine(door, card.number, "0", at.controllerType));
    // It gets back what it certainly had.
    if (!isTaken(door) && item.program != 0 && held.part(door).is("1"))
      item.of(PlanPhase::doors).push_back(cardLine(door, card.number, "1", at.controllerType));
  }
  keepBack(at, held, item, taken ? TimesPlan::Change::simple : TimesPlan::Change::mixed);
  return item;
}

}  // namespace voxa
