#include "work/week_days.h"

#include <array>

namespace voxa {

std::string placeName(std::size_t place) {
  static constexpr std::array<const char*, weekPlaces> names = {"Mon", "Tue", "Wed", "Thu",
                                                                "Fri", "Sat", "Sun", "holidays"};
  return names.at(place);
}

std::string placesText(const WeekPlaces& places) {
  std::string text;
  for (std::size_t first = 0; first < weekPlaces; ++first) {
    if (!places[first]) continue;
    std::size_t last = first;
    while (first < daysAWeek && last + 1 < daysAWeek && places[last + 1]) ++last;
    text += (text.empty() ? "" : ", ") + placeName(first);
    if (last > first) text += "-" + placeName(last);
    first = last;
  }
  return text;
}

}  // namespace voxa
