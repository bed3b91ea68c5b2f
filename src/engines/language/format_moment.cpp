#include <algorithm>
#include <array>
#include <cmath>

#include "engines/language/format.h"
#include "platform/datetime.h"
#include "platform/text.h"

namespace voxa::dialect {

namespace {

constexpr std::array<std::string_view, 7> days = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};

constexpr std::size_t shortName = 3;

/// 0 Sunday to 6 Saturday. Day 0 was a Saturday.
int weekdayNumber(int day) {
  return ((day + 6) % 7 + 7) % 7;
}

/// The day on which week 1 of a year begins; it may be one of the year before.
int firstWeekOf(int year, const Weeks& weeks) {
  const int newYear = dayNumber({.year = year, .month = 1, .day = 1});
  const int into = (weekdayNumber(newYear) - (weeks.firstDay - 1) + 7) % 7;  // days of that week before it
  const int most = weeks.firstWeek == 2 ? 3 : weeks.firstWeek == 3 ? 0 : 6;
  return into <= most ? newYear - into : newYear - into + 7;
}

/// The ways to write the halves of a day.
struct Halves {
  std::string_view pattern;
  std::string_view morning;
  std::string_view afternoon;
};
constexpr std::array<Halves, 5> halves = {{{"AM/PM", "AM", "PM"},
                                           {"am/pm", "am", "pm"},
                                           {"A/P", "A", "P"},
                                           {"a/p", "a", "p"},
                                           {"AMPM", "AM", "PM"}}};

class MomentFormat {
 public:
  MomentFormat(DateTime moment, std::string_view pattern, const Weeks& weeks)
      : moment_(moment), parts_(toCivil(moment)), weeks_(weeks), characters_(charactersOf(pattern)) {}

  std::string run() {
    for (std::size_t i = 0; i < characters_.size() && !twelve_; ++i) twelve_ = halvesAt(i) != nullptr;
    for (std::size_t i = 0; i < characters_.size();) {
      if (const Halves* found = halvesAt(i)) {
        out_ += parts_.hour < 12 ? found->morning : found->afternoon;
        i += found->pattern.size();
        continue;
      }
      const std::size_t count = write(i);
      if (count == 0) out_ += characters_[i].text;
      i += std::max<std::size_t>(count, 1);
    }
    return std::move(out_);
  }

 private:
  [[nodiscard]] const Halves* halvesAt(std::size_t at) const {
    const auto* const found = std::find_if(halves.begin(), halves.end(), [&](const Halves& way) {
      if (characters_.size() - at < way.pattern.size()) return false;
      for (std::size_t i = 0; i < way.pattern.size(); ++i) {
        const PatternCharacter& c = characters_[at + i];
        if (c.literal || c.text != way.pattern.substr(i, 1)) return false;
      }
      return true;
    });
    return found == halves.end() ? nullptr : found;
  }

  [[nodiscard]] std::size_t run(std::size_t at, char letter, std::size_t most) const {
    std::size_t count = 0;
    while (count < most && at + count < characters_.size() && characters_[at + count].is(letter)) ++count;
    return count;
  }

  /// Writes what the letters at a place stand for; how many these are, 0 for another character.
  std::size_t write(std::size_t at) {
    struct Letter {
      char letter;
      std::size_t most;
      void (MomentFormat::*write)(std::size_t count);
    };
    static constexpr std::array<Letter, 10> letters = {{{'c', 1, &MomentFormat::general},
                                                        {'d', 6, &MomentFormat::day},
                                                        {'w', 2, &MomentFormat::week},
                                                        {'m', 4, &MomentFormat::month},
                                                        {'q', 1, &MomentFormat::quarter},
                                                        {'y', 4, &MomentFormat::year},
                                                        {'h', 2, &MomentFormat::hour},
                                                        {'n', 2, &MomentFormat::minute},
                                                        {'s', 2, &MomentFormat::second},
                                                        {'t', 5, &MomentFormat::time}}};
    for (const Letter& letter : letters) {
      const std::size_t count = run(at, letter.letter, letter.most);
      if (count == 0) continue;
      if (letter.letter == 't' && count < letter.most) return 0;
      const std::size_t used = letter.letter == 'y' && count == 3 ? 2 : count;
      (this->*letter.write)(used);
      afterHour_ = letter.letter == 'h';
      return used;
    }
    return 0;
  }

  void general(std::size_t) { out_ += toShortText(moment_); }
  void day(std::size_t count) {
    const std::string_view name = days.at(static_cast<std::size_t>(weekdayNumber(dayNumber(parts_))));
    if (count < 3) out_ += zeroPadded(parts_.day, static_cast<int>(count));
    if (count == 3) out_ += name.substr(0, shortName);
    if (count == 4) out_ += name;
    if (count == 5) out_ += shortDate(moment_);
    if (count == 6) {
      out_ += zeroPadded(parts_.day, 2) + " ";
      month(4);
      out_ += " " + std::to_string(parts_.year);
    }
  }
  void week(std::size_t count) {
    out_ += std::to_string(count == 1 ? dayOfWeek(moment_, weeks_) : weekOfYear(moment_, weeks_));
  }
  void month(std::size_t count) {
    const std::string_view name = monthName(parts_.month);
    if (count > 2) {
      out_ += name.substr(0, count == 3 ? shortName : name.size());
    } else {
      out_ += zeroPadded(afterHour_ ? parts_.minute : parts_.month, static_cast<int>(count));
    }
  }
  void quarter(std::size_t) { out_ += std::to_string((parts_.month + 2) / 3); }
  void year(std::size_t count) {
    if (count == 1) out_ += std::to_string(dayOfYear(parts_));
    if (count == 2) out_ += zeroPadded(parts_.year % 100, 2);
    if (count == 4) out_ += zeroPadded(parts_.year, 4);
  }
  void hour(std::size_t count) {
    const int shown = twelve_ ? (parts_.hour + 11) % 12 + 1 : parts_.hour;
    out_ += zeroPadded(shown, static_cast<int>(count));
  }
  void minute(std::size_t count) { out_ += zeroPadded(parts_.minute, static_cast<int>(count)); }
  void second(std::size_t count) { out_ += zeroPadded(parts_.second, static_cast<int>(count)); }
  void time(std::size_t) { out_ += shortTime(moment_); }

  DateTime moment_;
  CivilTime parts_;
  const Weeks& weeks_;
  std::vector<PatternCharacter> characters_;
  bool twelve_ = false;
  bool afterHour_ = false;
  std::string out_;
};

}  // namespace

int dayOfYear(const CivilTime& parts) {
  return dayNumber(parts) - dayNumber({.year = parts.year, .month = 1, .day = 1}) + 1;
}

int dayOfWeek(DateTime moment, const Weeks& weeks) {
  return (weekdayNumber(dayNumber(toCivil(moment))) - (weeks.firstDay - 1) + 7) % 7 + 1;
}

int weekOfYear(DateTime moment, const Weeks& weeks) {
  const CivilTime parts = toCivil(moment);
  const int day = dayNumber(parts);
  int first = firstWeekOf(parts.year, weeks);
  if (day < first) first = firstWeekOf(parts.year - 1, weeks);
  // The last days of a year may belong to week 1 of the next.
  if (weeks.firstWeek != 1 && day >= firstWeekOf(parts.year + 1, weeks)) return 1;
  return (day - first) / 7 + 1;
}

std::string formatMoment(DateTime moment, std::string_view pattern, const Weeks& weeks) {
  return MomentFormat(moment, pattern, weeks).run();
}

}  // namespace voxa::dialect
