#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "controllers/digest.h"
#include "controllers/image.h"
#include "controllers/plan.h"

namespace voxa {

class AccessContext;
class LedgerView;
class TimesPlan;
struct CardsAt;
struct Holdings;

/// What is planned.
struct PlanScope {
  std::optional<std::int32_t> card = {};  ///< of the cards this number alone, and no programs and holidays
  std::optional<std::set<ControllerPlace>> places = {};  ///< these alone
  bool full = false;                                     ///< everything is sent, whatever they hold
  bool erasesBlocked = false;  ///< a card that is not valid is erased, not only shut
};

/// Compares what the controllers should hold with what the ledger knows of them. What the rows wanted of a
/// part of a controller that was found in order is kept as a digest: such a part is not looked at again
/// until its rows or its holdings change.
class Planner {
 public:
  /// Reads the rows. Raises what fails.
  Planner(AccessContext& context, PlanScope scope);

  /// The places with something to compare, those of controllers that lost their readers among them.
  [[nodiscard]] std::vector<ControllerPlace> places(LedgerView& ledger) const;
  /// What the controller at a place misses. ledger: one that places() was asked about.
  [[nodiscard]] ControllerPlan plan(const LedgerView& ledger, const ControllerPlace& place) const;
  /// Cards that cannot be right.
  [[nodiscard]] const std::vector<LeftOut>& leftOut() const { return image_.leftOut(); }
  [[nodiscard]] const Image& image() const { return image_; }

 private:
  using Buckets = std::array<std::uint64_t, cardBuckets>;
  struct At;
  void planThings(At& at) const;
  [[nodiscard]] bool hasBothTypes(const At& at) const;
  static void addNeeds(At& at, std::int16_t program);
  void planCards(At& at) const;
  [[nodiscard]] std::vector<std::int32_t> bucketsToWalk(At& at) const;
  void planBucket(At& at, const Holdings& held, std::int32_t bucket) const;
  [[nodiscard]] CardsAt cardsAt(const At& at) const;
  void planNumber(At& at, const CardsAt& cards, const Holdings& held, std::int32_t number) const;
  [[nodiscard]] Buckets cardDigests(const ControllerPlace& place) const;

  PlanScope scope_;
  Image image_;
  std::map<std::int16_t, Buckets> ofGroups_;  // what the rows of a group's cards say, by bucket
  std::set<std::int32_t> withoutDigest_;      // buckets that are always looked at
};

}  // namespace voxa
