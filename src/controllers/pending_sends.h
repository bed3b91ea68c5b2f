#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "comm/send_ledger.h"
#include "controllers/ledger_file.h"
#include "platform/files.h"

namespace voxa {

/// The sends that are under way, as they stand in the ledger from before the driver is called until it is
/// noted what came of them. Each belongs to a process. What a process that is no longer at work has left
/// there may have arrived, or not. All within a transaction of the ledger.
class PendingSends {
 public:
  explicit PendingSends(LedgerFile& file) : file_(file) {}
  ~PendingSends();
  PendingSends(const PendingSends&) = delete;
  PendingSends& operator=(const PendingSends&) = delete;

  /// Takes a number for this process in the ledger's folder; does nothing when it has one.
  void join();
  void leave() noexcept;

  std::int32_t add(const std::vector<PlannedSend>& sends);
  /// They are noted. False when another process took this one for dead meanwhile, and them for its own.
  bool remove(std::int32_t id);
  /// Removes those that nobody works at any more, and returns them.
  [[nodiscard]] std::vector<PlannedSend> takeAbandoned();
  /// All that stand there, whoever works at them.
  [[nodiscard]] std::vector<PlannedSend> all() const;
  /// Those of other processes, at work or not.
  [[nodiscard]] std::vector<PlannedSend> ofOthers() const;

  /// Whether a process of that number is at work. One that is not is forgotten.
  [[nodiscard]] bool isAtWork(std::int16_t owner) const;
  [[nodiscard]] std::int16_t owner() const { return owner_; }
  static constexpr std::int16_t nobody = -1;

 private:
  [[nodiscard]] std::string fileOf(std::int16_t owner) const;
  [[nodiscard]] std::vector<PlannedSend> sends(const std::string& where) const;

  LedgerFile& file_;
  std::optional<files::OwnedFile> sign_;  // that this process is at work
  std::int16_t owner_ = nobody;
  std::set<std::int32_t> mine_;
};

}  // namespace voxa
