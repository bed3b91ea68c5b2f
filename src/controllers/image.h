#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "access/card_doors.h"
#include "controllers/sent_line.h"
#include "lines/card.h"

namespace voxa {

class AccessContext;
class Database;
class Recordset;

/// A row that cannot be right, so that controllers neither get it nor lose what they hold of it.
struct LeftOut {
  ThingKind kind = ThingKind::card;
  std::int32_t number = 0;
  std::string row;  ///< "card 12 (Miller)"
  std::string reason;
};

/// A program or holiday as the rows want it on the controllers of a type.
struct ThingImage {
  SentLine line;
  std::string text;     ///< of the line
  bool marked = false;  ///< its row is to be sent
};
struct ThingImages {
  std::vector<ThingImage> things;
  std::uint64_t digest = 0;  ///< of the type and the lines
  std::vector<LeftOut> leftOut;
};

/// A card as its row wants it, wherever it is sent.
struct ImageCard {
  std::int32_t number = 0;
  std::int16_t group = 0;
  std::string name;
  bool wanted = false;  ///< controllers are to have it: it is not deleted, and has a code
  bool deleted = false;
  bool validated = false;
  CardParts marks;                                 ///< parts of the row that are to be sent
  std::array<std::string, cardFieldCount> values;  ///< by CardField, but for rights, as their lines have them
  std::string fault;                               ///< why it cannot be right; "" when it can
};

/// What an access group grants on a controller.
struct ImageRights {
  std::string controllerType;
  CardRights rights;
  std::vector<std::int16_t> lifts;
  std::string fault;  ///< why its cards cannot be sent there; "" when they can
};

/// A card as the rows want it on a controller.
struct CardImage {
  std::array<std::string, cardFieldCount> values;  ///< by CardField, as their lines have them

  [[nodiscard]] const std::string& value(CardField field) const {
    return values.at(static_cast<std::size_t>(field));
  }
};

/// What the controllers should hold, as the rows of the main database say at one moment: every program and
/// every holiday that fits a controller's kind, and the cards of the groups that may pass its doors.
class Image {
 public:
  /// Reads the rows. only: of the cards those with this number.
  explicit Image(AccessContext& context, std::optional<std::int32_t> only = {});

  /// Those of the programs and holidays that fit a type of controller.
  [[nodiscard]] const ThingImages& things(const std::string& controllerType) const;

  /// One a number, by number: the card in use, or a deleted one. Cards of one number that are in use have a
  /// fault, each of them.
  [[nodiscard]] const std::vector<ImageCard>& cards() const { return cards_; }
  [[nodiscard]] const ImageCard* card(std::int32_t number) const;
  /// What a group grants at a place; null when nothing.
  [[nodiscard]] const ImageRights* granted(const ControllerPlace& place, std::int16_t group) const;
  /// What the groups grant there, by group.
  [[nodiscard]] const std::map<std::int16_t, ImageRights>& grantedAt(const ControllerPlace& place) const;
  [[nodiscard]] static CardImage on(const ImageCard& card, const ImageRights& granted);
  /// Cards with a fault, and those whose number is none that a controller could know.
  [[nodiscard]] const std::vector<LeftOut>& leftOut() const { return leftOut_; }
  [[nodiscard]] bool fourIntervals() const { return fourIntervals_; }

 private:
  void readCards(Database& main, std::optional<std::int32_t> only);
  void readRights(Database& main, std::optional<std::int16_t> onlyGroup);
  void addCard(const Recordset& row);
  [[nodiscard]] ThingImages thingsFor(const std::string& controllerType) const;

  AccessContext& context_;
  DateTime today_;
  bool fourIntervals_;
  std::vector<ImageCard> cards_;
  std::map<ControllerPlace, std::map<std::int16_t, ImageRights>> rights_;
  std::vector<LeftOut> leftOut_;
  mutable std::map<std::string, ThingImages> things_;  // by type, once they are asked for
};

/// The value of a field as the ledger has it.
[[nodiscard]] std::string ledgerValue(CardField field, const std::string& lineValue);

}  // namespace voxa
