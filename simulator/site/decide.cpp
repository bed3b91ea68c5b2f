#include "site/decide.h"

#include <algorithm>

#include "site/holdings.h"
#include "site/storage.h"

namespace site {

namespace {

constexpr int always = 0;  // weekly program
constexpr int never = 0;   // daily program

// The reason why the card has no right to pass; empty when it has.
std::string rightsRefusal(const Card& card, int position, const std::optional<std::string>& pin,
                          const Date& date) {
  const bool firstDoor = position % 2 == 1;
  if (firstDoor ? !card.door1 : !card.door2) return "the card may not open this door";
  if (card.validUntil && *card.validUntil < date) return "the card's last valid day is past";
  if (card.credit == 0) return "the card's credit is used up";
  if (pin && *pin != card.pin) return "the personal code is wrong";
  return {};
}

// The reason why the card's time program refuses it; empty when it does not.
std::string timeRefusal(Storage& storage, std::int64_t controller, const Card& card, const Moment& moment) {
  if (!card.weekly) return "the card has no weekly program";
  if (*card.weekly == always) return {};
  const auto weekly = weeklyProgram(storage, controller, 'C', *card.weekly);
  if (!weekly) return "the controller does not hold weekly program " + std::to_string(*card.weekly);
  const bool holiday = isHoliday(storage, controller, moment.date);
  const int number =
      holiday ? weekly->holiday : weekly->days[static_cast<std::size_t>(weekday(moment.date)) - 1];
  const std::string daily = "daily program " + std::to_string(number);
  if (number == never) return daily + " is never";
  const auto program = dailyProgram(storage, controller, number);
  if (!program) return "the controller does not hold " + daily;
  const int minute = moment.hour * 60 + moment.minute;
  const bool inside = std::any_of(
      program->intervals.begin(), program->intervals.end(),
      [minute](const Interval& interval) { return interval.start <= minute && minute < interval.end; });
  return inside ? std::string() : "outside the intervals of " + daily;
}

void useCredit(Storage& storage, std::int64_t controller, Card& card) {
  if (!card.credit) return;
  --*card.credit;
  storage.run("update cards set credit = ? where controller = ? and number = ?", card.credit, controller,
              card.number);
}

}  // namespace

Decision decide(Storage& storage, std::int64_t controller, const std::string& code, int position,
                const std::optional<std::string>& pin, const Moment& moment) {
  Decision decision;
  decision.card = cardByCode(storage, controller, code);
  if (!decision.card) {
    decision.reason = "the controller holds no card of this code";
    return decision;
  }
  decision.outcome = Outcome::refusedForRights;
  decision.reason = rightsRefusal(*decision.card, position, pin, moment.date);
  if (!decision.reason.empty()) return decision;
  decision.outcome = Outcome::refusedByTime;
  decision.reason = timeRefusal(storage, controller, *decision.card, moment);
  if (!decision.reason.empty()) return decision;
  decision.outcome = Outcome::granted;
  useCredit(storage, controller, *decision.card);
  return decision;
}

}  // namespace site
