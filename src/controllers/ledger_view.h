#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "controllers/controller_list.h"
#include "controllers/holdings.h"
#include "controllers/thing_slot.h"

namespace voxa {

class LedgerFile;

/// The ledger at one moment, with what is being sent in doubt: for those who compare it with the rows. Within
/// a transaction of the ledger.
class LedgerView {
 public:
  /// keeps: whether digests that are noted stay.
  LedgerView(const LedgerFile& file, const ControllerList& controllers, bool keeps);

  [[nodiscard]] const ControllerList& controllers() const { return controllers_; }
  /// Those that are no longer in use, the last one first.
  [[nodiscard]] std::vector<LedgerController> retired() const;
  /// From now on only one card number, and the digests of all that are no cards, are asked for: they are read
  /// for all controllers at once.
  void narrowTo(std::int32_t number);
  /// All that is known of a controller; nothing of one that the ledger does not know.
  [[nodiscard]] Holdings holdings(const ControllerPlace& place) const;
  /// The part of it in these slots, and of which kinds others may be there.
  [[nodiscard]] Holdings holdings(const ControllerPlace& place, const SlotRange& slots) const;

  /// A number under which a controller has a card, or may have it, with each code that it may be known by.
  struct HeldCode {
    ControllerPlace place;
    std::int32_t number;
    std::vector<std::string> codes;
  };
  /// The cards with one of these numbers, and those with one of these codes, as SentLine has them, in one
  /// pass. Of a card of which nothing is known no code is named: it is not among them.
  [[nodiscard]] std::vector<HeldCode> heldCodes(const std::set<std::int32_t>& numbers,
                                                const std::set<std::string>& codes) const;

  [[nodiscard]] bool knowsNothingOf(const ControllerPlace& place) const;

  /// The digests of the parts of a controller that were in order, by bucket (digest.h).
  [[nodiscard]] std::map<std::int32_t, std::uint64_t> digests(const ControllerPlace& place) const;
  void note(const ControllerPlace& place, std::int32_t bucket, std::uint64_t digest) const;

  /// Whether the marked credit of a card is on its way (Ledger::beginCredits).
  [[nodiscard]] bool isCreditSent(std::int32_t number) const { return creditsSent_.contains(number); }
  [[nodiscard]] const std::set<std::int32_t>& creditsSent() const { return creditsSent_; }
  /// Whether the controllers were told daily programs of four intervals; none when of nothing yet.
  [[nodiscard]] std::optional<bool> fourIntervals() const;

 private:
  const LedgerFile& file_;
  const ControllerList& controllers_;
  bool keeps_;
  std::set<std::int32_t> creditsSent_;
  struct Narrow {
    std::int32_t number;
    std::map<std::int32_t, Holdings> cards;         // by id of the controller
    std::map<std::int32_t, std::uint64_t> digests;  // of what is no card
  };
  std::optional<Narrow> narrow_;
};

}  // namespace voxa
