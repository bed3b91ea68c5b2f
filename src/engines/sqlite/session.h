#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engines/sqlite/connection.h"
#include "engines/sqlite/engine.h"
#include "platform/database/failures.h"

namespace voxa {

class Clock;
class SqliteDatabase;

/// What the engine and its databases share. Its members are in engine.cpp.
struct Session : Failures {
  Session(const Clock& sessionClock, const SqliteOptions& sessionOptions)
      : clock(sessionClock), options(sessionOptions) {}

  /// A file that was closed within the transaction. Its part of it ends with the others.
  struct Closed {
    std::string path;
    Connection connection;
  };
  /// Takes the connection of such a file out, for the same file that is opened again; none otherwise.
  std::optional<Connection> reopen(const std::string& path);

  void failed(const Error& error) override;
  void commit();
  void rollback();
  /// Rolls back after a failure. Only that failure is reported.
  void abandonTransaction();

  const Clock& clock;
  const SqliteOptions options;
  std::vector<SqliteDatabase*> open;  ///< in the order they were opened
  std::vector<Closed> closed;
  bool inTransaction = false;
};

}  // namespace voxa
