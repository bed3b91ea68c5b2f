#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "comm/com_types.h"

namespace voxa {

/// Command lines that are about to be sent to a controller.
struct PlannedSend {
  ControllerPlace place;
  std::vector<std::string> lines;
};

/// Cards that a batch which did not come to its end may have left on a controller.
struct UnfinishedCards {
  ControllerPlace place;
  std::vector<std::int32_t> numbers;
};

/// The account of what each controller holds, as those see it who send. It learns from the calls of the
/// driver by itself, whoever makes them. None of its members raises an error: what the account cannot keep is
/// told by itself, and stays in doubt.
class SendLedger {
 public:
  virtual ~SendLedger() = default;

  /// Says what is going to be sent until settle(). It is put in doubt at once, with one wait for the disk,
  /// and so is what came of it in settle(). Sends that nobody has announced cost these waits each.
  virtual void expect(const std::vector<PlannedSend>& sends) = 0;
  virtual void settle() = 0;

  /// Notes that cards may be left on controllers, until forgetUnfinished(). A batch notes its cards so before
  /// its first send. underWay: by this process, which is at work on them. False when nothing is noted, which
  /// is told unless there is no ledger.
  [[nodiscard]] virtual bool noteUnfinished(const std::vector<UnfinishedCards>& cards, bool underWay) = 0;
  /// What was noted and nobody is at work on any more, by place.
  [[nodiscard]] virtual std::vector<UnfinishedCards> unfinished() = 0;
  virtual void forgetUnfinished(const std::vector<UnfinishedCards>& cards) = 0;

  /// The marked credits of these cards are given, or are given once more: they are on their way no longer.
  virtual void endCredits(const std::vector<std::int32_t>& numbers) = 0;

  /// Notes that this process calls a station, until forgetCall().
  virtual void noteCall(std::int16_t station) = 0;
  virtual void forgetCall(std::int16_t station) = 0;
  /// Stations that were called by processes that are no longer at work.
  [[nodiscard]] virtual std::vector<std::int16_t> abandonedCalls() = 0;
};

/// What is going to be sent while it lives.
class ExpectedSends {
 public:
  ExpectedSends(SendLedger& ledger, const std::vector<PlannedSend>& sends) : ledger_(ledger) {
    ledger_.expect(sends);
  }
  ~ExpectedSends() { ledger_.settle(); }
  ExpectedSends(const ExpectedSends&) = delete;
  ExpectedSends& operator=(const ExpectedSends&) = delete;

 private:
  SendLedger& ledger_;
};

}  // namespace voxa
