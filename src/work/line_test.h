#pragma once

#include <string>
#include <vector>

#include "comm/com_types.h"
#include "platform/value.h"
#include "work/report.h"

namespace voxa {

class Installation;

// Which controllers answer. A test asks them for their clocks, a station at a time. It asks no person:
// whoever has tested decides what becomes of those that are silent.

/// What a test of the lines found.
struct LineTest {
  bool allAnswer = false;  ///< every station could be read, and no controller failed
  /// The test failed of itself, for a station or altogether, as the notices tell. Without a silent controller
  /// nothing is known of any.
  bool broken = false;
  /// The controllers concerned that are not known to answer: those that did not, and those of which the test
  /// says nothing. Where communications are inhibited only those that failed a test before.
  std::vector<Report::Controller> silent;
  std::string said;  ///< what the lines said, each line behind a line end; "" when all went well
  std::vector<Notice> notices;
};
[[nodiscard]] LineTest testLines(Installation& installation, const Component& component);

/// The controllers of a component that are not known to answer, by the last test.
[[nodiscard]] std::vector<Report::Controller> silentControllers(Installation& installation,
                                                                const Component& component);

/// What is sent from now on passes these over, until a test finds that they answer.
void passOver(Installation& installation, const std::vector<Report::Controller>& silent);

/// A controller of a station in use, as the last test found it.
struct ControllerState {
  ControllerPlace place;
  std::string station;
  std::vector<std::string> readers;  ///< their names, by position
  Value answers;                     ///< True or False; Null when nobody asked it
  Value clock;                       ///< Null unless it answered
};
[[nodiscard]] std::vector<ControllerState> listControllers(Installation& installation);  ///< by place

/// Where something goes that a person directs to a station, a reader or, with neither, to all stations in
/// use. A Refusal when there is no such station or reader, or no station in use.
[[nodiscard]] Component componentNamed(Installation& installation, const std::string& station,
                                       const std::string& reader);

}  // namespace voxa
