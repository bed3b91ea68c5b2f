#include "engines/sqlite/sqlite_recordset.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

#include "engines/sqlite/ddl.h"
#include "engines/sqlite/sqlite_database.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr std::size_t firstRows = 256;  ///< so many are read at once when the rows are opened
constexpr std::size_t blockRows =
    256;  ///< so many are fetched together later; the file is locked once for all of them
constexpr std::size_t walkRows = 1024;  ///< the same for a walk that goes on behind such rows
constexpr std::int64_t deletedRow = std::numeric_limits<std::int64_t>::min();

bool showsFieldsOnly(const dialect::Translation& translation) {
  return !translation.table.empty() &&
         std::none_of(translation.sourceFields.begin(), translation.sourceFields.end(),
                      [](const std::string& field) { return field.empty(); });
}

/// Several statements that only read share one lock for the lifetime of this object.
class ReadTogether {
 public:
  explicit ReadTogether(Connection& connection) : connection_(connection), own_(!connection.inTransaction()) {
    if (own_) connection_.beginReading();
  }
  ~ReadTogether() {
    if (own_) connection_.endReading();
  }
  ReadTogether(const ReadTogether&) = delete;
  ReadTogether& operator=(const ReadTogether&) = delete;

 private:
  Connection& connection_;
  bool own_;
};

Error rowGone() {
  return {err::dbRecordDeleted, "The record has been deleted"};
}

}  // namespace

SqliteRecordset::SqliteRecordset(std::shared_ptr<SqliteDatabase> database,
                                 std::shared_ptr<const dialect::Translation> translation)
    : database_(std::move(database)),
      translation_(std::move(translation)),
      width_(translation_->columns.size()),
      live_(showsFieldsOnly(*translation_)),
      fetchRows_(blockRows),
      generation_(database_->generation()) {
  SqliteDatabase::Room room = database_->takeRoom();
  rowids_ = std::move(room.rowids);
  values_ = std::move(room.values);
}

SqliteRecordset::~SqliteRecordset() {
  constexpr std::size_t small = 64;
  if (values_.capacity() > small || rowids_.capacity() > small) return;
  rowids_.clear();
  values_.clear();
  database_->giveRoom({std::move(rowids_), std::move(values_)});
}

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

bool SqliteRecordset::isDeleted(std::size_t row) const {
  return deleted_ != 0 && rowids_[row] == deletedRow;
}

bool SqliteRecordset::eof() const {
  return position_ == static_cast<std::ptrdiff_t>(rows_);
}

bool SqliteRecordset::bof() const {
  return position_ < 0 || (eof() && recordCount() == 0);
}

/// Makes `row` the current one, or else the next row in that direction that is not deleted.
void SqliteRecordset::moveTo(std::ptrdiff_t row, std::ptrdiff_t direction) {
  mode_ = Mode::none;
  const auto end = static_cast<std::ptrdiff_t>(rows_);
  while (row >= 0 && row < end && isDeleted(static_cast<std::size_t>(row))) row += direction;
  position_ = recordCount() == 0 ? end : row;
}

void SqliteRecordset::moveFirst() {
  moveTo(0, 1);
}

void SqliteRecordset::moveLast() {
  moveTo(static_cast<std::ptrdiff_t>(rows_) - 1, -1);
}

void SqliteRecordset::moveNext() {
  database_->session().guarded([&] {
    if (eof()) throw Error(err::dbNoCurrentRecord, "There is no record behind the last one");
    moveTo(position_ + 1, 1);
  });
}

void SqliteRecordset::movePrevious() {
  database_->session().guarded([&] {
    if (bof()) throw Error(err::dbNoCurrentRecord, "There is no record before the first one");
    moveTo(position_ - 1, -1);
  });
}

/// Asks once for the numbers of all rows that satisfy the condition.
bool SqliteRecordset::find(std::string_view condition, std::ptrdiff_t from) {
  return database_->session().guarded([&] {
    if (!editable()) throw Error(err::dbNotSupported, "Rows of this query cannot be searched");
    const std::string sql =
        "select * from [" + translation_->table + "] where (" + std::string(condition) + ")";
    const auto found = database_->openRecordset(sql, {});
    std::vector<std::int64_t> numbers = dynamic_cast<const SqliteRecordset&>(*found).rowids_;
    std::sort(numbers.begin(), numbers.end());
    for (std::ptrdiff_t row = from; row < static_cast<std::ptrdiff_t>(rows_); ++row) {
      const auto at = static_cast<std::size_t>(row);
      if (isDeleted(at) || !std::binary_search(numbers.begin(), numbers.end(), rowids_[at])) continue;
      moveTo(row, 1);
      return true;
    }
    return false;
  });
}

void SqliteRecordset::requireCurrent() const {
  if (eof() || bof()) throw Error(err::dbNoCurrentRecord, "There is no current record");
  if (isDeleted(static_cast<std::size_t>(position_))) throw rowGone();
}

void SqliteRecordset::requireEditable() const {
  if (editable() && !database_->connection().readOnly()) return;
  throw Error(err::dbNotUpdatable, editable() ? "The database is read-only: " + database_->name()
                                              : "The rows of this query cannot be changed");
}

void SqliteRecordset::checkColumn(std::size_t index) const {
  if (index < width_) return;
  throw Error(err::dbNotInCollection, "The rows have no field number " + std::to_string(index));
}

const FieldDef& SqliteRecordset::field(std::size_t index) const {
  return database_->session().guarded([&]() -> const FieldDef& {
    checkColumn(index);
    return columns()[index];
  });
}

std::size_t SqliteRecordset::fieldIndex(std::string_view name) const {
  const std::vector<FieldDef>& fields = columns();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].name == name) return i;
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (equalNoCase(fields[i].name, name)) return i;
  }
  return database_->session().guarded([&]() -> std::size_t {
    throw Error(err::dbNotInCollection, "The rows have no field '" + std::string(name) + "'");
  });
}

Value SqliteRecordset::initial(std::size_t index) const {
  const FieldDef& field = columns()[index];
  if (field.defaultValue.isNull() && field.type == DataType::Boolean) return false;
  return field.defaultValue;
}

Value SqliteRecordset::get(std::size_t index) const {
  const auto current = static_cast<std::size_t>(position_);
  if (mode_ == Mode::none && index < width_ && isHere(current) && database_->isOpen())
    return values_[(current - blockStart_) * width_ + index];
  return database_->session().guarded([&] {
    if (!database_->isOpen()) (void)database_->connection();
    checkColumn(index);
    if (mode_ == Mode::add) return edited_[index];
    requireCurrent();
    if (mode_ == Mode::edit && std::find(set_.begin(), set_.end(), index) != set_.end()) {
      return edited_[index];
    }
    const Value* value = values(static_cast<std::size_t>(position_)) + index;
    if (!misfits_.empty()) requireFit(*value, index);
    return *value;
  });
}

/// Whether the values of the row are here, up to date, and nothing is to be said of any of them.
bool SqliteRecordset::isHere(std::size_t row) const {
  return row - blockStart_ < blockRows_ && deleted_ == 0 && misfits_.empty() && gone_.empty() &&
         (!live_ || generation_ == database_->generation());
}

void SqliteRecordset::take(Statement& statement, int firstColumn) const {
  int column = firstColumn;
  for (std::size_t i = 0; i < width_; ++i, ++column) {
    if (!statement.take(column, columns()[i].type, values_) && translation_->stored[i])
      misfits_.push_back(values_.size() - 1);
  }
}

void SqliteRecordset::requireFit(const Value& value, std::size_t index) const {
  const auto place = static_cast<std::size_t>(&value - values_.data());
  if (!std::binary_search(misfits_.begin(), misfits_.end(), place)) return;
  throw Error(err::dbConversion,
              "Data type conversion error: the column " + columns()[index].name +
                  (translation_->table.empty() ? "" : " of the table " + translation_->table) +
                  " holds a value of another type");
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

void SqliteRecordset::startEditing(Mode mode) {
  mode_ = mode;
  set_.clear();
  edited_.resize(width_);
}

void SqliteRecordset::edit() {
  database_->session().guarded([&] {
    requireEditable();
    requireCurrent();
    database_->lockForChanges();
    startEditing(Mode::edit);
  });
}

void SqliteRecordset::addNew() {
  database_->session().guarded([&] {
    requireEditable();
    startEditing(Mode::add);
    for (std::size_t i = 0; i < edited_.size(); ++i) edited_[i] = initial(i);
  });
}

void SqliteRecordset::set(std::size_t index, const Value& value) {
  database_->session().guarded([&] {
    if (mode_ == Mode::none) throw Error(err::dbUpdateWithoutEdit, "A field was set without edit or add");
    checkColumn(index);
    const FieldDef& field = columns()[index];
    if (translation_->sourceFields[index].empty()) {
      throw Error(err::dbNotUpdatable, "Column '" + field.name + "' is an expression and cannot be set");
    }
    try {
      edited_[index] = convertForField(value, field.type, field.size, &database_->session().clock);
    } catch (const Error& error) {
      throw Error(error.number(), "Field '" + field.name + "' of table '" + translation_->table +
                                      "': " + error.description());
    }
    if (std::find(set_.begin(), set_.end(), index) == set_.end()) set_.push_back(index);
  });
}

void SqliteRecordset::update() {
  database_->session().guarded([&] {
    if (mode_ == Mode::none) throw Error(err::dbUpdateWithoutEdit, "Update without edit or add");
    if (mode_ == Mode::add) {
      insertRow();
    } else if (!set_.empty()) {
      updateRow();
    }
    mode_ = Mode::none;
  });
}

/// Runs a change that this result makes itself: rows that were up to date before still are.
void SqliteRecordset::change(Statement& statement) {
  database_->beginChange();
  const bool fresh = generation_ == database_->generation();
  database_->change(statement, translation_->table);
  if (fresh) generation_ = database_->generation();
}

void SqliteRecordset::updateRow() {
  if (editMode_ != Mode::edit || editColumns_ != set_) {
    editSql_ = "UPDATE " + ddl::quoteName(translation_->table) + " SET ";
    for (const std::size_t index : set_) {
      editSql_ +=
          (index == set_.front() ? "" : ", ") + ddl::quoteName(translation_->sourceFields[index]) + " = ?";
    }
    editSql_ += " WHERE _rowid_ = ?";
    editColumns_ = set_;
    editMode_ = Mode::edit;
  }
  const auto row = static_cast<std::size_t>(position_);
  Statement& statement = database_->rowStatement(editSql_);
  int parameter = 0;
  for (const std::size_t index : set_) statement.bind(++parameter, edited_[index]);
  statement.bind(++parameter, rowids_[row]);
  change(statement);
  if (database_->connection().changes() == 0) throw rowGone();

  const bool buffered = row >= blockStart_ && row - blockStart_ < blockRows_;
  for (const std::size_t index : set_) {
    if (columns()[index].autoIncrement) rowids_[row] = edited_[index].toInt32();
    if (!buffered) continue;
    const std::size_t place = (row - blockStart_) * width_ + index;
    values_[place] = edited_[index];
    std::erase(misfits_, place);
  }
}

void SqliteRecordset::insertRow() {
  if (editMode_ != Mode::add || editColumns_ != set_) {
    std::vector<std::string> fields;
    std::string marks;
    for (const std::size_t index : set_) {
      fields.push_back(translation_->sourceFields[index]);
      marks += marks.empty() ? "?" : ", ?";
    }
    editSql_ =
        "INSERT INTO " + ddl::quoteName(translation_->table) +
        (set_.empty() ? " DEFAULT VALUES" : " (" + ddl::quoteNames(fields) + ") VALUES (" + marks + ")");
    editColumns_ = set_;
    editMode_ = Mode::add;
  }
  Statement& statement = database_->rowStatement(editSql_);
  int parameter = 0;
  for (const std::size_t index : set_) statement.bind(++parameter, edited_[index]);
  change(statement);

  rowids_.push_back(database_->connection().lastRowid());
  if (!live_) {
    for (std::size_t i = 0; i < width_; ++i) {
      if (columns()[i].autoIncrement) edited_[i] = static_cast<std::int32_t>(rowids_.back());
    }
    values_.insert(values_.end(), edited_.begin(), edited_.end());
    ++blockRows_;
  }
  if (eof()) ++position_;
  ++rows_;
}

void SqliteRecordset::remove() {
  database_->session().guarded([&] {
    requireEditable();
    requireCurrent();
    mode_ = Mode::none;
    Statement& statement =
        database_->rowStatement("DELETE FROM " + ddl::quoteName(translation_->table) + " WHERE _rowid_ = ?1");
    statement.bind(1, rowids_[static_cast<std::size_t>(position_)]);
    change(statement);
    if (database_->connection().changes() == 0) throw rowGone();
    rowids_[static_cast<std::size_t>(position_)] = deletedRow;
    ++deleted_;
  });
}

}  // namespace voxa
