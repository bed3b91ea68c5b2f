#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/database/database.h"

struct IDispatch;

namespace voxa {

class Clock;

/// A call of a member of one of the library's objects, as calls.txt tabulates them.
struct DaoCall {
  std::string kind;    ///< of the object: "Database"
  std::string member;  ///< "OpenRecordset"
  bool isPut = false;
  std::vector<std::string> arguments{};  ///< "text", "number", "flag", "object", "value", or "-" for none
  int error = 0;                         ///< the number that it raised
};

struct DaoOptions {
  /// The class names of the engine that are tried, the newest version first. One alone forces that one.
  std::vector<std::string> classes = {"DAO.DBEngine.120", "DAO.DBEngine.36", "DAO.DBEngine.35"};
  std::function<void(const DaoCall&)> observer{};  ///< is told of each call behind it
};

/// Whether one of the classes is registered for programs like this one. Loads nothing.
[[nodiscard]] bool isDaoInstalled(const DaoOptions& options = {});

/// Makes the engine whose files are those of the installed data-object library, which it drives by automation
/// from the first create or open on. Both raise `err::entryPointNotFound` when there is none. The thread
/// becomes an apartment of its own when it is none yet. `clock` must outlive the engine.
///
/// Other than the seam has it: beginReading does nothing; lockForChanges keeps out those who lock, too, not
/// each change; copyTo copies by rows what this engine sees; tableNames come in the library's order.
[[nodiscard]] std::unique_ptr<DatabaseEngine> makeDaoEngine(const Clock& clock,
                                                            const DaoOptions& options = {});

/// The library's own object of a database of this engine, which is not counted; nullptr for a database of
/// another engine, and for one that is closed.
[[nodiscard]] IDispatch* daoObject(const Database& database);

}  // namespace voxa
