#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "access/card_doors.h"
#include "platform/context.h"
#include "tables/gen_table.h"

namespace voxa {

class AccessContext;

/// Texts in order, each once, as a message names them.
class Names {
 public:
  void add(const std::string& name);
  [[nodiscard]] bool empty() const { return names_.empty(); }
  [[nodiscard]] std::string inParentheses() const;  ///< "(a, b)"

 private:
  std::vector<std::string> names_;
};

/// What is to be told of cards at controllers that could not be told all: a warning about doors that stay
/// shut, and what is left about stations that are not in use.
[[nodiscard]] std::vector<Notice> noticesOf(const Names& twoPrograms, const Names& inactiveStations);

/// What became of sending cards.
struct SentCards {
  std::int16_t status = 0;      ///< as the member that shows it returns it
  std::vector<Notice> notices;  ///< what is to be told of it, in this order
};

/// The controllers that a download of cards goes to: all without a place, those of a station at address 0
/// (CmToEachController), else one.
using CardScope = std::optional<ControllerPlace>;

/// Sends cards without a box, one after the other, to the controllers of their access groups, and keeps the
/// flags in step: a card's flags are cleared when every controller of its group has what the row said, and
/// they are set when a part that was sent anyway did not arrive everywhere. A failed card does not stop the
/// next.
///
/// What cannot be right is not sent, named in `Com.errorList`, and keeps its flags: a card whose number no
/// line can hold or another live card has too, and at a controller a group's link that names no program of
/// cards or a reader whose address is no controller's.
class CardDownload {
 public:
  CardDownload(AccessContext& context, const CardScope& scope);

  /// Sends the flagged parts of a card's row, and `anyway`, with others as a block, and at the latest in
  /// finish(). Failures on the line are left in `Com.errorList`, others are added to it; a missing row
  /// ("msgCantFindCardholder") is among failures().
  void send(std::int32_t cardholderId, const CardParts& anyway);
  /// Sends what is left, and writes the flags. To be called behind the last send.
  void finish();

  /// First failure: the line's code or an error's number, -1 for a missing row; 0 when there was none.
  [[nodiscard]] std::int16_t status() const { return status_; }
  /// Failures with messages of their own, which are to be shown in place of one about status().
  [[nodiscard]] const std::vector<Notice>& failures() const { return failures_; }
  /// failures(), and what is to be told of controllers that could not be told all.
  [[nodiscard]] std::vector<Notice> notices() const;
  /// The stations with controllers that were not sent to since the line is not in use.
  [[nodiscard]] const Names& inactiveStations() const { return inactiveStations_; }
  /// Group and door of each that stays shut though it is granted: its controller's doors are granted under
  /// two programs.
  [[nodiscard]] const Names& twoPrograms() const { return twoPrograms_; }
  /// Whether every card reached every controller that it concerns.
  [[nodiscard]] bool complete() const { return complete_; }

 private:
  struct Sent {
    std::int32_t id = 0;
    bool everywhere = false;    ///< clear its flags, else set those of `parts`
    std::vector<Value> values;  ///< the row as it was sent
    CardParts parts;
  };
  /// What is to be done at a controller: sending lines, or saying why the card cannot be sent there.
  struct Step {
    ControllerPlace place;
    std::vector<std::string> lines;
    std::string fault;
  };
  /// A card on its way.
  struct Prepared {
    Sent sent;
    bool flagged = false;  ///< its row was marked
    std::vector<Step> steps;
    std::int16_t status = 0;  ///< what its preparation ended with
    ErrorInfo error = {};
  };

  std::optional<Prepared> prepare(std::int32_t id, const CardParts& anyway);
  bool plan(Prepared& card, const CardRecord& record, std::int16_t group,
            const GrantedController& controller);
  void sendPrepared();
  void sendCard(Prepared& card);
  bool isNobodys(const CardRecord& card);
  void tellOfTwoPrograms(const GrantedController& controller, std::int16_t group);
  void fail(std::int16_t status);
  void writeFlags(const Sent& card, std::vector<std::int32_t>& credits);

  AccessContext& context_;
  GenTable cards_;
  CardScope scope_;
  std::vector<Prepared> prepared_;
  std::vector<Sent> sent_;
  std::int16_t status_ = 0;
  std::vector<Notice> failures_;
  bool complete_ = true;
  Names inactiveStations_;
  Names twoPrograms_;
  std::set<std::pair<std::int16_t, ControllerPlace>> conflicts_;  ///< group and controller
};

}  // namespace voxa
