#include <array>
#include <cmath>
#include <limits>

#include "engines/sqlite/function_table.h"

namespace voxa {

namespace {

/// The first value of a group that is read, Null or not.
void stepFirst(sqlite3_context* context, int, sqlite3_value** arguments) {
  auto** const kept =
      static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
  if (kept == nullptr) return sqlite3_result_error_nomem(context);
  if (*kept == nullptr) *kept = sqlite3_value_dup(arguments[0]);
}

void stepLast(sqlite3_context* context, int, sqlite3_value** arguments) {
  auto** const kept =
      static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
  if (kept == nullptr) return sqlite3_result_error_nomem(context);
  sqlite3_value_free(*kept);
  *kept = sqlite3_value_dup(arguments[0]);
}

void finalKept(sqlite3_context* context) {
  auto** const kept = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, 0));
  if (kept == nullptr || *kept == nullptr) return;
  sqlite3_result_value(context, *kept);
  sqlite3_value_free(*kept);
  *kept = nullptr;
}

/// Numbers, their mean, and the sum of the squares of their distances from it.
struct Spread {
  double count;
  double mean;
  double squares;
};

void stepSpread(sqlite3_context* context, int, sqlite3_value** arguments) {
  if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
  auto* const spread = static_cast<Spread*>(sqlite3_aggregate_context(context, sizeof(Spread)));
  if (spread == nullptr) return sqlite3_result_error_nomem(context);
  const double number = sqlite3_value_double(arguments[0]);
  const double before = number - spread->mean;
  spread->mean += before / ++spread->count;
  spread->squares += before * (number - spread->mean);
}

/// less: 1 for a sample, 0 for all there is. Null without enough numbers. What is too large is infinite:
/// the statement looks for that.
template <int less, bool root>
void finalSpread(sqlite3_context* context) {
  const auto* const spread = static_cast<const Spread*>(sqlite3_aggregate_context(context, 0));
  if (spread == nullptr || spread->count <= less) return;
  double variance = spread->squares / (spread->count - less);
  if (std::isnan(variance)) variance = std::numeric_limits<double>::infinity();
  sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
}

constexpr std::array<SqlAggregate, 6> aggregates = {{{"vx_first", stepFirst, finalKept},
                                                     {"vx_last", stepLast, finalKept},
                                                     {"vx_var", stepSpread, finalSpread<1, false>},
                                                     {"vx_varp", stepSpread, finalSpread<0, false>},
                                                     {"vx_stdev", stepSpread, finalSpread<1, true>},
                                                     {"vx_stdevp", stepSpread, finalSpread<0, true>}}};

}  // namespace

std::span<const SqlAggregate> aggregateFunctions() {
  return aggregates;
}

}  // namespace voxa
