#pragma once

#include <vector>

#include "comm/com_types.h"

namespace voxa {

class Installation;

/// A controller of the demonstration, for who makes a simulated one of it.
struct DemoController {
  ControllerPlace place;
  const char* type = "";   ///< "QSX3" or "VRMD1"
  std::int32_t speed = 0;  ///< of its line, bit/s
};

/// Fills a new installation with a small believable one: two stations, seven readers, programs, holidays of
/// this year and the next, five access groups, 25 people, and the journal of the last 14 days, which ends
/// yesterday. Nothing is sent: everything is marked for the first download. Returns its controllers. What
/// fails is raised; the rows that are there by then stay.
std::vector<DemoController> fillDemoData(Installation& installation);

}  // namespace voxa
