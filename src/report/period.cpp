#include "report/period.h"

#include <cmath>

#include "platform/clock.h"
#include "platform/datetime.h"
#include "report/figures.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr int usualDays = 30;
constexpr int mostDays = 3660;  // ten years: each day is a value of its own

/// The first moment behind what is written: a day is meant as a whole, a time as a whole minute.
DateTime behind(const std::string& text, const Clock& clock) {
  CivilTime end = toCivil(writtenMoment(text, clock));
  const bool day = text.find(':') == std::string::npos;
  end.second = 0;
  constexpr double minute = 1.0 / (24 * 60);
  return toDateTime(toCivil({toDateTime(end).days + (day ? 1 : minute)}));
}

}  // namespace

Period periodOf(const ReportQuestion& question, const Clock& clock) {
  Period period;
  period.until =
      question.until.empty() ? DateTime{std::floor(clock.now().days) + 1} : behind(question.until, clock);
  period.since = question.since.empty() ? DateTime{std::ceil(period.until.days) - usualDays}
                                        : writtenMoment(question.since, clock);
  if (period.since.days >= period.until.days) throw Refusal("the time of the report ends before it begins");
  if (period.until.days - period.since.days > mostDays)
    throw Refusal("a report is of up to ten years: name a later day with --since");
  return period;
}

}  // namespace voxa
