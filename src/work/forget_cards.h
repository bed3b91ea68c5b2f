#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "access/card_doors.h"

namespace voxa {

class Installation;

// A download goes to the controllers of a card's present group, and adds. So whatever takes a controller, or
// a lift output there, away from cards lets the controller erase them first; a card that it is to keep is
// sent again as a whole.

/// A controller that a group reaches, and the lift outputs its cards may use there.
struct ReachedController {
  GrantedController controller;
  std::set<std::int16_t> lifts;
};
[[nodiscard]] std::vector<ReachedController> reachOf(Installation& installation, std::int16_t group);

/// What of `reach` is not in `other`: controllers, and those with lift outputs more than there. Of the reach
/// that cards had, to the one they will have: who has to erase them first. The other way round: who may know
/// nothing of them yet.
[[nodiscard]] std::vector<GrantedController> without(const std::vector<ReachedController>& reach,
                                                     const std::vector<ReachedController>& other);

/// The numbers of a group's cards: `live` ones, and deleted ones that a controller has yet to erase.
struct CardsOfGroup {
  std::vector<std::int32_t> live, deleted;
};
[[nodiscard]] CardsOfGroup cardsOf(Installation& installation, std::int16_t group);

/// Marks a group that has cards, and these as a whole, after a change of its doors.
void markGroup(Installation& installation, std::int16_t group);

/// Cards that controllers are to erase now. To be sent before the rows change.
class ForgetCards {
 public:
  explicit ForgetCards(Installation& installation) : installation_(installation) {}

  void on(const std::vector<GrantedController>& controllers, const std::vector<std::int32_t>& numbers);
  /// Tests the controllers and lets them erase the cards. When one of them does not answer, or its line is
  /// not in use, a Refusal names it and nothing has been sent. When one does not take the lines a Refusal
  /// names it, and the cards stay marked, so that a download gives them back to the others. Nothing is sent
  /// where communications are inhibited.
  void send();

 private:
  struct Erasing {
    GrantedController controller;
    std::set<std::int32_t> numbers;
  };
  void requireAnswers();
  bool erase(const Erasing& erasing);

  Installation& installation_;
  std::map<ControllerPlace, Erasing> erasing_;
};

}  // namespace voxa
