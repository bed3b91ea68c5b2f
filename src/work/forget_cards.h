#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <vector>

#include "access/card_doors.h"

namespace voxa {

class Installation;

/// Cards that controllers are to erase now. To be sent before the rows change: a download goes to the
/// controllers of a card's present group, and adds. So whatever takes a controller, or a lift output there,
/// away from cards lets the controller erase them first. A card that it is to keep is sent again as a whole.
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
