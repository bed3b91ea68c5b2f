#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/failures.h"
#include "platform/database/jet_head.h"

namespace voxa {

/// Several engines as one: the first bytes of a file say which one serves it. The databases that it hands out
/// are those of that engine. A transaction is one of all engines; each commits its own part, so that a
/// failure of a later one leaves what an earlier one has committed.
class EngineByFile final : public DatabaseEngine {
 public:
  /// An engine for the files whose first bytes (headSize of them, or all of a shorter file) `serves` accepts.
  struct Further {
    std::function<bool(std::string_view head)> serves;
    std::shared_ptr<DatabaseEngine> engine;
  };
  static constexpr std::size_t headSize = 32;

  /// usual: knows its own files and is asked first; a file that is none of them is looked at only then, since
  /// closing a file can drop the locks that an engine of this process has on it. creating: makes the new
  /// files, one of these engines.
  EngineByFile(std::shared_ptr<DatabaseEngine> usual, std::vector<Further> further,
               std::shared_ptr<DatabaseEngine> creating);

  std::shared_ptr<Database> create(std::string_view path) override;
  /// 3343 for a file of the Jet database engine that no engine here serves, with what to do about it.
  std::shared_ptr<Database> open(std::string_view path, FileUse use) override;
  /// Those of the usual engine, then those of the others.
  [[nodiscard]] std::vector<std::shared_ptr<Database>> databases() const override;
  void begin() override;
  void commit() override;
  void rollback() override;
  [[nodiscard]] bool inTransaction() const override;
  [[nodiscard]] const std::vector<ErrorInfo>& errors() const override;
  [[nodiscard]] std::uint64_t lastFailure() const override;

 private:
  std::vector<std::shared_ptr<DatabaseEngine>> engines_;
  std::vector<Further> further_;
  std::shared_ptr<DatabaseEngine> creating_;
  Failures own_;  ///< of its own, not of one of its engines
};

}  // namespace voxa
