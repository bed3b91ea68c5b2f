#include "work/journal_hours.h"

#include <algorithm>
#include <cmath>

#include "work/journal_scan.h"

namespace voxa {

namespace {

constexpr double hoursADay = 24;
constexpr std::int64_t withoutDate = std::numeric_limits<std::int64_t>::min();

/// Of a second, so that every way to calculate the moment of a full hour gives the same hour.
constexpr double tolerance = 0.25 / 86400;

std::int64_t hourOfRow(const Value& date) {
  return date.isNull() ? withoutDate : JournalHours::hourOf(date.toDateTime());
}

}  // namespace

JournalHours::JournalHours(Database& journal, const JournalCondition& condition)
    : journal_(journal), indexed_(isIndexed(journal)) {
  std::int64_t last = 0;
  Rows* rows = nullptr;
  scanJournal(journal, condition, "Id, [Date]", ScanOrder::any, [&](const Value* row) {
    const std::int64_t hour = hourOfRow(row[1]);
    if (rows == nullptr || hour != last) rows = &hours_[last = hour];
    const std::int32_t id = row[0].toInt32();
    rows->first = std::min(rows->first, id);
    rows->last = std::max(rows->last, id);
    ++rows->count;
    return true;
  });
}

JournalHours::Rows JournalHours::rowsOf(const HourSpan& span) const {
  Rows all;
  for (auto hour = hours_.lower_bound(span.from); hour != hours_.end() && hour->first < span.behind; ++hour) {
    all.first = std::min(all.first, hour->second.first);
    all.last = std::max(all.last, hour->second.last);
    all.count += hour->second.count;
  }
  return all;
}

std::vector<HourSpan> JournalHours::parts(const std::vector<const JournalHours*>& journals,
                                          std::size_t most) {
  std::map<std::int64_t, std::size_t> counts;
  for (const JournalHours* journal : journals) {
    for (const auto& [hour, rows] : journal->hours_) counts[hour] += rows.count;
  }
  std::vector<HourSpan> spans(1);
  std::size_t rows = 0;
  for (const auto& [hour, count] : counts) {
    const bool first = spans.back().from == withoutDate && rows > 0 && counts.begin()->first == withoutDate;
    if (rows > 0 && (rows + count > most || first)) {
      spans.back().behind = hour;
      spans.push_back({hour});
      rows = 0;
    }
    rows += count;
  }
  return spans;
}

std::int64_t JournalHours::hourOf(DateTime date) {
  return static_cast<std::int64_t>(std::floor((date.days + tolerance) * hoursADay));
}

void JournalHours::visit(const HourSpan& span, JournalCondition condition, const std::string& columns,
                         const std::function<void(const Value* row)>& take) const {
  const Rows rows = rowsOf(span);
  if (rows.count == 0) return;
  constexpr double second = 1.0 / 86400;
  const bool dated = span.from != withoutDate || !hours_.contains(withoutDate);
  const auto at = [&](std::int64_t hour, double apart) {
    return Value(DateTime{static_cast<double>(hour) / hoursADay + apart});
  };
  if (dated && span.from != withoutDate) condition.add("[Date] >= ?", "datetime", at(span.from, -second));
  if (dated && span.behind != HourSpan().behind)
    condition.add("[Date] <= ?", "datetime", at(span.behind, second));
  if (!indexed_ || !dated) {
    condition.add("Id >= ?", "long", rows.first);
    condition.add("Id <= ?", "long", rows.last);
  }
  journal_.visitRows(
      condition.statement(columns),
      [&](const Value* row) {
        const std::int32_t id = row[0].toInt32();
        const std::int64_t hour = hourOfRow(row[1]);
        if (id >= rows.first && id <= rows.last && hour >= span.from && hour < span.behind) take(row);
        return true;
      },
      condition.values());
}

}  // namespace voxa
