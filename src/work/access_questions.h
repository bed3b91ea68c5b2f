#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "controllers/image.h"
#include "work/access_answer.h"
#include "work/daily_programs.h"
#include "work/holidays.h"
#include "work/readers.h"

namespace voxa {

class Installation;
class Recordset;

/// Who may open what, by the rows of an installation and by what its controllers hold. When in doubt a door
/// stays shut. Rows and holdings are read when they are first needed, and kept: for one piece of work.
///
/// A controller is taken not to have what was never sent to it. Without a ledger nothing is known of any.
class AccessQuestions {
 public:
  explicit AccessQuestions(Installation& installation);

  /// card: number or name; also of a deleted card, when no other has it. door: name of a reader. A Refusal
  /// when there is none.
  [[nodiscard]] AccessAnswer mayOpen(const std::string& card, const std::string& door, DateTime at);
  /// The cards that open a door at that moment or at any other hours of their weekly program, by number; and
  /// those to which its controller opens, or may open, against what the rows say.
  [[nodiscard]] std::vector<AccessAnswer> whoOpens(const std::string& door, DateTime at);
  /// The doors that a card's group grants, and their other sides, by reader; and those which their
  /// controllers open to the card, or may open, against what the rows say.
  [[nodiscard]] std::vector<AccessAnswer> whatOpens(const std::string& card, DateTime at);

 private:
  struct Door {
    ReaderRow row;
    ControllerPlace place;
    CardField right = CardField::door1;  ///< of its controller's cards
    std::string type;                    ///< of its controller
    bool lineInUse = false;
    std::string fault;  ///< why its controller cannot be told of it
  };
  /// A group at a controller.
  struct Reach {
    std::optional<ImageRights> granted;
    std::string fault;
    std::vector<DoorSide> sides;
  };
  struct Case;

  [[nodiscard]] Door doorNamed(const std::string& name);
  [[nodiscard]] Door doorOf(const ReaderRow& row);
  [[nodiscard]] std::unique_ptr<Recordset> cardRow(const std::string& card);
  [[nodiscard]] Case judge(const Recordset& card, const Door& door, DateTime at);
  [[nodiscard]] AccessReason reasonByRows(Case& asked);
  [[nodiscard]] AccessReason reasonByTime(Case& asked);
  void compareWithController(Case& asked);
  void noteWhatIsAgainst(Case& asked, const Holdings& held, const CardState& card);

  [[nodiscard]] const Reach& reachOf(std::int16_t group, const ControllerPlace& place);
  [[nodiscard]] const Holdings& programsFor(const std::string& controllerType);
  [[nodiscard]] const Holdings& heldAt(const ControllerPlace& place);

  Installation& installation_;
  DateTime today_;
  Image image_;
  std::set<std::int32_t> sharedNumbers_;
  std::vector<HolidayRow> holidays_;
  std::map<std::int16_t, std::string> weeklyNames_;  // of family C
  std::map<std::int16_t, DailyProgramRow> dailyPrograms_;
  std::map<std::pair<std::int16_t, ControllerPlace>, Reach> reaches_;
  std::map<std::string, Holdings> programs_;  // as the rows want them, by type of controller
  std::map<ControllerPlace, Holdings> held_;
};

}  // namespace voxa
