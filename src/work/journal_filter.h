#pragma once

#include <set>
#include <string>
#include <vector>

#include "work/card_history.h"

namespace voxa {

class Installation;
class JournalCondition;
struct JournalFilter;
struct JournalRow;

/// Adds to a condition what a filter says of the rows, but for times and the person; a Refusal for what
/// cannot be read.
void addFilter(Installation& installation, const JournalFilter& filter, JournalCondition& condition);

/// Adds that a row is of one of these card numbers, of which there is at least one.
void addNumbers(const std::vector<std::int32_t>& numbers, JournalCondition& condition);

/// Whether a filter's card can be one: a number, a code, or a name that a card has or had.
[[nodiscard]] bool canBeCard(Installation& installation, const std::string& card);

/// A person by name or card number, under all names and numbers that his card had. A number alone is that of
/// the card which has it now. Who has no card and had none is a name in the journal only.
class JournalPerson {
 public:
  JournalPerson(Installation& installation, const std::string& nameOrNumber);

  /// A part of the condition: all rows that can be his.
  void addTo(JournalCondition& condition) const;
  /// Whether one of these rows is: two people can have had the same name, one behind the other the same
  /// number.
  [[nodiscard]] bool did(const JournalRow& row) const;
  /// Whether the installation knows, or knew, such a card.
  [[nodiscard]] bool isKnown() const { return !ids_.empty(); }

 private:
  CardOwners owners_;
  std::set<std::int32_t> ids_;
  std::set<std::string> names_;   // in lower case, as the journal has them
  std::set<std::string> stored_;  // what his rows can have for a name
};

}  // namespace voxa
