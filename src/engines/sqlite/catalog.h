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

struct Session;

/// The definitions in the file. They are read when first needed and kept until the schema changes. A TableDef
/// keeps its address for as long as its table exists.
class Catalog final : public dialect::Schema {
 public:
  Catalog(Connection& connection, const Session& session) : connection_(connection), session_(session) {}

  /// Forgets the definitions if the schema was changed since they were read, by this user or another. Returns
  /// whether they still hold.
  bool refresh();
  /// Forgets the definitions. Needed after changes here, and after a rollback, since that can bring an old
  /// version number back.
  void invalidate() { version_.reset(); }
  // When one thing is all that changed since the definitions were read, these take it over without reading
  // all of them again:
  void update(const std::string& table);  ///< a table that was changed
  void add(const TableDef& table);        ///< a new table, normalised
  void add(const Relation& relation);  ///< a new relation; its tables and fields are spelled as in the file
  void versionChanged();               ///< only the version of the schema

  [[nodiscard]] const TableDef* table(std::string_view name) const override;
  [[nodiscard]] std::optional<std::string> queryText(std::string_view name) const override;
  [[nodiscard]] const Clock* clock() const override;
  [[nodiscard]] bool isSecret(const TableDef& table, const FieldDef& field) const override;
  [[nodiscard]] const std::vector<std::unique_ptr<TableDef>>& tables() const;  ///< in order of creation
  [[nodiscard]] const std::vector<Relation>& relations() const;

  /// The table that holds the stored queries. Lists of tables leave it out.
  static constexpr const char* queryTable = "_Queries";

 private:
  void load() const;
  template <typename Change>
  void follow(Change&& change);
  std::vector<ddl::Table> read(const std::string& condition) const;
  std::int64_t currentVersion() const;
  std::size_t place(const std::string& table) const;  ///< index in tables_; their number when it is not there
  void insert(const std::vector<Relation>& relations, std::size_t owner);

  Connection& connection_;
  const Session& session_;
  mutable std::optional<Statement> versionStatement_;
  mutable std::optional<Statement> queryStatement_;
  mutable std::optional<std::int64_t> version_;
  mutable std::vector<std::unique_ptr<TableDef>> tables_;
  mutable std::vector<Relation> relations_;
};

}  // namespace voxa
