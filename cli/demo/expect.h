#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "week.h"
#include "work/transaction_type.h"

namespace voxa {
class Installation;
}

namespace voxa::cli {

/// Why a door opens or stays shut.
enum class Reason {
  allowed,
  outsideHours,
  holiday,
  otherDoor,
  invalidated,
  expired,
  creditUsedUp,
  unknownCode,
  unknownHere
};
constexpr std::size_t reasonCount = 9;
[[nodiscard]] const char* textOf(Reason reason);
[[nodiscard]] TransactionMeaning meaningOf(Reason reason);

/// A row of the journal.
struct JournalEntry {
  std::string moment;  ///< "dd/mm/yyyy hh:nn"
  std::int32_t station = 0;
  std::string stationName;
  std::int32_t reader = 0;
  std::string readerName, type, cardholder, data;
  bool operator==(const JournalEntry&) const = default;
};

struct Expected {
  Reason reason = Reason::allowed;
  JournalEntry entry;
};

/// What ought to happen at the doors, from the rows of the installation as they stand now and nothing else:
/// neither what is sent to a controller nor how one decides. Presentations are to be asked for by time, since
/// a credit is used up.
class DoorRules {
 public:
  explicit DoorRules(Installation& installation);
  [[nodiscard]] Expected expect(const Presentation& presentation);

 private:
  struct Card {
    std::int32_t number;
    std::string name;
    std::int16_t group;
    bool validated;
    std::optional<int> lastDay;  // days, as DateTime counts them
    int credit;                  // 0: none
  };
  struct Weekly {
    std::array<int, 7> days;  // daily programs, Monday first
    int holidays;
  };
  using Controller = std::pair<std::int32_t, std::int32_t>;  // station and address
  using Interval = std::pair<int, int>;                      // minutes of the day, the end not in it

  void readCards(Installation& installation);
  void readDoors(Installation& installation);
  void readPrograms(Installation& installation);
  Reason decide(const Card& card, const Presentation& presentation);
  [[nodiscard]] bool isHoliday(int day) const;
  [[nodiscard]] bool isOpen(int program, int day, int minute) const;

  std::map<std::string, Card> cards_;           // by code
  std::map<std::string, std::int16_t> groups_;  // by name
  std::map<std::int32_t, std::string> stationNames_;
  std::map<std::int32_t, std::string> readerNames_;
  std::map<std::pair<std::int16_t, std::int32_t>, int> programs_;  // weekly, by group and reader
  std::set<std::pair<std::int16_t, Controller>> reached_;          // by group
  std::map<int, Weekly> weekly_;
  std::map<int, std::vector<Interval>> daily_;
  std::set<std::tuple<int, int, int>> holidays_;             // day, month, year; year 0: every one
  std::map<std::pair<std::int32_t, Controller>, int> used_;  // credits, which every controller counts alone
};

}  // namespace voxa::cli
