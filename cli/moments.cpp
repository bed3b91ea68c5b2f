#include "moments.h"

#include "platform/datetime.h"
#include "refusal.h"

namespace voxa::cli {

DateTime writtenMoment(const std::string& text, const Clock& clock) {
  const auto moment = parseDateTime(text, &clock);
  if (moment && moment->days >= 1) return *moment;  // a time alone is of day 0
  throw Refusal("'" + text + "' is no date: write 24/12/2026 or \"24/12/2026 18:05\"");
}

site::Moment siteMoment(DateTime moment) {
  const CivilTime parts = toCivil(moment);
  return {{parts.year, parts.month, parts.day}, parts.hour, parts.minute, parts.second};
}

}  // namespace voxa::cli
