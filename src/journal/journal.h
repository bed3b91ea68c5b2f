#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "app/table.h"

namespace voxa {

/// The journal: what happened at the doors. Table "Journal" in a database file of its own, `dbName` in the
/// current folder, which is opened with the main database.
class Journal : public Table {
 public:
  static constexpr const char* dbName = "Journal.MDB";

  explicit Journal(Library& library) : Table(library, "Journal") {}

  /// The journal database; empty when it was never opened.
  [[nodiscard]] std::shared_ptr<Database> DB() const { return database_; }
  [[nodiscard]] std::shared_ptr<Database> getDB() override { return database_; }

  /// Opens the journal of the current folder; 0, or the number of the error that was shown.
  std::int16_t openDB();
  /// Creates a new journal with its table in the current folder; 0, or the number of the error that was
  /// shown.
  std::int16_t createDB();
  void createFile();  ///< the same, raising what fails

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;

 private:
  std::shared_ptr<Database> database_;
};

}  // namespace voxa
