#pragma once

#include <bitset>
#include <cstddef>
#include <string>

namespace voxa {

constexpr std::size_t daysAWeek = 7;
/// The places of a weekly program: the days, Monday first, and holidays.
constexpr std::size_t holidaysPlace = daysAWeek;
constexpr std::size_t weekPlaces = daysAWeek + 1;
using WeekPlaces = std::bitset<weekPlaces>;

/// "Mon" to "Sun", "holidays".
[[nodiscard]] std::string placeName(std::size_t place);
/// "Mon-Fri, holidays".
[[nodiscard]] std::string placesText(const WeekPlaces& places);

}  // namespace voxa
