#include "engines/jet_file/engine.h"

#include <algorithm>

#include "engines/jet_file/jet_database.h"
#include "engines/sqlite/database_file.h"
#include "platform/error.h"

namespace voxa {

namespace {

class JetFileEngine final : public DatabaseEngine {
 public:
  JetFileEngine(const Clock& clock, const JetFileOptions& options)
      : session_(std::make_shared<JetSession>(clock, options)) {}
  ~JetFileEngine() override {
    while (!session_->open.empty()) session_->open.back()->close();
  }
  JetFileEngine(const JetFileEngine&) = delete;
  JetFileEngine& operator=(const JetFileEngine&) = delete;

  std::shared_ptr<Database> create(std::string_view path) override {
    return session_->guarded([&]() -> std::shared_ptr<Database> {
      throw Error(err::dbNotUpdatable, "Jet files are only read, not made: create '" + std::string(path) +
                                           "' as a database of this system");
    });
  }

  std::shared_ptr<Database> open(std::string_view path, FileUse /*use*/) override {
    return session_->guarded(
        [&] { return std::make_shared<JetDatabase>(session_, databasePath(path), path); });
  }

  [[nodiscard]] std::vector<std::shared_ptr<Database>> databases() const override {
    std::vector<std::shared_ptr<Database>> list;
    for (JetDatabase* database : session_->open) {
      if (auto held = database->weak_from_this().lock()) list.push_back(std::move(held));
    }
    return list;
  }

  // The copies that statements run on are databases of the embedded engine, and its transactions are these.
  void begin() override {
    session_->guarded([&] { session_->embedded->begin(); });
  }
  void commit() override {
    session_->guarded([&] { session_->embedded->commit(); });
  }
  void rollback() override {
    session_->guarded([&] { session_->embedded->rollback(); });
  }
  [[nodiscard]] bool inTransaction() const override { return session_->embedded->inTransaction(); }
  [[nodiscard]] const std::vector<ErrorInfo>& errors() const override { return session_->lastErrors(); }
  [[nodiscard]] std::uint64_t lastFailure() const override {
    return std::max(session_->lastFailure, session_->embedded->lastFailure());
  }

 private:
  std::shared_ptr<JetSession> session_;
};

}  // namespace

std::unique_ptr<DatabaseEngine> makeJetFileEngine(const Clock& clock, const JetFileOptions& options) {
  return std::make_unique<JetFileEngine>(clock, options);
}

const std::vector<std::string>& jetFileNotes(const Database& database) {
  static const std::vector<std::string> none;
  const auto* const jet = dynamic_cast<const JetDatabase*>(&database);
  return jet == nullptr ? none : jet->notes();
}

bool isDamagedJetFile(const Database& database) {
  const auto* const jet = dynamic_cast<const JetDatabase*>(&database);
  return jet != nullptr && jet->damaged();
}

}  // namespace voxa
