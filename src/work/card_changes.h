#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/card_values.h"

namespace voxa {

class Installation;
class Observer;
class Recordset;
class Refusal;

/// A value that a change of cards replaces.
struct CardDifference {
  Value number;        ///< of the card, as it is before
  std::string name;    ///< the same
  std::string column;  ///< "group"
  std::string before;  ///< as people write it; "none" without one. Personal codes are not told
  std::string after;
};

/// New cards, and changes of others, which are made together: all or none.
///
/// A card that gets another number or code is first erased on all its controllers, one that gets another
/// group on those that it loses: one that kept it would open to whoever has the number, or the card of that
/// code, next. A controller is asked once for all cards.
class CardChanges {
 public:
  explicit CardChanges(Installation& installation);

  /// card: its row, with all columns. line: where a table says so, from 1; 0 without one.
  void change(const Recordset& card, CardValues values, std::size_t line = 0);
  void add(CardValues values, std::size_t line = 0);

  [[nodiscard]] bool empty() const { return changes_.empty() && added_.empty(); }
  [[nodiscard]] std::size_t changed() const { return changes_.size(); }
  [[nodiscard]] std::size_t added() const { return added_.size(); }
  /// What the changes of present cards replace, in the order in which they were named.
  [[nodiscard]] std::vector<CardDifference> differences() const;
  [[nodiscard]] std::vector<CardValues> newCards() const;
  /// Hands over the lines of which a card would have the number, code or name of another one afterwards,
  /// while the Refusal that says so is being handled.
  void visitClashes(const std::function<void(std::size_t line, const Refusal& clash)>& onClash) const;

  /// Gives each new card without one a number, in their order: the lowest that no card has or had (newCards).
  /// Erases what is to be erased; a Refusal when a controller that has to do so does not answer: then no row
  /// changes. Then changes the rows, marked to be sent. A Refusal when two cards would have the same number,
  /// code or name, and while a controller may still hold a number or code as another card's.
  void carryOut(Observer* observer = nullptr);

 private:
  struct Change {
    std::int32_t id = 0;
    Value number, name, code, group;  // as they are before
    bool renumbered = false, recoded = false, renamed = false;
    bool moves = false;  // the first two, or gets another group
    CardValues values;
    std::size_t line = 0;
    std::vector<CardDifference> differences;
  };
  struct Addition {
    CardValues values;
    std::size_t line = 0;
  };
  [[nodiscard]] TakenByCards takenAfterwards(
      const std::function<void(std::size_t line, const Refusal& clash)>& onClash) const;
  void eraseWhatIsLost();
  /// A Refusal when a controller may hold a number or code as another card's, which is not changed here
  /// or, behind the erasing, was not erased.
  void requireHeldByNoOther(bool beforeErasing) const;
  void freeOldValues(const Change& change);
  void write(const Change& change);
  void write(const CardValues& values, Recordset& rows);

  Installation& installation_;
  GroupNames groups_;
  std::vector<Change> changes_;
  std::vector<Addition> added_;
};

}  // namespace voxa
