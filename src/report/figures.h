#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/transaction_type.h"

namespace voxa {

class Installation;

/// What a report is to tell of.
struct ReportQuestion {
  std::string since = {};  ///< a day or minute as a person writes it; "": 30 days, up to `until`
  std::string until = {};  ///< the same, it included; "": until the end of today
  std::string door = {};   ///< only what happened at this reader; "": at all
  std::string group = {};  ///< only cards that are in this access group now; "": all cards
  bool people = false;     ///< names of people, and when each came first and last
};

/// How presentations of cards ended.
struct Outcomes {
  static constexpr std::size_t kinds = 4;     ///< granted to unknownCard of TransactionMeaning
  std::array<std::uint64_t, kinds> counts{};  ///< by TransactionMeaning

  [[nodiscard]] std::uint64_t of(TransactionMeaning meaning) const {
    return counts.at(static_cast<std::size_t>(meaning));
  }
  void add(TransactionMeaning meaning) { ++counts.at(static_cast<std::size_t>(meaning)); }
  [[nodiscard]] std::uint64_t presentations() const;
  [[nodiscard]] std::uint64_t refused() const;  ///< all but the granted ones
};

/// A door under the name that it had when the transactions were read; "" for a place without a reader.
struct DoorFigure {
  std::string name;
  Outcomes outcomes;
};

/// A card that no controller knew.
struct PresentedUnknown {
  std::string code;  ///< in 0 to 9 and A to F
  std::uint64_t times = 0;
  DateTime last;
  std::string door;  ///< the last one
};

/// When somebody was let in on a day. A card without a holder has its number as the name.
struct PersonDay {
  int day = 0;  ///< number of the day, as dayNumber has it
  std::string name;
  DateTime first, last;
  std::string firstDoor, lastDoor;
  std::uint64_t times = 0;
};

struct ControllerFigure {
  struct Missing {
    std::string kind;  ///< "card", "weekly program C"
    std::size_t count = 0;
  };
  std::string name;
  bool inUse = true;             ///< its line
  std::vector<Missing> missing;  ///< what it does not hold as it should
  std::size_t leftOut = 0;       ///< rows that cannot be right, and are not sent
  std::optional<DateTime> lastContact;
};

/// A card whose last day is near or past.
struct ExpiringCard {
  std::int32_t number = 0;
  std::string name;  ///< "" unless people are asked for
  std::string group;
  DateTime until;  ///< the last day
  bool expired = false;
};

/// What a report tells, as values. All memory that it takes is that of counts: it does not grow with the
/// number of transactions.
struct Figures {
  ReportQuestion asked;
  DateTime made;
  DateTime since, until;  ///< from the one, up to the other, it not included
  Outcomes all;
  std::uint64_t others = 0;  ///< transactions that are no presentation of a card
  int firstDay = 0;
  std::vector<Outcomes> days;  ///< each day of the time, from firstDay on
  std::array<Outcomes, 24> hours{};
  std::vector<DoorFigure> doors;               ///< most presentations first
  std::vector<PresentedUnknown> unknownCards;  ///< the last one first
  std::uint64_t unknownNotListed = 0;          ///< presentations of more codes than are counted
  std::vector<PersonDay> people;               ///< by day and name
  std::vector<ControllerFigure> controllers;
  std::string controllersNotKnown;  ///< why it is not known what they miss; "": it is
  std::vector<ExpiringCard> cards;  ///< by last day
  /// First and last transaction of the journal, when none is within the time.
  std::optional<DateTime> journalFrom, journalTo;
};

/// Cards that expire within so many days are told of.
inline constexpr int daysOfNotice = 30;

/// Gathers the figures: one pass over the journal, a plan of what the controllers miss, the cards. Nothing is
/// sent or changed. A Refusal for a time, door or group that cannot be read or does not exist, a time of more
/// than ten years, and a journal that cannot be opened.
[[nodiscard]] Figures gatherFigures(Installation& installation, const ReportQuestion& question);

}  // namespace voxa
