// Creates the main database. The rival runs its definitions and default rows as one SQLite script.

#include <filesystem>
#include <memory>

#include "support/harness.h"
#include "support/installation.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

/// The contents of a database file as statements of one transaction: first its definitions, then its rows.
std::string scriptOf(const std::string& path) {
  PlainSqlite file(path);
  std::string script = "BEGIN;";
  const auto definitions = file.prepare(
      "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' "
      "ORDER BY rowid");
  while (file.nextRow(definitions)) script += text(definitions, 0) + ";";
  const auto tables = file.prepare(
      "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' "
      "ORDER BY rowid");
  while (file.nextRow(tables)) {
    const std::string table = "\"" + text(tables, 0) + "\"";
    const auto columns = file.prepare(
        "SELECT group_concat('quote(\"' || name || '\")', ' || '','' || ') "
        "FROM pragma_table_info('" +
        text(tables, 0) + "')");
    require(file.nextRow(columns), "A table without columns");
    const auto rows = file.prepare("SELECT " + text(columns, 0) + " FROM " + table);
    while (file.nextRow(rows)) script += "INSERT INTO " + table + " VALUES (" + text(rows, 0) + ");";
  }
  return script + "COMMIT";
}

Rows measure(const Harness& harness) {
  Installation installation;
  installation.createDatabase();
  const std::string script = scriptOf(installation.databasePath());
  const std::string rivalPath = installation.folder() + "/rival.mdb";
  std::unique_ptr<PlainSqlite> rival;

  Side ours;
  ours.prepare = [&] {
    installation.restart();
    std::filesystem::remove(installation.databasePath());
  };
  ours.work = [&] { installation.createDatabase(); };
  Side theirs;
  theirs.prepare = [&] {
    rival.reset();
    std::filesystem::remove(rivalPath);
  };
  theirs.work = [&] {
    rival = std::make_unique<PlainSqlite>(rivalPath);
    rival->run(script);
  };
  const Times times = harness.compare(ours, theirs, Pace::once);
  return {{"createDB", "ms", times.ours * 1e3, times.rival * 1e3, 1.5}};
}

const Registration registration("create-database", measure);

}  // namespace

}  // namespace voxa::bench
