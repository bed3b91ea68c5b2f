#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "controllers/ledger_view.h"

namespace voxa {

class Installation;

// Cards that controllers may still open to, while the rows no longer say so: one that was silent when a card
// got another code or number opens to the old one, as the person of that number. Who gets such a code or
// number would be taken for somebody else there.

/// What a card is going to be.
struct CardIdentity {
  std::int32_t number = 0;  ///< 0: not chosen yet
  std::string code;         ///< as cardCode has it; "" when it has none
  bool newNumber = false;   ///< it did not have the number before
};

/// What the controllers may hold of some numbers and codes, by the ledger at this moment.
class HeldCodes {
 public:
  /// One look at the ledger, for any number of cards.
  HeldCodes(Installation& installation, const std::vector<CardIdentity>& cards);

  /// A Refusal that names the controllers which may know the code under another number, or under a new number
  /// another code. passOver: numbers of cards that are going to be erased first.
  void requireFree(const CardIdentity& card, const std::set<std::int32_t>& passOver = {}) const;
  /// The numbers under which a code may be known.
  [[nodiscard]] std::set<std::int32_t> numbersOf(const std::string& code) const;

 private:
  using Found = std::vector<LedgerView::HeldCode>;
  [[nodiscard]] std::vector<std::string> namesOf(const Found& cards) const;

  Installation& installation_;
  std::map<std::string, Found> byCode_;  // that were asked for, as controllers hold them
  std::map<std::int32_t, Found> byNumber_;
};

/// A code as controllers hold it; "" for none, and for one that none can hold.
[[nodiscard]] std::string heldForm(const std::string& code);

/// Controllers, by name, that may hold any card of that number, also those of which nothing is known.
[[nodiscard]] std::vector<std::string> holdersOf(Installation& installation, std::int32_t number);

/// Of `first` and the numbers behind it up to `end`, those under which a controller may open to a code.
[[nodiscard]] std::set<std::int32_t> heldNumbers(Installation& installation, std::int32_t first,
                                                 std::int32_t end);

}  // namespace voxa
