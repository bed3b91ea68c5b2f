#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {

class Installation;
class Recordset;

// What cards were called before, and which number they had: the journal tells of a card by its number, and
// by the name that it had when it was read. Kept in the table "CardHistory" of the main database, which is
// made when there is something to keep. Changes by statements are not seen.

/// Notes that a card ceases to have its name and number now, in the transaction of that change. card: its
/// row, as it was until now. To be called before either of them changes, and before the row is removed.
void keepCardHistory(Installation& installation, const Recordset& card);
/// The same of the deleted cards which had a number that another card gets.
void keepHistoryOfNumber(Installation& installation, std::int32_t number);

/// Whose number was which, read once. Moments are compared as they are: of a controller's clock, in minutes.
class CardOwners {
 public:
  explicit CardOwners(Installation& installation);

  /// Id of the card that had a number at a moment: as far as is known, it had it from the beginning. 0 for a
  /// number that no card has or had.
  [[nodiscard]] std::int32_t ownerAt(std::int32_t number, DateTime moment) const;
  /// Whose a transaction of a number is: the card that had it then, when it is stored under the number or a
  /// name that one of the cards has or had that shared it. A transaction that was read late has the name of
  /// the number's next holder. 0 when another name was stored: the history says nothing of that one.
  [[nodiscard]] std::int32_t doer(std::int32_t number, DateTime moment, const std::string& storedName) const;
  /// Whether a number was another's, or another name's, before.
  [[nodiscard]] bool hasPast(std::int32_t number) const { return past_.contains(number); }
  /// The cards that have or had a number.
  [[nodiscard]] std::vector<std::int32_t> idsOf(std::int32_t number) const;
  /// The names of a card: the present one, unless its row is gone, and behind it the earlier ones, the last
  /// one first.
  [[nodiscard]] std::vector<std::string> namesOf(std::int32_t id) const;
  /// The numbers that a card has or had, in any order.
  [[nodiscard]] std::vector<std::int32_t> numbersOf(std::int32_t id) const;
  /// The cards that have or had a name, in any case. One that has it comes first.
  [[nodiscard]] std::vector<std::int32_t> idsNamed(const std::string& name) const;

 private:
  struct Past {
    std::int32_t id = 0;
    DateTime until;
  };
  void take(std::int32_t id, const Value& number, const std::string& name, bool present);

  std::map<std::int32_t, std::vector<Past>> past_;  // by number, the first that ended first
  std::map<std::int32_t, std::int32_t> present_;    // number to id
  std::map<std::int32_t, std::vector<std::string>> names_;
  std::map<std::int32_t, std::vector<std::int32_t>> numbers_;
  std::map<std::string, std::vector<std::int32_t>> ids_;  // by lower-case name
};

}  // namespace voxa
