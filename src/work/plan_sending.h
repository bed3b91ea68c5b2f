#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "controllers/plan.h"

namespace voxa {

class Installation;

/// What is sent in one command file to one controller.
struct PlanFile {
  PlanPhase phase = PlanPhase::shut;
  std::vector<std::size_t> items;  ///< of the plan
};
/// The files of a plan, in their order: at most about 200 lines each. A card's doors come right behind the
/// rest of it, so that it is shut no longer than it must be.
[[nodiscard]] std::vector<PlanFile> filesOf(const ControllerPlan& plan);

/// Whether it has anything that can be sent now: not doors alone under programs that cannot be right.
[[nodiscard]] bool canSendAnything(const ControllerPlan& plan);

/// Sends the files of one controller's plan, and knows what became of its items.
class PlanSending {
 public:
  PlanSending(Installation& installation, const ControllerPlan& plan);

  /// Sends a file, without what cannot be sent any more: items of which a line was refused, doors under
  /// programs that the controller has not taken.
  void send(const PlanFile& file);
  /// What it sends when nothing was refused before.
  [[nodiscard]] std::vector<std::string> linesIfTaken(const PlanFile& file) const;

  [[nodiscard]] bool stopped() const {
    return stopped_;
  }  ///< it does not answer any more, or its line is gone
  [[nodiscard]] const std::string& reason() const { return reason_; }
  [[nodiscard]] const std::vector<std::string>& refused() const { return refused_; }
  [[nodiscard]] std::size_t taken() const;  ///< items of which it has all lines

 private:
  [[nodiscard]] std::vector<std::string> lines(const PlanFile& file) const;
  [[nodiscard]] bool isOpen(std::size_t item, PlanPhase phase) const;
  std::int16_t sendLines(const std::vector<std::string>& lines);
  void sendOneByOne(const PlanFile& file);
  void stop();
  void take(std::size_t item, std::size_t lines);
  void refuse(std::size_t item, PlanPhase phase);

  Installation& installation_;
  const ControllerPlan& plan_;
  std::vector<std::size_t> left_;  // lines of each item that it has not taken
  std::set<std::pair<ThingKind, std::int32_t>> takenTimes_;
  std::set<std::size_t> failed_;                           // items
  std::set<std::pair<ThingKind, std::int32_t>> keptBack_;  // by cards that could not be shut
  std::vector<std::string> refused_;
  bool stopped_ = false;
  std::string reason_;
};

}  // namespace voxa
