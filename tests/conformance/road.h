#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "conformance/records.h"
#include "platform/database/database.h"

namespace voxa::conformance {

/// A column of a record's table; Text and Memo may be empty. Throws std::runtime_error for an unknown type.
[[nodiscard]] FieldDef fieldOf(const std::string& name, const std::string& type);

/// A database file as its callers reach it: through the seam, or through automation. What fails is thrown as
/// an Error, with the number that such a caller is told.
class Road {
 public:
  struct Rows {
    std::size_t columns = 0;
    std::vector<std::vector<Value>> values;
  };

  virtual ~Road() = default;
  virtual void createTable(const TableDef& definition) = 0;
  virtual int execute(std::string_view sql) = 0;  ///< how many rows it changed
  virtual Rows rows(std::string_view sql) = 0;
};

/// The way through the seam.
class Seam : public Road {
 public:
  explicit Seam(std::shared_ptr<Database> database) : database_(std::move(database)) {}
  void createTable(const TableDef& definition) override { database_->createTable(definition); }
  int execute(std::string_view sql) override { return database_->execute(sql); }
  Rows rows(std::string_view sql) override;

 private:
  std::shared_ptr<Database> database_;
};

/// Runs the records of all files of a folder, each on a database of its own that `open` makes by the file's
/// name, and prints the differences. How many there are; 1 when there are no records.
[[nodiscard]] int runFiles(const std::filesystem::path& folder,
                           const std::function<std::unique_ptr<Road>(const std::string& name)>& open);

/// Runs a record. Returns what it should give and what it gave, nothing when they are the same.
[[nodiscard]] std::string difference(const Record& record, Road& road);

}  // namespace voxa::conformance
