#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "site/moment.h"

/// What a controller is and what it holds.
namespace site {

struct ControllerInfo {
  int station = 0;  ///< 1 to 999
  int address = 0;  ///< 1 to 16
  std::string type = "QSX3";
  int speed = 4800;           ///< bit/s it listens at: 4800, 9600, 19200 or 38400
  int memoryCapacity = 3000;  ///< transactions
};

/// Minutes since midnight; the end is exclusive, and 1440 is the end of the day. The interval is empty when
/// the start is not before the end.
struct Interval {
  int start = 0;
  int end = 0;
  bool operator==(const Interval&) const = default;
};

struct DailyProgram {
  int number = 0;                   ///< 1 to 99; 0 is "never", which every controller knows
  std::vector<Interval> intervals;  ///< two or four
};

struct WeeklyProgram {
  char family = 'C';          ///< 'C' or 'E'; cards are bound to those of family C
  int number = 0;             ///< 1 to 99; 0 is "always", which every controller knows
  std::array<int, 7> days{};  ///< daily program numbers, Monday first
  int holiday = 0;            ///< daily program number
};

struct Holiday {
  int slot = 0;  ///< 1 to 20, on a VRMD1 1 to 60
  int day = 0;
  int month = 0;
  std::optional<int> year;  ///< none: every year
};

struct Card {
  int number = 0;         ///< 1 to 9999
  std::string code = {};  ///< eight characters 0-9 and : ; < = > ? (hexadecimal A to F), zeros on the left
  std::optional<int> weekly;  ///< of family C; 0: always, none: the controller was told none
  bool door1 = false;         ///< reader positions 1 and 3
  bool door2 = false;         ///< reader positions 2 and 4
  std::string pin;            ///< four digits, empty when it has none
  bool supervisor = false;
  std::optional<Date> validUntil;  ///< last valid day
  std::optional<int> credit;       ///< grants that are left, 0: used up; none: unlimited
  std::vector<int> lifts;          ///< lift outputs
};

struct BadgeFormat {
  int reader = 0;          ///< 0: every reader of the controller
  std::string technology;  ///< three digits; only of a VRMD1
  int sitePosition = 0;
  int siteLength = 0;
  int cardPosition = 0;
  int cardType = 0;      ///< 4 system cards, 8 others
  std::string siteCode;  ///< eight characters, in the form of Card::code
};

struct ReceivedLine {
  Moment at;           ///< PC clock
  std::string text;    ///< as it came, without its line end
  std::string reason;  ///< why it was not applied; empty when it was
};

struct Memory {
  std::vector<std::string> records;  ///< lines as the driver dumps them, the oldest first
  int read = 0;                      ///< so many of them the read pointer has passed
  std::int64_t overflows = 0;        ///< records overwritten since the controller was added or replaced
};

enum class ResultFileFault : std::uint8_t { none, garbage, truncated };

/// Faults to inject. They last until they are cleared. To give a controller the wrong speed, use
/// Site::setSpeed.
struct Faults {
  bool silent = false;                      ///< receives nothing, answers nothing
  std::optional<std::int16_t> refuse;       ///< answers every call with this result and does nothing
  std::optional<int> goodCalls;             ///< so many calls work, then it is silent
  std::optional<int> cutAfter;              ///< a memory read ends after so many records
  bool cutHalfLine = false;                 ///< and after half of the next one
  bool cutOnce = false;                     ///< only at one read
  std::optional<std::int16_t> refuseClear;  ///< answers a clear with this result and does not erase
  /// What happens to its place in the station result file: noise, or the file ends within its date line.
  ResultFileFault resultFile = ResultFileFault::none;
  bool forgets = false;     ///< acknowledges a command file and stores nothing of it
  bool loseAnswer = false;  ///< carries a command file out, but its answer is lost on the line
  std::optional<int>
      stopBehind;  ///< of a command file with more lines it takes so many, then the line breaks
  /// So many command files meet one of the two faults above, of which there is one at a time; then that fault
  /// is gone. None: it stays.
  std::optional<int> times;
  bool operator==(const Faults&) const = default;
};

struct Snapshot {
  ControllerInfo info;
  std::optional<std::int64_t> clockOffset;  ///< seconds ahead of the PC clock; none: it was never set
  std::vector<ReceivedLine> received;       ///< in the order they came
  std::vector<DailyProgram> dailyPrograms;
  std::vector<WeeklyProgram> weeklyPrograms;
  std::vector<Holiday> holidays;
  std::vector<Card> cards;
  std::vector<BadgeFormat> badgeFormats;
  Memory memory;
  Faults faults;
};

}  // namespace site
