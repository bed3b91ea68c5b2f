#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "access/card_doors.h"
#include "controllers/sent_line.h"
#include "lines/card.h"

namespace voxa {

class AccessContext;

/// A program or holiday as the rows want it on the controllers of a type.
struct ThingImage {
  SentLine line;
  bool marked = false;  ///< its row is to be sent
};

/// A card as the rows want it on a controller.
struct CardImage {
  std::array<std::string, cardFieldCount> parts;  ///< by CardField; the values are those of SentLine
  std::vector<std::int16_t> lifts;                ///< outputs that it may use
  CardParts marks;                                ///< parts of the row that are to be sent

  [[nodiscard]] const std::string& part(CardField field) const {
    return parts.at(static_cast<std::size_t>(field));
  }
  /// Whether the part of the row from which a field comes is to be sent; of a lift output the group's.
  [[nodiscard]] bool isMarked(CardField field) const;
};

/// What the controllers should hold, as the rows of the main database say: every program and every holiday
/// that fits a controller's kind, and the cards of the groups that may pass its doors. A row that no line can
/// hold wants nothing.
class Image {
 public:
  explicit Image(AccessContext& context, Database& main) : context_(context), main_(main) {}

  /// Those of the programs and holidays that fit a type of controller. fourIntervals: of daily programs.
  [[nodiscard]] std::vector<ThingImage> things(std::string_view controllerType, bool fourIntervals) const;

  /// Takes a card on a controller.
  using TakeCard = std::function<void(const GrantedController&, std::int32_t number, const CardImage&)>;
  /// Gives each card to each controller of its group: first the cards in use, then the deleted ones, which a
  /// controller should not hold. So of several rows with one number the first one counts.
  void cards(const TakeCard& take) const;

 private:
  struct Granted {
    GrantedController controller;
    std::vector<std::int16_t> lifts;
  };
  [[nodiscard]] std::vector<Granted> grantedBy(std::int16_t group, std::int32_t cardholder) const;
  [[nodiscard]] std::optional<CardImage> cardOn(const Granted& granted, const CardRecord& card) const;

  AccessContext& context_;
  Database& main_;
};

}  // namespace voxa
