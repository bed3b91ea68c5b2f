#include "platform/clock.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <thread>

#include "platform/datetime.h"

namespace voxa {

DateTime SystemClock::now() const {
  const std::time_t seconds = std::time(nullptr);
  const std::tm local = *std::localtime(&seconds);
  return toDateTime({.year = local.tm_year + 1900,
                     .month = local.tm_mon + 1,
                     .day = local.tm_mday,
                     .hour = local.tm_hour,
                     .minute = local.tm_min,
                     .second = std::min(local.tm_sec, 59)});  // a leap second has no number here
}

void SystemClock::wait(int seconds) {
  std::this_thread::sleep_for(std::chrono::seconds(seconds));
}

}  // namespace voxa
