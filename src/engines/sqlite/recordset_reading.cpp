// How the rows of a recordset come from the file: when it is opened, and when they are visited.

#include <algorithm>
#include <functional>
#include <utility>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"
#include "engines/sqlite/sqlite_recordset.h"

namespace voxa {

namespace {

constexpr std::size_t firstRows = 256;  ///< so many are read at once when the rows are opened
constexpr std::size_t blockRows =
    256;  ///< so many are fetched together later; the file is locked once for all of them
constexpr std::size_t walkRows = 1024;  ///< the same for a walk that goes on behind such rows

}  // namespace

int SqliteRecordset::read(Statement& statement) {
  const bool withRowids = editable();
  const int firstColumn = withRowids ? 1 : 0;
  int code = SQLITE_ROW;
  while ((code = statement.step()) == SQLITE_ROW) {
    if (live_ && rows_ == firstRows && numbered()) return code;
    if (withRowids) rowids_.push_back(statement.integer(0));
    ++rows_;
    if (live_ && blockRows_ == firstRows) continue;
    if (values_.empty()) values_.reserve(width_);
    take(statement, firstColumn);
    ++blockRows_;
  }
  if (code == SQLITE_DONE) statement.reset();
  return code;
}

/// Whether the row numbers of the result can be read alone.
bool SqliteRecordset::numbered() const {
  constexpr std::size_t greatest = 100;  // SQLite takes so many arguments of a function, and some more
  return translation_->columnsEnd != 0 && width_ < greatest;
}

void SqliteRecordset::readNumbers(Statement& numbers) {
  const std::vector<std::int64_t> first = std::exchange(rowids_, {});
  int code = SQLITE_ROW;
  while ((code = numbers.step()) == SQLITE_ROW) rowids_.push_back(numbers.integer(0));
  if (code != SQLITE_DONE) database_->connection().fail(code);
  numbers.reset();
  rows_ = rowids_.size();
  // By now a condition on the time of day can be true for other rows.
  if (rows_ >= first.size() && std::equal(first.begin(), first.end(), rowids_.begin())) return;
  values_.clear();
  misfits_.clear();
  blockRows_ = 0;
}

void SqliteRecordset::take(Statement& statement, int firstColumn) const {
  int column = firstColumn;
  for (std::size_t i = 0; i < width_; ++i, ++column) {
    if (!statement.take(column, columns()[i].type, values_) && translation_->stored[i])
      misfits_.push_back(values_.size() - 1);
  }
}

const Value* SqliteRecordset::values(std::size_t row) const {
  const auto inBlock = [&] { return row >= blockStart_ && row - blockStart_ < blockRows_; };
  if (live_) {
    const bool stale = generation_ != database_->generation();
    if (stale || !inBlock()) {
      // Only one row is fetched while the rows keep changing, and more each time that they did not.
      const bool goesOn = row == blockStart_ + blockRows_;
      fetchRows_ = stale ? 1 : std::min(fetchRows_ * 4, goesOn ? walkRows : blockRows);
      fetch(row);
    }
    if (!gone_.empty() && gone_[row - blockStart_]) throw rowGone();
  }
  return &values_[(row - blockStart_) * width_];
}

void SqliteRecordset::fetch(std::size_t row) const {
  if (fetchSql_.empty()) {
    const std::string fields = ddl::quoteNames(translation_->sourceFields);
    const std::string from = " FROM " + ddl::quoteName(translation_->table) + " WHERE _rowid_ ";
    fetchSql_ = "SELECT " + fields + from + "= ?1";
    rangeSql_ = "SELECT _rowid_, " + fields + from + "BETWEEN ?1 AND ?2 ORDER BY _rowid_";
  }
  const bool backwards = row + 1 == blockStart_;
  const std::size_t start = backwards ? row + 1 - std::min(row + 1, fetchRows_) : row;
  const std::size_t end = backwards ? row + 1 : std::min(rows_, row + fetchRows_);

  values_.clear();
  values_.reserve((end - start) * width_);
  misfits_.clear();
  gone_.clear();
  blockStart_ = start;
  blockRows_ = 0;
  generation_ = database_->generation();
  if (follows(start, end)) {
    fetchTogether(start, end);
  } else {
    fetchEach(start, end);
  }
  blockRows_ = end - start;
}

/// Whether the rows stand in the table in this order, with few others between them.
bool SqliteRecordset::follows(std::size_t start, std::size_t end) const {
  if (end - start < 2) return false;
  const auto first = rowids_.begin() + static_cast<std::ptrdiff_t>(start);
  const auto last = rowids_.begin() + static_cast<std::ptrdiff_t>(end) - 1;
  const auto span = static_cast<std::uint64_t>(*last) - static_cast<std::uint64_t>(*first);
  return *first < *last && span < 2 * (end - start) &&
         std::adjacent_find(first, last + 1, std::greater_equal<>()) == last + 1;
}

void SqliteRecordset::missing(std::size_t row, std::size_t end) const {
  if (gone_.empty()) gone_.resize(end - blockStart_);
  gone_[row - blockStart_] = true;
  values_.resize(values_.size() + width_);
}

void SqliteRecordset::fetchTogether(std::size_t start, std::size_t end) const {
  Statement& statement = database_->rowStatement(rangeSql_);
  statement.bind(1, rowids_[start]);
  statement.bind(2, rowids_[end - 1]);
  std::size_t row = start;
  int code = SQLITE_ROW;
  while ((code = statement.step()) == SQLITE_ROW) {
    const std::int64_t found = statement.integer(0);
    for (; rowids_[row] < found; ++row) missing(row, end);
    if (rowids_[row] > found) continue;  // it is none of this result's rows
    take(statement, 1);
    ++row;
  }
  if (code != SQLITE_DONE) database_->connection().fail(code);
  statement.reset();
  for (; row < end; ++row) missing(row, end);
}

void SqliteRecordset::fetchEach(std::size_t start, std::size_t end) const {
  Connection& connection = database_->connection();
  const ReadTogether together(connection);
  Statement& statement = database_->rowStatement(fetchSql_);
  for (std::size_t row = start; row < end; ++row) {
    statement.bind(1, rowids_[row]);
    const int code = statement.step();
    if (code == SQLITE_ROW) {
      take(statement, 0);
    } else if (code == SQLITE_DONE) {
      missing(row, end);
    } else {
      connection.fail(code);
    }
    statement.reset();
  }
}

}  // namespace voxa
