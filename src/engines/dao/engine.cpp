#include "engines/dao/engine.h"

#include "engines/dao/dao_database.h"
#include "engines/dao/files.h"
#include "engines/dao/session.h"

namespace voxa {

namespace {

class DaoEngine final : public DatabaseEngine {
 public:
  DaoEngine(const Clock& clock, const DaoOptions& options)
      : session_(std::make_shared<DaoSession>(clock, options)) {}
  ~DaoEngine() override {
    if (session_->inTransaction && !dao::processEnds()) session_->abandonTransaction();
    const std::vector<DaoDatabase*> open = session_->open;
    for (DaoDatabase* database : open) {
      try {
        database->close();
      } catch (const Error&) {
        // What was committed is in the file.
      }
    }
  }
  DaoEngine(const DaoEngine&) = delete;
  DaoEngine& operator=(const DaoEngine&) = delete;

  std::shared_ptr<Database> create(std::string_view path) override {
    return session_->guarded([&] { return std::shared_ptr<Database>(dao::createFile(session_, path)); });
  }
  std::shared_ptr<Database> open(std::string_view path, FileUse use) override {
    return session_->guarded([&] { return std::shared_ptr<Database>(dao::openFile(session_, path, use)); });
  }
  [[nodiscard]] std::vector<std::shared_ptr<Database>> databases() const override {
    std::vector<std::shared_ptr<Database>> list;
    for (DaoDatabase* database : session_->open) {
      // weak_from_this is empty while the last holder lets go of the database.
      if (auto held = database->weak_from_this().lock()) list.push_back(std::move(held));
    }
    return list;
  }

  void begin() override {
    session_->guarded([&] {
      requireNoTransaction(*this);
      session_->begin();
    });
  }
  void commit() override {
    session_->guarded([&] {
      requireTransaction(*this);
      session_->commit();
    });
  }
  void rollback() override {
    session_->guarded([&] {
      requireTransaction(*this);
      session_->rollback();
    });
  }
  [[nodiscard]] bool inTransaction() const override { return session_->inTransaction; }
  [[nodiscard]] const std::vector<ErrorInfo>& errors() const override { return session_->errors; }
  [[nodiscard]] std::uint64_t lastFailure() const override { return session_->lastFailure; }

 private:
  std::shared_ptr<DaoSession> session_;
};

}  // namespace

std::unique_ptr<DatabaseEngine> makeDaoEngine(const Clock& clock, const DaoOptions& options) {
  return std::make_unique<DaoEngine>(clock, options);
}

IDispatch* daoObject(const Database& database) {
  const auto* own = dynamic_cast<const DaoDatabase*>(&database);
  return own != nullptr && own->isOpen() ? own->opened().dispatch() : nullptr;
}

}  // namespace voxa
