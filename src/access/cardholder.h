#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "access/access_context.h"
#include "comm/com_types.h"
#include "tables/table.h"

namespace voxa {

class CardDownload;
struct SentCards;

/// What became of a block of new cards.
struct CreatedCards {
  std::int16_t status = 0;      ///< as Cardholder::createGroup has it
  std::vector<Notice> notices;  ///< what is to be told of it, in this order
  bool everywhere = true;  ///< whether all the group's controllers have them, or else the cards are marked
};

/// Cardholders: one row per card, known to the controllers by its number and its 8-digit code. Table
/// "Cardholders", with the stored query "AccessGroupReaders" of a group's readers.
///
/// The lookups by card number pass over deleted cards and are silent about a number that is not in use.
/// Blocks of new cards are in card_batch.cpp, everything else is in cardholder.cpp.
class Cardholder : public Table {
 public:
  explicit Cardholder(AccessContext& context) : Table(context, "Cardholders"), access_(context) {}

  /// Sends the changed parts of one cardholder to every controller of its access group, after a test of
  /// their communication. 0 sent, nothing to send, or aborted by the person; 1 a station concerned is not
  /// active (shown), else the line's code, an error's number, or -1 for an unknown cardholder (shown).
  std::int16_t download(std::int16_t Id);
  /// The same for every cardholder that is not deleted, to the controllers of a component. With DLFull or
  /// DLMemErased in Params everything is sent, with DLNoMessage no box is shown. A component other than all
  /// active stations leaves the flags of what it was sent, for the controllers that were not.
  std::int16_t generalDownload(ComponentType compType = CTActiveStations, const std::string& compName = "",
                               std::int16_t Params = DLDefault, bool* AlreadyComTested = nullptr);
  /// The same without the test and without a box. component: of a known type.
  [[nodiscard]] SentCards sendAll(const Component& component, std::int16_t Params);
  /// Clears a card in the controllers of a component; the line's result, for the caller to show.
  std::int16_t invalidate(std::int16_t cardNum, ComponentType compType = CTActiveStations,
                          const std::string& compName = "");
  /// Clears a card in all controllers; a failure is shown. Marking the row `Deleted` is the caller's part.
  std::int16_t delete_(std::int16_t cardNum);
  /// Creates nCards cards with consecutive numbers and codes in an access group and downloads them, all or
  /// nothing. firstCardCode: up to 8 digits. GroupMode: the names are the codes, else "Card" and the number.
  /// 0; 1 when a number or code is in use, by a deleted card too (shown); -1 a controller did not take them,
  /// or an error's number (both shown, and no card is left, in the table or on a controller). What a process
  /// that is killed meanwhile leaves on controllers, the next createGroup or generalDownload erases first.
  std::int16_t createGroup(std::int32_t firstCardNum, const std::string& firstCardCode, std::int16_t nCards,
                           std::int16_t accessGroupId, bool GroupMode = false);
  /// The same without a box.
  [[nodiscard]] CreatedCards createCards(std::int32_t firstCardNum, const std::string& firstCardCode,
                                         std::int16_t nCards, std::int16_t accessGroupId, bool GroupMode);

  std::int16_t getCardNumId(std::int16_t cardNum);     ///< 0 when there is none
  std::string getNameByCardNum(std::int16_t cardNum);  ///< "" when there is none
  bool getCardNumInUse(std::int16_t cardNum);
  bool getCardCodeInUse(std::int32_t cardCode);  ///< by value; deleted cards too; a failure is raised
  std::int16_t getFreeCardNum();                 ///< the numbers of deleted cards are not free

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;

 private:
  CreatedCards createBatch(std::int32_t firstCardNum, const std::string& firstCardCode, std::int16_t nCards,
                           std::int16_t accessGroupId, bool GroupMode);
  SentCards conclude(CardDownload& download, const char* method, std::int16_t params);
  AccessContext& access_;
};

}  // namespace voxa
