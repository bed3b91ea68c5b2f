#include "report/period.h"

#include <cmath>

#include "platform/clock.h"
#include "report/figures.h"
#include "work/moments.h"
#include "work/refusal.h"

namespace voxa {

namespace {

constexpr int usualDays = 30;
constexpr int mostDays = 3660;  // ten years: each day is a value of its own

}  // namespace

Period periodOf(const ReportQuestion& question, const Clock& clock) {
  Period period;
  period.until = question.until.empty() ? DateTime{std::floor(clock.now().days) + 1}
                                        : writtenSpan(question.until, clock).behind;
  period.since = question.since.empty() ? DateTime{std::ceil(period.until.days) - usualDays}
                                        : writtenSpan(question.since, clock).from;
  if (period.since.days >= period.until.days) throw Refusal("the time of the report ends before it begins");
  if (period.until.days - period.since.days > mostDays)
    throw Refusal("a report is of up to ten years: name a later day with --since");
  return period;
}

}  // namespace voxa
