#include "engines/sqlite/result_rows.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"

namespace voxa {

namespace {

constexpr std::size_t firstRows = 256;  ///< so many are read at once when the rows are opened
constexpr std::size_t blockRows =
    256;  ///< so many are fetched together later; the file is locked once for all of them
constexpr std::size_t walkRows = 1024;  ///< the same for a walk that goes on behind such rows

bool showsFieldsOnly(const dialect::Translation& translation) {
  return !translation.table.empty() &&
         std::none_of(translation.sourceFields.begin(), translation.sourceFields.end(),
                      [](const std::string& field) { return field.empty(); });
}

}  // namespace

ResultRows::ResultRows(std::shared_ptr<SqliteDatabase> database,
                       std::shared_ptr<const dialect::Translation> translation, std::string_view source,
                       bool frozen)
    : database_(std::move(database)),
      translation_(std::move(translation)),
      width_(translation_->columns.size()),
      editable_(!frozen && !translation_->table.empty()),
      live_(!frozen && showsFieldsOnly(*translation_)),
      generation_(database_->generation()) {
  SqliteDatabase::Room& room = database_->room();
  rowids_.swap(room.rowids);
  values_.swap(room.values);
  source_.swap(room.source);
  source_.assign(source);
}

ResultRows::~ResultRows() {
  if (database_ == nullptr) return;  // it was moved
  constexpr std::size_t small = 64;
  if (values_.capacity() > small || rowids_.capacity() > small) return;
  rowids_.clear();
  values_.clear();
  SqliteDatabase::Room& room = database_->room();
  rowids_.swap(room.rowids);
  values_.swap(room.values);
  source_.swap(room.source);
}

Error ResultRows::rowGone() {
  return {err::dbRecordDeleted, "The record has been deleted"};
}

Error ResultRows::misfit(const dialect::Translation& translation, std::size_t column) {
  return {err::dbConversion, "Data type conversion error: the column " + translation.columns[column].name +
                                 (translation.table.empty() ? "" : " of the table " + translation.table) +
                                 " holds a value of another type"};
}

int ResultRows::read(Statement& statement) {
  const int firstColumn = translation_->table.empty() ? 0 : 1;
  int code = SQLITE_ROW;
  while ((code = statement.step()) == SQLITE_ROW) {
    if (live_ && rows_ == firstRows && numbered()) return code;
    if (editable_) rowids_.push_back(statement.integer(0));
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
bool ResultRows::numbered() const {
  constexpr std::size_t greatest = 100;  // SQLite takes so many arguments of a function, and some more
  return translation_->columnsEnd != 0 && width_ < greatest;
}

void ResultRows::readNumbers(Statement& numbers) {
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

void ResultRows::take(Statement& statement, int firstColumn) const {
  int column = firstColumn;
  for (std::size_t i = 0; i < width_; ++i, ++column) {
    if (!statement.take(column, columns()[i].type, values_) && translation_->stored[i])
      misfits_.push_back(values_.size() - 1);
  }
}

std::shared_ptr<ResultRows> ResultRows::only(const std::vector<std::size_t>& rows, bool frozen) const {
  auto out = std::make_shared<ResultRows>(database_, translation_, source_, frozen);
  for (const std::size_t row : rows) {
    const Value* values = out->live_ ? nullptr : find(row);
    if (!out->live_ && values == nullptr) continue;
    if (out->editable_) out->rowids_.push_back(rowids_[row]);
    ++out->rows_;
    if (out->live_) continue;
    const auto place = static_cast<std::size_t>(values - values_.data());
    for (auto misfit = std::lower_bound(misfits_.begin(), misfits_.end(), place);
         misfit != misfits_.end() && *misfit < place + width_; ++misfit) {
      out->misfits_.push_back(out->values_.size() + (*misfit - place));
    }
    out->values_.insert(out->values_.end(), values, values + width_);
    ++out->blockRows_;
  }
  return out;
}

bool ResultRows::isHere(std::size_t row) const {
  return row - blockStart_ < blockRows_ && deleted_ == 0 && misfits_.empty() && gone_.empty() &&
         (!live_ || generation_ == database_->generation());
}

const Value* ResultRows::find(std::size_t row) const {
  if (live_) {
    const bool stale = generation_ != database_->generation();
    if (stale || row - blockStart_ >= blockRows_) {
      // Only one row is fetched while the rows keep changing, and more each time that they did not.
      const bool goesOn = row == blockStart_ + blockRows_;
      fetchRows_ = stale ? 1 : std::min(fetchRows_ * 4, goesOn ? walkRows : blockRows);
      fetch(row);
    }
    if (!gone_.empty() && gone_[row - blockStart_]) return nullptr;
  }
  return &values_[(row - blockStart_) * width_];
}

const Value& ResultRows::value(std::size_t row, std::size_t column) const {
  const Value* values = find(row);
  if (values == nullptr) throw rowGone();
  if (!misfits_.empty()) requireFit(values[column], column);
  return values[column];
}

void ResultRows::requireFit(const Value& value, std::size_t column) const {
  const auto place = static_cast<std::size_t>(&value - values_.data());
  if (!std::binary_search(misfits_.begin(), misfits_.end(), place)) return;
  throw misfit(*translation_, column);
}

void ResultRows::fetch(std::size_t row) const {
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
bool ResultRows::follows(std::size_t start, std::size_t end) const {
  if (end - start < 2) return false;
  const auto first = rowids_.begin() + static_cast<std::ptrdiff_t>(start);
  const auto last = rowids_.begin() + static_cast<std::ptrdiff_t>(end) - 1;
  const auto span = static_cast<std::uint64_t>(*last) - static_cast<std::uint64_t>(*first);
  return *first < *last && span < 2 * (end - start) &&
         std::adjacent_find(first, last + 1, std::greater_equal<>()) == last + 1;
}

void ResultRows::missing(std::size_t row, std::size_t end) const {
  if (gone_.empty()) gone_.resize(end - blockStart_);
  gone_[row - blockStart_] = true;
  values_.resize(values_.size() + width_);
}

void ResultRows::fetchTogether(std::size_t start, std::size_t end) const {
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

void ResultRows::fetchEach(std::size_t start, std::size_t end) const {
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

void ResultRows::change(Statement& statement) {
  database_->beginChange();
  const bool fresh = generation_ == database_->generation();
  database_->change(statement, translation_->table);
  if (fresh) generation_ = database_->generation();
}

void ResultRows::rowChanged(std::size_t row, const std::vector<std::size_t>& columns,
                            const std::vector<Value>& values) {
  const bool buffered = row - blockStart_ < blockRows_;
  for (const std::size_t column : columns) {
    if (translation_->columns[column].autoIncrement) rowids_[row] = values[column].toInt32();
    if (!buffered) continue;
    const std::size_t place = (row - blockStart_) * width_ + column;
    values_[place] = values[column];
    std::erase(misfits_, place);
  }
}

void ResultRows::rowAdded(std::int64_t number, std::vector<Value> values) {
  if (!live_) {
    for (std::size_t i = 0; i < width_; ++i) {
      if (columns()[i].autoIncrement) values[i] = static_cast<std::int32_t>(number);
    }
    values_.insert(values_.end(), std::make_move_iterator(values.begin()),
                   std::make_move_iterator(values.end()));
    ++blockRows_;
  }
  (void)add(number);
}

std::size_t ResultRows::add(std::int64_t number) {
  rowids_.push_back(number);
  return rows_++;
}

void ResultRows::rowDeleted(std::size_t row) {
  rowids_[row] = deletedRow;
  ++deleted_;
}

}  // namespace voxa
