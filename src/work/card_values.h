#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/value.h"

namespace voxa {
class Clock;
class Recordset;
}  // namespace voxa

namespace voxa {

class Installation;

// What people write about cards, on the command line and in files, as the columns of "Cardholders".

/// A number that the controllers can hold, 1 to 9999; a Refusal for any other.
[[nodiscard]] std::int16_t cardNumber(const std::string& text);
/// 1 to 8 characters 0-9 and A-F in any case, or ":" to "?" as controllers spell A-F, as they are stored:
/// upper-case letters, zeros on the left to 8. A Refusal for any other text, and for zeros alone, with which
/// a controller erases a card.
[[nodiscard]] std::string cardCode(const std::string& text);

/// Whether a row's code, however it is written, is that one.
[[nodiscard]] bool isCode(const Value& held, const std::string& code);

/// The access groups by number and name.
class GroupNames {
 public:
  explicit GroupNames(Installation& installation);
  /// The group of that name, else of that number; a Refusal when there is none.
  [[nodiscard]] std::int16_t id(const std::string& nameOrNumber) const;
  [[nodiscard]] const std::string& name(std::int16_t id) const { return names_.at(id); }
  [[nodiscard]] const std::map<std::int16_t, std::string>& all() const { return names_; }

 private:
  std::map<std::int16_t, std::string> names_;
  std::map<std::string, std::int16_t> ids_;  // by lower-case name
};

/// As it was written; what is not given stays as it is. "none" for a personal code, last day or credit takes
/// it away, and for a note.
struct CardTexts {
  std::optional<std::string> name = {}, number = {}, code = {}, group = {}, pin = {}, until = {}, credit = {},
                             supervisor = {}, valid = {};
  std::optional<std::string> remark = {};  ///< told behind the name: "Ada Byron (Sales)"
  std::optional<std::string> note = {};    ///< any text, which no controller gets
  bool transliterate = false;              ///< the name may be written in Latin letters
};

/// The same, checked.
struct CardValues {
  CardValues() = default;
  /// A Refusal or Error for what is wrong. clock: tells the century of a year of two digits.
  CardValues(const CardTexts& texts, const GroupNames& groups, const Clock& clock);

  std::optional<std::string> name, code;
  std::optional<std::int16_t> number, group;
  std::optional<Value> pin, until, credit;  ///< Null: none
  std::optional<bool> supervisor, valid;
  std::optional<Value> note;

  /// Into a row that is being edited or added, with the marks of what is given.
  void set(Recordset& row) const;
};

/// Whether a last day is given that is over: the card opens nothing with it.
[[nodiscard]] bool isOver(Installation& installation, const CardValues& values);
/// A Refusal for such a day.
void requireLastDayToCome(Installation& installation, const CardValues& values);

/// Marks a row that is being edited or added as a whole: code, rights, validity, and what else it has of its
/// own. Whatever gives a card to a controller gives it all of that: one that has erased the card meanwhile
/// would open without the last day, the personal code and the credit.
void markWhole(Recordset& row);
/// Marks the live cards of these numbers so, on the disk, before a controller is made to erase them: they
/// come back whole whatever happens on the way.
void markWhole(Installation& installation, const std::set<std::int32_t>& numbers);

/// The numbers, codes and names that cards have. Deleted cards keep their code and name; their number is free
/// once every controller has erased it.
class TakenByCards {
 public:
  /// changing: ids of cards whose present values are in nobody's way.
  explicit TakenByCards(Installation& installation, const std::set<std::int32_t>& changing = {});
  /// A Refusal when a card has one of the values.
  void requireFree(const CardValues& values) const;
  /// who: how a refusal names the new owner.
  void take(const CardValues& values, const std::string& who);
  /// The lowest number that no card has or had, and no controller holds; a Refusal when there is none.
  [[nodiscard]] std::int16_t freeNumber();

 private:
  Installation& installation_;
  std::map<std::int32_t, std::string> numbers_;
  std::map<std::string, std::string> codes_, names_;  // to who has them
  std::set<std::int32_t> everUsed_;
  std::int16_t nextFree_ = 1;
  std::int32_t heldUpTo_ = 0;  // below it everUsed_ has what the controllers hold
};

/// The row of the card of that number; a Refusal when there is none. Deleted cards are passed over.
[[nodiscard]] std::unique_ptr<Recordset> cardNumbered(Installation& installation, std::int16_t number);
/// The row of the card of that number (up to four digits) or name, with all columns; a Refusal when there is
/// none. Deleted cards are passed over, or with `deleted` all others.
[[nodiscard]] std::unique_ptr<Recordset> cardNamed(Installation& installation,
                                                   const std::string& numberOrName, bool deleted = false);

}  // namespace voxa
