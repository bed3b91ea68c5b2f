#include "site/storage.h"

#include <sqlite3.h>

#include <system_error>

#include "site/failure.h"
#include "site/private_file.h"

namespace site {

namespace {

constexpr int busyMilliseconds = 10000;
constexpr int layout = 2;

// The transaction memory of a controller holds the records from first_record up to, not including,
// next_record.
constexpr const char* tables = R"sql(
create table controllers (
  id integer primary key, station integer not null, address integer not null, type text not null,
  speed integer not null, capacity integer not null, clock_offset integer,
  first_record integer not null default 0, next_record integer not null default 0,
  read_record integer not null default 0, overflows integer not null default 0,
  overflowed integer not null default 0,
  silent integer not null default 0, refuse integer, good_calls integer, cut_after integer,
  cut_half integer not null default 0, cut_once integer not null default 0, refuse_clear integer,
  result_file integer not null default 0, forgets integer not null default 0,
  lose_answer integer not null default 0, stop_behind integer, times integer,
  unique (station, address));
create table received (
  id integer primary key, controller integer not null, at integer not null, line text not null,
  reason text not null);
create index received_controller on received (controller);
create table daily_programs (
  controller integer, number integer, intervals text not null,
  primary key (controller, number)) without rowid;
create table weekly_programs (
  controller integer, family text, number integer, d1 integer, d2 integer, d3 integer, d4 integer,
  d5 integer, d6 integer, d7 integer, holiday integer,
  primary key (controller, family, number)) without rowid;
create table holidays (
  controller integer, slot integer, day integer not null, month integer not null, year integer,
  primary key (controller, slot)) without rowid;
create table cards (
  controller integer, number integer, code text not null, weekly integer,
  door1 integer not null default 0, door2 integer not null default 0, pin text,
  supervisor integer not null default 0, valid_until integer, credit integer,
  primary key (controller, number)) without rowid;
create index cards_code on cards (controller, code);
create table lifts (
  controller integer, card integer, output integer,
  primary key (controller, card, output)) without rowid;
create table badge_formats (
  controller integer, reader integer, technology text not null, site_position integer,
  site_length integer, card_position integer, card_type integer, site_code text,
  primary key (controller, reader)) without rowid;
create table records (
  controller integer, number integer, line text not null,
  primary key (controller, number)) without rowid;
create table lines (station integer primary key, connected integer not null);
)sql";

}  // namespace

std::int64_t Row::integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

std::string Row::text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  if (text == nullptr) return {};
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

bool Row::isNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

Storage::Storage(const std::filesystem::path& file) : name_(file.string()) {
  // The file is made private while it is still empty. SQLite gives the files beside it the same permissions.
  std::error_code error;
  if (std::filesystem::file_size(file, error) == 0 || error) makePrivate(file);
  const std::u8string utf8 = file.u8string();
  open(reinterpret_cast<const char*>(utf8.c_str()));
}

Storage::Storage() : name_("the empty site") {
  open(":memory:");
}

void Storage::open(const char* name) {
  try {
    if (sqlite3_open_v2(name, &connection_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
        SQLITE_OK) {
      fail();
    }
    sqlite3_extended_result_codes(connection_, 1);
    sqlite3_busy_timeout(connection_, busyMilliseconds);
    execute("pragma journal_mode = wal; pragma synchronous = off;");
    createTables();
  } catch (...) {
    for (const auto& [sql, statement] : statements_) sqlite3_finalize(statement);
    sqlite3_close(connection_);
    throw;
  }
}

Storage::~Storage() {
  for (const auto& [sql, statement] : statements_) sqlite3_finalize(statement);
  sqlite3_close(connection_);
}

void Storage::createTables() {
  int found = 0;
  const auto readLayout = [&] {
    each("pragma user_version", [&](const Row& row) { found = row.number(0); });
  };
  readLayout();
  if (found == 0) {
    Transaction transaction(*this);
    readLayout();  // another process may have made the tables first
    if (found == 0) {
      execute(tables);
      execute(("pragma user_version = " + std::to_string(layout)).c_str());
      found = layout;
    }
    transaction.commit();
  }
  if (found != layout) {
    throw Failure(
        "The site file " + name_ +
        " is of another version of this program. Move its folder away and add the controllers again.");
  }
}

void Storage::execute(const char* sql) {
  if (sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

sqlite3_stmt* Storage::prepare(std::string_view sql) {
  const auto found = statements_.find(sql);
  if (found != statements_.end()) return found->second;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(connection_, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                         &statement, nullptr) != SQLITE_OK) {
    fail();
  }
  statements_.emplace(sql, statement);
  return statement;
}

int Storage::changes() const {
  return sqlite3_changes(connection_);
}

void Storage::fail() const {
  const char* why = connection_ == nullptr ? "out of memory" : sqlite3_errmsg(connection_);
  throw Failure("The site file " + name_ + " cannot be used: " + why + ".");
}

Storage::Use::Use(Storage& storage, std::string_view sql)
    : storage_(storage), statement_(storage.prepare(sql)) {}

Storage::Use::~Use() {
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

void Storage::Use::bind(int index, std::int64_t value) {
  if (sqlite3_bind_int64(statement_, index, value) != SQLITE_OK) storage_.fail();
}

void Storage::Use::bind(int index, std::string_view value) {
  const char* data = value.data() == nullptr ? "" : value.data();
  // The text is bound without a copy: the arguments outlive the statement's run.
  if (sqlite3_bind_text(statement_, index, data, static_cast<int>(value.size()), SQLITE_STATIC) !=
      SQLITE_OK) {
    storage_.fail();
  }
}

bool Storage::Use::step() {
  const int code = sqlite3_step(statement_);
  if (code != SQLITE_ROW && code != SQLITE_DONE) storage_.fail();
  return code == SQLITE_ROW;
}

Transaction::Transaction(Storage& storage) : storage_(storage) {
  storage_.run("begin immediate");
}

Transaction::~Transaction() {
  if (!open_) return;
  try {
    storage_.run("rollback");
  } catch (const Failure&) {
    // SQLite has already rolled back after the failure that led here.
  }
}

void Transaction::commit() {
  storage_.run("commit");
  open_ = false;
}

}  // namespace site
