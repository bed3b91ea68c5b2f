// Which rows of a recordset satisfy a condition, and in which order they then are. Rows that are fields of
// one table are asked for in the file; all others are tested one by one, with the values that they show.

#include <algorithm>
#include <optional>

#include "engines/sqlite/sqlite_database.h"
#include "engines/sqlite/sqlite_recordset.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// A condition and an ordering for the values of single rows.
class RowTester {
 public:
  RowTester(SqliteDatabase& database, const ResultRows& rows, std::string_view condition,
            std::string_view ordering)
      : database_(database),
        columns_(rows.columns()),
        text_(dialect::rowTestText(condition, ordering, rows.translation().table)),
        test_(database.translateTest(text_, columns_)) {}

  /// Whether the condition is true of a row. keys: what gives it its place, behind those that are there.
  bool holds(const Value* row, std::vector<Value>* keys = nullptr) {
    constexpr int retries = 20;  // so many times when another user keeps changing the schema
    for (int attempt = 0;; ++attempt) {
      Statement& statement = database_.bindRow(test_, row);
      const int code = statement.step();
      if (code == SQLITE_ROW && keys != nullptr) {
        for (std::size_t i = 0; i < test_.descending.size(); ++i)
          (void)statement.take(static_cast<int>(i), DataType::Double, *keys);
      }
      if (code == SQLITE_ROW || code == SQLITE_DONE) {
        statement.reset();
        return code == SQLITE_ROW;
      }
      if ((code & 0xff) != SQLITE_SCHEMA || attempt == retries) database_.connection().fail(code);
      test_ = database_.translateTest(text_, columns_);
    }
  }
  [[nodiscard]] const std::vector<bool>& descending() const { return test_.descending; }

 private:
  SqliteDatabase& database_;
  const std::vector<FieldDef>& columns_;
  std::string text_;
  SqliteDatabase::Owned test_;
};

/// The order of two keys: Null, numbers, texts, bytes.
int compareKeys(const Value& a, const Value& b) {
  const auto rank = [](const Value& v) {
    return v.isNull() ? 0 : v.isText() ? 2 : std::holds_alternative<Bytes>(v.data()) ? 3 : 1;
  };
  if (rank(a) != rank(b)) return rank(a) - rank(b);
  if (a.isNull()) return 0;
  if (a.isText()) return compareNoCase(std::get<std::string>(a.data()), std::get<std::string>(b.data()));
  if (const auto* bytes = std::get_if<Bytes>(&a.data()))
    return bytes->data.compare(std::get<Bytes>(b.data()).data);
  const double one = a.toDouble();
  const double other = b.toDouble();
  return one < other ? -1 : one > other ? 1 : 0;
}

/// Whether the condition can be asked of the table: every column is a field of it, with its own name.
bool showsTable(const ResultRows& rows) {
  const dialect::Translation& translation = rows.translation();
  if (!rows.live()) return false;
  for (std::size_t i = 0; i < rows.width(); ++i) {
    if (!equalNoCase(rows.columns()[i].name, translation.sourceFields[i])) return false;
  }
  return true;
}

/// The row numbers of a table that satisfy a condition, in that order. Either may be empty.
std::vector<std::int64_t> numbersOf(SqliteDatabase& database, const std::string& table,
                                    std::string_view condition, std::string_view ordering) {
  std::string sql = "SELECT 1 FROM [" + table + "]";
  if (!condition.empty()) sql += " WHERE (" + std::string(condition) + ")";
  if (!ordering.empty()) sql += " ORDER BY " + std::string(ordering);
  return database.readRows(sql, {}, {}, false)->numbers();
}

/// The rows are tested by `way`, with the names of their columns. Where these do not know a name, a field of
/// the table may be meant.
template <typename ByTable, typename ByValues>
auto either(const ResultRows& rows, ByTable byTable, ByValues byValues) {
  if (showsTable(rows)) return byTable();
  try {
    return byValues();
  } catch (const Error& error) {
    if (!rows.editable() || error.number() != err::dbTooFewParameters) throw;
  }
  return byTable();
}

}  // namespace

bool SqliteRecordset::find(std::string_view condition, std::ptrdiff_t from, std::ptrdiff_t direction) {
  return database().session().guarded([&] {
    requireScrolling();
    const auto firstWith = [&](const auto& holds) {
      for (std::ptrdiff_t row = from; row >= 0 && row < end(); row += direction) {
        const auto at = static_cast<std::size_t>(row);
        if (rows_->isDeleted(at) || !holds(at)) continue;
        moveTo(row, direction);
        return true;
      }
      return false;
    };
    return either(
        *rows_,
        [&] {
          auto numbers = numbersOf(database(), rows_->translation().table, condition, {});
          std::sort(numbers.begin(), numbers.end());
          return firstWith([&](std::size_t row) {
            return std::binary_search(numbers.begin(), numbers.end(), rows_->numbers()[row]);
          });
        },
        [&] {
          RowTester tester(database(), *rows_, condition, {});
          return firstWith([&](std::size_t row) {
            const Value* values = rows_->find(row);
            return values != nullptr && tester.holds(values);
          });
        });
  });
}

std::shared_ptr<ResultRows> SqliteRecordset::narrowed(const ResultRows& rows, const Narrowing& by) const {
  std::vector<std::size_t> chosen;
  either(
      rows,
      [&] {
        std::vector<std::pair<std::int64_t, std::size_t>> places;
        for (std::size_t row = 0; row < rows.size(); ++row) {
          if (!rows.isDeleted(row)) places.emplace_back(rows.numbers()[row], row);
        }
        std::sort(places.begin(), places.end());
        for (const std::int64_t number :
             numbersOf(database(), rows.translation().table, by.filter, by.sort)) {
          const auto place =
              std::lower_bound(places.begin(), places.end(), std::pair(number, std::size_t{0}));
          if (place != places.end() && place->first == number) chosen.push_back(place->second);
        }
        if (by.sort.empty()) std::sort(chosen.begin(), chosen.end());
      },
      [&] {
        RowTester tester(database(), rows, by.filter, by.sort);
        const std::size_t width = tester.descending().size();
        std::vector<Value> keys;
        std::vector<std::pair<std::size_t, std::size_t>> places;  // of the first key, the row
        for (std::size_t row = 0; row < rows.size(); ++row) {
          const Value* values = rows.isDeleted(row) ? nullptr : rows.find(row);
          const std::size_t place = keys.size();
          if (values != nullptr && tester.holds(values, &keys)) places.emplace_back(place, row);
        }
        std::stable_sort(places.begin(), places.end(), [&](const auto& a, const auto& b) {
          for (std::size_t i = 0; i < width; ++i) {
            const int order = compareKeys(keys[a.first + i], keys[b.first + i]);
            if (order != 0) return (order < 0) != tester.descending()[i];
          }
          return false;
        });
        for (const auto& place : places) chosen.push_back(place.second);
      });
  return rows.only(chosen, by.frozen);
}

std::unique_ptr<Recordset> SqliteRecordset::openFrom(std::string_view filter, std::string_view sort,
                                                     RowOptions options) {
  return database().session().guarded([&] {
    requireScrolling();
    if (options.kind == RecordsetKind::automatic)
      options.kind = kind() == RecordsetKind::table ? RecordsetKind::dynaset : options_.kind;
    if (options.kind == RecordsetKind::table)
      throw Error(err::dbInvalidOperation, "Rows of table kind are those of a whole table");
    const bool frozen = freezes(options.kind);
    if (isFrozen() && !frozen)
      throw Error(err::dbInvalidOperation,
                  "The rows of a snapshot can be opened as snapshot or forward-only");
    options.readOnly = options.readOnly || options_.readOnly;
    const Narrowing by{std::string(filter), std::string(sort), frozen};
    auto out = std::make_unique<SqliteRecordset>(narrowed(*rows_, by), options);
    out->origin_ = origin();
    out->origin_->narrowings.push_back(by);
    return std::unique_ptr<Recordset>(std::move(out));
  });
}

}  // namespace voxa
