#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engines/language/dialect.h"
#include "engines/sqlite/connection.h"
#include "engines/sqlite/ddl.h"
#include "platform/database/schema.h"

namespace voxa {

/// The definitions in the file, read when first asked for and kept until the schema changes. A TableDef stays
/// at its address as long as its table exists.
class Catalog final : public dialect::Schema {
 public:
  Catalog(Connection& connection, const Clock& clock) : connection_(connection), clock_(clock) {}

  /// Forgets what was read if the schema has changed since, by this or another user. Whether it still holds.
  bool refresh();
  /// Forgets what was read: after changes here and after a rollback, which may bring a version number back.
  void invalidate() { version_.reset(); }
  // What is the only change since the definitions were read spares reading all of them again:
  void update(const std::string& table);  ///< a table that was changed
  void add(const TableDef& table);        ///< a new table, normalised
  void add(const Relation& relation);     ///< a new relation, its tables and fields spelt as in the file
  void versionChanged();                  ///< nothing but the schema's version

  [[nodiscard]] const TableDef* table(std::string_view name) const override;
  [[nodiscard]] const Clock* clock() const override { return &clock_; }
  [[nodiscard]] const std::vector<std::unique_ptr<TableDef>>& tables() const;  ///< in order of creation
  [[nodiscard]] const std::vector<Relation>& relations() const;

  /// Table that holds the stored queries, hidden from the tables.
  static constexpr const char* queryTable = "_Queries";

 private:
  void load() const;
  template <typename Change>
  void follow(Change&& change);
  std::vector<ddl::Table> read(const std::string& condition) const;
  std::int64_t currentVersion() const;
  std::size_t place(const std::string& table) const;  ///< index in tables_, their number when it is in none
  void insert(const std::vector<Relation>& relations, std::size_t owner);

  Connection& connection_;
  const Clock& clock_;
  mutable std::optional<Statement> versionStatement_;
  mutable std::optional<std::int64_t> version_;
  mutable std::vector<std::unique_ptr<TableDef>> tables_;
  mutable std::vector<Relation> relations_;
};

}  // namespace voxa
