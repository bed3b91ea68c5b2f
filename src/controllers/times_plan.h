#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "controllers/holdings.h"
#include "controllers/image.h"
#include "controllers/plan.h"

namespace voxa {

/// What changes at a controller of its programs, holidays and badge formats, and what that means to cards.
class TimesPlan {
 public:
  /// isNew: nothing was ever sent to the controller. full: everything is sent again.
  TimesPlan(const ThingImages& wanted, const Holdings& held, const std::string& controllerType, bool isNew,
            bool full);

  [[nodiscard]] std::vector<PlanItem> takeItems() { return std::move(items_); }

  enum class Change : std::uint8_t {
    none,
    simple,  ///< at each moment the old times are in force or the new ones, whichever line has arrived
    mixed    ///< in between times may be in force that are neither
  };
  /// What happens to the cards of a weekly program of family C.
  [[nodiscard]] Change of(std::int16_t program) const;
  /// The worst of all programs.
  [[nodiscard]] Change ofAny() const;
  /// The things that have yet to be taken, or cannot be right, before the program is what it should be.
  [[nodiscard]] std::set<std::pair<ThingKind, std::int32_t>> needsOf(std::int16_t program) const;
  /// Programs and holidays that change.
  [[nodiscard]] const std::set<std::pair<ThingKind, std::int32_t>>& changes() const { return changes_; }

 private:
  using Thing = std::pair<ThingKind, std::int32_t>;

  void want(const ThingImage& image, const Holdings& held, bool isNew, bool full);
  void eraseHolidays(const Holdings& held, const std::string& controllerType);
  void repeatFormats(const Holdings& held, const std::string& controllerType, bool isNew, bool full);
  void add(const Thing& thing, PlanItem::Action action, PlanReason reason, std::string line);
  void noteDailies(std::int32_t program, const Possible& before);
  void noteDays(const Possible& before, const std::string& after);
  [[nodiscard]] std::set<std::int32_t> dailiesOf(std::int16_t program) const;

  std::vector<PlanItem> items_;
  std::set<Thing> wanted_;
  std::set<Thing> changes_;                                 // programs and holidays
  std::set<Thing> faults_;                                  // of rows that cannot be right
  std::map<std::int16_t, std::set<std::int32_t>> dailies_;  // that weekly programs of family C name or named
  std::set<std::int16_t> anyDaily_;                         // programs of which that is not known
  std::multiset<std::string> daysBefore_, daysAfter_;       // ddmm of holidays that change
  bool anyDay_ = false;                                     // one of them may have been any
};

}  // namespace voxa
