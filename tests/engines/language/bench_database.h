#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engines/language/dialect.h"
#include "engines/sqlite/functions.h"
#include "platform/clock.h"

namespace voxa {

/// A clock that stands still.
class StoppedClock : public Clock {
 public:
  [[nodiscard]] DateTime now() const override { return moment; }
  void wait(int) override {}
  DateTime moment{46000.5};  // 9 December 2025, noon
};

/// SQLite in memory with the tables of the system, run through the dialect alone.
class BenchDatabase : public dialect::Schema {
 public:
  BenchDatabase();

  [[nodiscard]] const TableDef* table(std::string_view name) const override;
  /// Adds a table: "Name: Field type, Field type"; types b y i l d D t<size> m are boolean, byte, 16-bit,
  /// 32-bit, double, date, text and memo.
  void add(std::string_view definition);

  using Parameters = std::vector<std::pair<std::string, Value>>;
  /// Scans, translates and runs a statement. Rows come as "a|b;c|d" (Null as "-"); other statements give the
  /// number of rows that they changed. Failures are those of the dialect or of a function, or 1 with SQLite's
  /// message.
  std::string run(std::string_view sql, const Parameters& parameters = {});
  /// The same, but a failure gives its number as "!3075".
  std::string attempt(std::string_view sql, const Parameters& parameters = {});
  /// The names of the result's columns, then "/" and the table that can be edited.
  std::string columns(std::string_view sql) const;

 private:
  struct Closer {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
  };
  void bind(sqlite3_stmt* statement, const dialect::Translation& translation, const dialect::Scanned& scanned,
            const Parameters& parameters) const;

  std::vector<TableDef> tables_;
  StoppedClock clock_;
  PendingError pending_;
  std::unique_ptr<sqlite3, Closer> db_;
};

}  // namespace voxa
