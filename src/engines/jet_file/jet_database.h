#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engines/jet_file/catalogue.h"
#include "engines/jet_file/engine.h"
#include "engines/jet_file/stream.h"
#include "engines/jet_file/temporary_copy.h"
#include "platform/database/database.h"
#include "platform/database/failures.h"

namespace voxa {

class JetDatabase;

/// What the engine of Jet files and its databases share.
struct JetSession : Failures {
  JetSession(const Clock& clockOfSession, JetFileOptions optionsOfSession);

  /// The error collection: of this engine, or of the embedded one when that failed later.
  const std::vector<ErrorInfo>& lastErrors() const;

  const Clock& clock;
  const JetFileOptions options;
  std::unique_ptr<DatabaseEngine> embedded;
  std::vector<JetDatabase*> open;
};

/// A file of the Jet engine.
class JetDatabase final : public Database, public std::enable_shared_from_this<JetDatabase> {
 public:
  /// path: full and native. given: as the caller has it, for errors.
  JetDatabase(std::shared_ptr<JetSession> session, std::string path, std::string_view given);
  ~JetDatabase() override;
  JetDatabase(const JetDatabase&) = delete;
  JetDatabase& operator=(const JetDatabase&) = delete;

  [[nodiscard]] const std::vector<std::string>& notes() const { return catalogue_.notes; }
  [[nodiscard]] bool damaged() const { return catalogue_.damaged; }

  [[nodiscard]] const std::string& name() const override { return path_; }
  void close() override;
  [[nodiscard]] bool isOpen() const override { return open_; }
  [[nodiscard]] bool updatable() const override;

  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(std::string_view source,
                                                         const Parameters& parameters,
                                                         RowOptions options) override;
  void visitRows(std::string_view source, const std::function<bool(const Value* row)>& visit,
                 const Parameters& parameters) override;
  [[nodiscard]] QueryInfo describe(std::string_view source) override;

  // Nobody else sees the copy, and readings of the file itself notice a change of it.
  void beginReading() override { requireOpen(); }
  void endReading() override { requireOpen(); }
  void lockForChanges() override { requireOpen(); }

  [[nodiscard]] std::size_t schemaVersion() const override;
  void copyTo(std::string_view path) const override;

  [[nodiscard]] std::vector<std::string> tableNames() const override;
  [[nodiscard]] const TableDef& tableDef(std::string_view table) const override;
  [[nodiscard]] std::vector<Relation> relations() const override;
  [[nodiscard]] std::vector<QueryDef> queries() const override;

  // Changes: 3027.
  int execute(std::string_view sql, const Parameters& parameters) override;
  [[nodiscard]] std::unique_ptr<Command> prepare(std::string_view sql) override;
  void setSchemaVersion(std::size_t version) override;
  void createTable(const TableDef& definition) override;
  void addField(std::string_view table, const FieldDef& definition) override;
  void deleteTable(std::string_view table) override;
  void addIndex(std::string_view table, const IndexDef& index) override;
  void deleteIndex(std::string_view table, std::string_view index) override;
  void alterField(std::string_view table, const FieldDef& definition) override;
  void deleteField(std::string_view table, std::string_view field) override;
  void createRelation(const Relation& relation) override;
  void deleteRelation(std::string_view name) override;
  void createQuery(const QueryDef& query) override;
  void deleteQuery(std::string_view name) override;

 private:
  /// What tells whether the file is still the one that was opened.
  struct State {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::int64_t size = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    friend bool operator==(const State&, const State&) = default;
  };
  [[nodiscard]] State state() const;
  void requireUnchanged() const;
  void requireOpen() const;
  [[noreturn]] void refuse() const;
  void note(const std::string& text);
  /// Runs the reader program and gives its frames to `read`.
  void run(const std::vector<std::string>& work, const std::function<void(jet::Stream&)>& read) const;
  void visitTable(const TableDef& table, const std::function<bool(const Value* row)>& visit);
  Database& embedded();

  std::shared_ptr<JetSession> session_;
  std::string path_;
  bool open_ = true;
  State opened_;
  jet::Catalogue catalogue_;
  std::optional<jet::TemporaryCopy> copy_;
  std::shared_ptr<Database> embedded_;
};

}  // namespace voxa
