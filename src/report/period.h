#pragma once

#include "platform/value.h"

namespace voxa {

class Clock;
struct ReportQuestion;

/// From a moment up to another, which is not included.
struct Period {
  DateTime since;
  DateTime until;
};

/// The time of a report. A Refusal for what is no time, ends before it begins, or has more than ten years.
[[nodiscard]] Period periodOf(const ReportQuestion& question, const Clock& clock);

}  // namespace voxa
