#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "comm/send_ledger.h"
#include "controllers/controller_list.h"
#include "controllers/holdings.h"
#include "controllers/ledger_file.h"
#include "controllers/pending_sends.h"

namespace voxa {

class AccessContext;
class LedgerView;

/// The account of what each controller holds, by what the driver acknowledged. What is going to be sent is in
/// doubt, on the disk, before the driver is called; what came of it is noted behind the call, or behind all
/// calls of an announced block. Killed at any instant the ledger says "in doubt" rather than "held".
///
/// An installation without a ledger begins with what the rows say: where their marks are clear a controller
/// is assumed to hold them. A damaged ledger is put aside, which is told, and a new one begins in the same
/// way.
class Ledger : public SendLedger {
 public:
  /// engine: see LedgerFile. Both must outlive this object.
  Ledger(AccessContext& context, DatabaseEngine& engine);
  ~Ledger() override;

  void expect(const std::vector<PlannedSend>& sends) override;
  void settle() override;
  [[nodiscard]] bool noteUnfinished(const std::vector<UnfinishedCards>& cards, bool underWay) override;
  [[nodiscard]] std::vector<UnfinishedCards> unfinished() override;
  void forgetUnfinished(const std::vector<UnfinishedCards>& cards) override;
  void endCredits(const std::vector<std::int32_t>& numbers) override;
  void noteCall(std::int16_t station) override;
  void forgetCall(std::int16_t station) override;
  [[nodiscard]] std::vector<std::int16_t> abandonedCalls() override;

  /// The controllers that an address of the driver means.
  struct Addressed {
    std::vector<ControllerPlace> places;
    bool byName = false;  ///< the driver asks each of them: success says that all have taken what was sent
  };
  /// A call of the driver with a command file.
  struct Call {
    bool kept = false;  ///< there is a ledger
    Addressed to;
    std::string text;  ///< of the command file
    std::vector<std::string> lines;
    std::optional<std::int32_t> row;  ///< what it stands as among the pending sends; none within a block
    std::optional<ControllerList> controllers;
    int opening = 0;  ///< of the ledger that it stands in
  };
  /// Puts what the call sends in doubt. place: station and address as the driver gets them. Raises what keeps
  /// the ledger from being written: then the driver must not be called.
  [[nodiscard]] Call begin(const ControllerPlace& place);
  /// Notes what came of it: the driver's result, none when nobody knows.
  void end(Call& call, std::optional<std::int16_t> result);
  /// The driver was not there: nothing was sent.
  void withdraw(Call& call);

  // For those who ask. Each raises what fails; without a ledger there is nothing.

  /// Opens the ledger of the working folder, and begins it when there is none. Whether there is one.
  bool open();
  /// Begins it when there is none. To be called when a main database is opened, before its rows change;
  /// whoever sends later is told what fails.
  void provide();
  /// Shows the ledger as it is at this moment. False when there is none.
  bool look(const std::function<void(LedgerView&)>& body);
  /// What a controller in use holds, with the sends that are under way in doubt.
  [[nodiscard]] Holdings holdings(const ControllerPlace& place);
  /// From now on another controller is at this place. usedElsewhere: it may hold anything; else it is taken
  /// to hold nothing. It is to get the badge formats of the one before.
  void replace(const ControllerPlace& place, bool usedElsewhere);
  /// The readers of one controller are at another place from now on (ControllerList::carryOver).
  void carryOver(const ControllerPlace& from, const ControllerPlace& to);
  /// The controllers work with daily programs of four intervals, or of two.
  void noteFourIntervals(bool four);
  /// The marked credits of these cards are going to be sent: until they have been acknowledged, each of their
  /// controllers has any. A card of which that was said before is on its way.
  void beginCredits(const std::map<std::int32_t, std::vector<ControllerPlace>>& controllers);

 private:
  struct Result {
    ControllerPlace place;
    std::vector<std::string> lines;
    bool certain = false;
  };
  /// What was announced and is being sent.
  struct Block {
    std::int32_t row = 0;
    ControllerList controllers;
    std::map<ControllerPlace, std::set<std::string>> expected;  // texts of command files
    std::vector<Result> results;
    int opening = 0;  ///< of the ledger that it stands in
  };

  [[nodiscard]] Call beginOnce(const ControllerPlace& driverPlace);
  template <typename Body>
  void write(Body body);
  template <typename Body>
  bool attempt(Body body);
  void tell(const Error& error);
  void failed(const Error& error);
  void putAside(const Error& error);
  void takeAbandoned(ControllerList& controllers);
  void takeInDoubt(ControllerList& controllers, const std::vector<PlannedSend>& sends);
  void apply(ControllerList& controllers, const std::vector<Result>& results);
  void noteSends(LedgerController& controller, const std::vector<SentLines>& sent);
  void applyMine(ControllerList& controllers, std::vector<Result> results, bool mine);
  void applyAnew(std::vector<Result> results);
  [[nodiscard]] Block* block();
  [[nodiscard]] Addressed addressed(const ControllerList& controllers, const ControllerPlace& place) const;
  [[nodiscard]] bool isExpected(const ControllerPlace& place, const std::string& text);

  AccessContext& context_;
  LedgerFile file_;
  PendingSends pending_;
  std::optional<Block> block_;
  int openings_ = 0;  ///< how often a ledger was opened: it may be replaced at any time
};

}  // namespace voxa
