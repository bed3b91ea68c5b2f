#include "comm/station_result.h"

#include <algorithm>
#include <charconv>

#include "app/library.h"
#include "files/seq_file.h"
#include "platform/clock.h"
#include "platform/datetime.h"

namespace voxa {

namespace {

constexpr std::size_t dateLineSize = 18;  // characters that are read of it

// `width` characters from the 1-based `position`, blanks around the number allowed; -1 when it is none.
int numberAt(std::string_view line, std::size_t position, std::size_t width) {
  if (line.size() < position) return -1;
  std::string_view field = line.substr(position - 1, width);
  while (!field.empty() && field.front() == ' ') field.remove_prefix(1);
  while (!field.empty() && field.back() == ' ') field.remove_suffix(1);
  int number = -1;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
  return error == std::errc() && end == field.data() + field.size() && number >= 0 ? number : -1;
}

void takeDateLine(std::string_view line, DateTime today, StationResult& result) {
  const int address = numberAt(line, 5, 4);
  if (address < 1 || address > StationResult::controllers) return;
  auto& date = result.dates[static_cast<std::size_t>(address - 1)];
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

}  // namespace

StationResult readStationResult(Library& library, const std::string& path) {
  SeqFile file(library);
  file.Name(path);
  file.fopen("r");
  StationResult result;
  // Places are counted in the file's own characters, whatever the driver wrote into the others.
  std::string line;
  if (!file.fEOF()) {
    file.flineInput1252(line, result.statuses.size());
    std::copy(line.begin(), line.end(), result.statuses.begin());
  }
  const DateTime today = library.clock().now();
  while (!file.fEOF()) {
    file.flineInput1252(line, dateLineSize);
    takeDateLine(line, today, result);
  }
  file.fclose();
  return result;
}

}  // namespace voxa
