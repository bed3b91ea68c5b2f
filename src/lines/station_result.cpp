#include "lines/station_result.h"

#include <algorithm>
#include <charconv>

#include "platform/datetime.h"

namespace voxa {

namespace {

// The number in `width` characters from the 1-based `position` on, with blanks around it allowed; -1 when
// there is none.
int numberAt(std::string_view line, std::size_t position, std::size_t width) {
  if (line.size() < position) return -1;
  std::string_view field = line.substr(position - 1, width);
  while (!field.empty() && field.front() == ' ') field.remove_prefix(1);
  while (!field.empty() && field.back() == ' ') field.remove_suffix(1);
  int number = -1;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
  return error == std::errc() && end == field.data() + field.size() && number >= 0 ? number : -1;
}

}  // namespace

void StationResult::takeStatuses(std::string_view line) {
  std::copy_n(line.begin(), std::min(line.size(), statuses.size()), statuses.begin());
}

void StationResult::takeDate(std::string_view line, DateTime today) {
  const int address = numberAt(line, 5, 4);
  if (address < 1 || address > controllers) return;
  auto& date = dates[static_cast<std::size_t>(address - 1)];
  if (date) return;
  const int year = numberAt(line, 17, 2);
  const int month = numberAt(line, 15, 2);
  const int day = numberAt(line, 13, 2);
  const CivilTime parts{year < 0 ? -1 : fullYear(year, month, day, today),
                        month,
                        day,
                        numberAt(line, 9, 2),
                        numberAt(line, 11, 2),
                        0};
  if (isValid(parts)) date = toDateTime(parts);
}

}  // namespace voxa
