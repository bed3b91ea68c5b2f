#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engines/dao/engine.h"
#include "engines/dao/object.h"
#include "platform/database/failures.h"

namespace voxa {

class DaoDatabase;

/// What the engine and its databases share: the library's engine and its default workspace.
struct DaoSession : Failures {
  DaoSession(const Clock& sessionClock, DaoOptions sessionOptions)
      : clock(sessionClock), options(std::move(sessionOptions)) {}

  /// Runs an operation within the transaction that runs, or within one of its own.
  template <typename Operation>
  void inStep(Operation&& operation) {
    if (inTransaction) return operation();
    begin();
    try {
      operation();
    } catch (...) {
      abandonTransaction();
      throw;
    }
    commit();
  }

  void failed(const Error& error) override;
  /// The library's objects, made at first use.
  const dao::Object& engine();
  const dao::Object& workspace();
  /// Another workspace of the same engine, with transactions of its own.
  [[nodiscard]] std::shared_ptr<DaoSession> apart();
  /// The number of a member of all objects of that kind.
  DISPID idOf(dao::Kind kind, const char* member, IDispatch& object);

  /// The workspace begins its transaction when there is one: before, no file is open.
  void begin();
  void commit();  ///< after a failure nothing of the transaction is left
  void rollback();
  void abandonTransaction();  ///< only the failure that led here is reported

  /// A file that was closed within the transaction stays open until it ends: the library would give up its
  /// part of it.
  struct Closed {
    std::string path;
    dao::Object database;
  };

  const Clock& clock;
  const DaoOptions options;
  std::vector<DaoDatabase*> open;  ///< in the order they were opened
  std::vector<Closed> closed;
  bool inTransaction = false;
  bool isReporting = false;  ///< while the library's collection of errors is read

 private:
  void closeClosed();

  dao::Object engine_;
  dao::Object workspace_;
  std::map<std::pair<dao::Kind, std::string_view>, DISPID> ids_;  // names are literals
};

}  // namespace voxa
