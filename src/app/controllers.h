#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/access_answer.h"

namespace voxa {

class AccessQuestions;
class Installation;
struct CarryOut;

/// What the controllers miss, bringing them to it, and who may open what: for programs, which change rows by
/// statements of their own. Rows are compared with what the ledger knows of each controller. So a download
/// also sends what no mark tells of, and erases a card where its group does not open any more.
///
/// A failure is shown with the name of the member; what was asked wrongly in a sentence, and is error 5.
class Controllers {
 public:
  /// context: must outlive this object.
  explicit Controllers(Installation& context) : context_(context) {}

  /// What is to be done for a thing at a controller, in words.
  struct Item {
    std::string controller;  ///< "Local Controller 1  -  Front door"; "" of a card that is right nowhere
    std::string thing;       ///< "card 12"
    std::string action;      ///< as textOf(PlanItem::Action), or "leave out": the row cannot be right
    std::string reason;      ///< behind a download with what kept it back
  };

  /// Makes the plan of a station's controllers, of a reader's, or of all with neither name, and keeps it.
  /// Nothing is sent. The number of its items; -1 when it failed, and then it has none.
  std::int32_t plan(const std::string& stationName = "", const std::string& readerName = "");
  /// An item of the last plan, or of what the last download left; from 0. Empty texts: there is none.
  [[nodiscard]] Item item(std::int32_t index) const;

  static constexpr std::int16_t somethingMissing = 3;
  /// Carries out the plan of these controllers as it is now (voxa::carryOut); full and dial as there. 0: each
  /// of them holds what it should. somethingMissing: the items tell what. 70: another process has the lines.
  /// Else the number of another error.
  std::int16_t download(const std::string& stationName = "", const std::string& readerName = "",
                        bool full = false, bool dial = false);
  /// The same of one card number, 1 to 9999, at all controllers; without programs and holidays.
  std::int16_t downloadCard(std::int32_t cardNum);
  /// Another controller was put in place (noteReplaced). 0, or the number of an error.
  std::int16_t replaced(const std::string& stationName, std::int16_t address, bool usedElsewhere = false);

  // By the rows, as AccessQuestions has it; now when no moment is given. After a failure the door stays shut,
  // and a text is empty. A text is a line that says whether the card opens the door, why, and whether the
  // controller knows that; several have CR LF between.

  bool mayOpen(const std::string& card, const std::string& door, std::optional<DateTime> at = {});
  std::string whyOpen(const std::string& card, const std::string& door, std::optional<DateTime> at = {});
  std::string whoOpens(const std::string& door, std::optional<DateTime> at = {});
  std::string whatOpens(const std::string& card, std::optional<DateTime> at = {});

 private:
  using Question = std::function<std::vector<AccessAnswer>(AccessQuestions&, DateTime)>;
  std::int16_t attempt(const char* mnemonic, const char* member, const std::function<void()>& body);
  std::int16_t carryOut(const char* member, const std::function<CarryOut()>& how);
  std::vector<AccessAnswer> ask(const char* member, std::optional<DateTime> at, const Question& question);

  Installation& context_;
  std::vector<Item> items_;
};

}  // namespace voxa
