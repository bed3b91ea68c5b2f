#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/value.h"

namespace voxa {
class Recordset;
}

namespace voxa::cli {

class Installation;

// What people write about cards, on the command line and in files, as the columns of "Cardholders".

/// A number that the controllers can hold, 1 to 9999; overflow (error 6) for any other number.
[[nodiscard]] std::int16_t cardNumber(const std::string& text);
/// 1 to 8 characters 0-9 and A-F in any case, or ":" to "?" as controllers spell A-F, as they are stored:
/// upper-case letters, zeros on the left to 8. A Refusal for any other text, and for zeros alone, with which
/// a controller erases a card.
[[nodiscard]] std::string cardCode(const std::string& text);

/// The access groups by number and name.
class GroupNames {
 public:
  explicit GroupNames(const Installation& installation);
  /// The group of that name, else of that number; a Refusal when there is none.
  [[nodiscard]] std::int16_t id(const std::string& nameOrNumber) const;
  [[nodiscard]] const std::string& name(std::int16_t id) const { return names_.at(id); }
  [[nodiscard]] const std::map<std::int16_t, std::string>& all() const { return names_; }

 private:
  std::map<std::int16_t, std::string> names_;
  std::map<std::string, std::int16_t> ids_;  // by lower-case name
};

/// As it was written; what is not given stays as it is. "none" for a personal code, last day or credit takes
/// it away.
struct CardTexts {
  std::optional<std::string> name, number, code, group, pin, until, credit, supervisor, valid;
};

/// The same, checked.
struct CardValues {
  CardValues() = default;
  CardValues(const CardTexts& texts, const GroupNames& groups);  ///< a Refusal or Error for what is wrong

  std::optional<std::string> name, code;
  std::optional<std::int16_t> number, group;
  std::optional<Value> pin, until, credit;  ///< Null: none
  std::optional<bool> supervisor, valid;

  /// Into a row that is being edited or added, with the marks of what is given.
  void set(Recordset& row) const;
};

/// Marks code, rights and validity of a row that is being edited or added.
void markRights(Recordset& row);
/// The same for controllers that may know nothing of the card: also what else it has of its own.
void markWhole(Recordset& row);

/// The numbers, codes and names that cards have. Deleted cards keep their code and name; their number is free
/// once every controller has erased it.
class TakenByCards {
 public:
  /// ownId: a card whose own values are not in its way.
  explicit TakenByCards(const Installation& installation, std::int32_t ownId = 0);
  /// A Refusal when a card has one of the values.
  void requireFree(const CardValues& values) const;
  /// who: how a refusal names the new owner.
  void take(const CardValues& values, const std::string& who);
  /// The lowest number that no card has or had; a Refusal when there is none.
  [[nodiscard]] std::int16_t freeNumber();

 private:
  std::map<std::int32_t, std::string> numbers_;
  std::map<std::string, std::string> codes_, names_;  // to who has them
  std::set<std::int32_t> everUsed_;
  std::int16_t nextFree_ = 1;
};

/// The row of the card of that number (up to four digits) or name, with all columns; a Refusal when there is
/// none. Deleted cards are passed over.
[[nodiscard]] std::unique_ptr<Recordset> cardNamed(const Installation& installation,
                                                   const std::string& numberOrName);

}  // namespace voxa::cli
