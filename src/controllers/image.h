#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
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

inline constexpr std::int32_t greatestCardNumber = 9999;

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
  std::vector<LeftOut> ofOthers;  ///< rows that only controllers of the other type take
};

/// A card as its row wants it, wherever it is sent.
struct ImageCard {
  std::int32_t number = 0;
  std::int16_t group = 0;
  std::string name;
  bool wanted = false;  ///< controllers are to have it: it is not deleted, and has a code
  bool deleted = false;
  bool validated = false;
  bool barred = false;  ///< it opens nothing: it is blocked, or its last day is over
  CardParts marks;      ///< parts of the row that are to be sent
  std::array<std::string, cardFieldCount> values;  ///< by CardField, but for rights, as their lines have them
  std::string fault;                               ///< why it cannot be right; "" when it can
  bool several = false;                            ///< other cards in use have its number
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
  /// The places of the controllers where a group is granted anything.
  [[nodiscard]] std::vector<ControllerPlace> placesOf(std::int16_t group) const;
  [[nodiscard]] static CardImage on(const ImageCard& card, const ImageRights& granted);
  /// Cards with a fault, and those whose number is none that a controller could know.
  [[nodiscard]] const std::vector<LeftOut>& leftOut() const { return leftOut_; }
  /// Access groups with a reader that is on no controller: nobody can be told of their cards there.
  [[nodiscard]] const std::set<std::int16_t>& groupsLeftOut() const { return groupsLeftOut_; }
  [[nodiscard]] bool fourIntervals() const { return fourIntervals_; }

 private:
  void readCards(Database& main, std::optional<std::int32_t> only);
  void readRights(Database& main, std::optional<std::int16_t> onlyGroup);
  void addCard(const Recordset& row);
  struct ThingRow {
    ThingKind kind = ThingKind::daily;
    std::int32_t number = 0;
    std::string row;   // as a person names it
    std::string text;  // of the line; "" with a fault
    std::string fault;
    bool marked = false;
  };
  void leaveOut(std::int16_t group, const std::string& reason);
  void readThings(Database& main);
  void addThing(ThingKind kind, const Recordset& row);
  [[nodiscard]] std::string missingDaily(const std::string& weeklyLine) const;
  [[nodiscard]] ThingImages thingsFor(const std::string& controllerType) const;

  AccessContext& context_;
  DateTime today_;
  bool fourIntervals_;
  std::vector<ImageCard> cards_;
  std::map<ControllerPlace, std::map<std::int16_t, ImageRights>> rights_;
  std::vector<LeftOut> leftOut_;
  std::set<std::int16_t> groupsLeftOut_;
  std::vector<ThingRow> rows_;                          // of programs and holidays
  std::set<std::pair<ThingKind, std::int32_t>> known_;  // programs that have a row
  mutable std::map<std::string, ThingImages> things_;   // by type, once they are asked for
};

/// The value of a field as the ledger has it.
[[nodiscard]] std::string ledgerValue(CardField field, const std::string& lineValue);

}  // namespace voxa
