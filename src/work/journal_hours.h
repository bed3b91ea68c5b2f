#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "platform/database/database.h"
#include "work/journal_condition.h"

namespace voxa {

/// Hours one after the other, counted from day 0. Rows without a date come before all others.
struct HourSpan {
  std::int64_t from = std::numeric_limits<std::int64_t>::min();
  std::int64_t behind = std::numeric_limits<std::int64_t>::max();
};

/// Which rows of a journal are of which hours. A journal has its rows in the order in which they were read;
/// by this it can be visited by date part for part, each of few rows, in a memory that grows with the time
/// that it covers and not with its rows, without an index of dates, and without a lock on the file between
/// the parts.
class JournalHours {
 public:
  /// Numbers of the rows of a time: none stands outside of first to last, others may stand between.
  struct Rows {
    std::int32_t first = std::numeric_limits<std::int32_t>::max();
    std::int32_t last = std::numeric_limits<std::int32_t>::min();
    std::size_t count = 0;
  };

  /// Goes through the rows of a condition.
  JournalHours(Database& journal, const JournalCondition& condition);

  [[nodiscard]] Rows rowsOf(const HourSpan& span) const;
  /// Spans that cover all hours, each of no more than so many rows of all these journals, or of one hour.
  [[nodiscard]] static std::vector<HourSpan> parts(const std::vector<const JournalHours*>& journals,
                                                   std::size_t most);
  [[nodiscard]] static std::int64_t hourOf(DateTime date);

  /// Hands over the rows of a span that meet the condition, in no order. The columns begin with Id and Date.
  void visit(const HourSpan& span, JournalCondition condition, const std::string& columns,
             const std::function<void(const Value* row)>& take) const;

 private:
  Database& journal_;
  bool indexed_;  // by dates
  std::map<std::int64_t, Rows> hours_;
};

}  // namespace voxa
