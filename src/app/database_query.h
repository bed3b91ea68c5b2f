#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/file_engine.h"

namespace voxa {

class Clock;

/// Statements of a person on one database file, of whatever kind: a main database, a journal, message texts,
/// a ledger, a copy of one of them. What the file or the engine refuses is a Refusal; a lock of somebody
/// else's is `err::dbLocked`.
class DatabaseQuery {
 public:
  /// file: its full path. A ledger is not opened for writing. Nothing brings the file forward.
  DatabaseQuery(const Clock& clock, const std::string& file, FileRights rights);

  /// What a SELECT, or the table or stored query of that name, gives. It must not outlive the DatabaseQuery.
  class Rows {
   public:
    explicit Rows(std::unique_ptr<Recordset> rows);
    /// Their names, all different.
    [[nodiscard]] const std::vector<std::string>& columns() const { return columns_; }
    /// Hands over the values of each row. It holds no lock meanwhile: a row that somebody has deleted is left
    /// out.
    void each(const std::function<void(const std::vector<Value>&)>& row) const;

   private:
    std::unique_ptr<Recordset> rows_;
    std::vector<std::string> columns_;
  };
  [[nodiscard]] Rows select(const std::string& statement) const;

  /// Carries out a statement that changes rows or definitions: all of its changes or none. Returns how many
  /// rows it touched.
  [[nodiscard]] int change(const std::string& statement) const;

 private:
  std::unique_ptr<DatabaseEngine> engine_;
  std::shared_ptr<Database> database_;
};

}  // namespace voxa
