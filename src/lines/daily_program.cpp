#include "lines/daily_program.h"

#include "lines/field.h"
#include "platform/datetime.h"

namespace voxa {

std::string dailyProgramLine(std::int16_t number, const std::vector<DateTime>& bounds) {
  std::string line = "31" + numberField(number, 1, 2, "daily program number");
  for (const DateTime bound : bounds) {
    const std::string time = formatDateTime(bound, "hhnn");
    line += time == "2359" ? "2400" : time;
  }
  return line;
}

}  // namespace voxa
