#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/dialect/dialect.h"
#include "platform/database/schema.h"
#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/ddl.h"

namespace voxa {

/// The definitions in the file, read when first asked for and kept until the schema changes. A TableDef stays
/// at its address as long as its table exists.
class Catalog final : public dialect::Schema {
 public:
  explicit Catalog(Connection& connection) : connection_(connection) {}

  /// Forgets what was read if the schema has changed since, by this or another user.
  void refresh();
  /// Forgets what was read: after changes here and after a rollback, which may bring a version number back.
  void invalidate() { version_.reset(); }
  /// Reads one table again, new or changed, whose change was the only one since the definitions were read.
  void update(const std::string& table);
  /// The schema's version has changed, and nothing else.
  void versionChanged();

  [[nodiscard]] const TableDef* table(std::string_view name) const override;
  [[nodiscard]] const std::vector<std::unique_ptr<TableDef>>& tables() const;  ///< in order of creation
  [[nodiscard]] const std::vector<Relation>& relations() const;

  /// Table that holds the stored queries, hidden from the tables.
  static constexpr const char* queryTable = "_Queries";

 private:
  void load() const;
  std::vector<ddl::Table> read(const std::string& condition) const;
  std::int64_t currentVersion() const;

  Connection& connection_;
  mutable std::optional<Statement> versionStatement_;
  mutable std::optional<std::int64_t> version_;
  mutable std::vector<std::unique_ptr<TableDef>> tables_;
  mutable std::vector<Relation> relations_;
};

}  // namespace voxa
