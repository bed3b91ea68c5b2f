#pragma once

#include <cstdint>
#include <string>

#include "work/report.h"

namespace voxa {

class Installation;

// The transactions of controllers on their way into the journal. Each controller is read on its own: read as
// a whole, a station with a silent controller would never be cleared, and the same transactions would come
// again and again. The Report has the controllers: done when it was read and cleared, else failed and the
// reason. One with more than one failure is in it more than once. Asks nobody.

/// Every controller of every station in use. Stations with a telephone number are dialled; one that cannot be
/// stands for its controllers. The progress log Log.txt is made anew.
Report readAll(Installation& installation, Observer* observer = nullptr);
/// A station's controllers. A Refusal when there is no such station; a failure of the database or of the
/// station's ini file is raised.
Report readStation(Installation& installation, const std::string& station);
/// The controller of one reader, behind a test of its line. Nothing is read of a controller that does not
/// answer, which the caller knows from the test.
Report readReader(Installation& installation, const std::string& reader);

/// The code of the unknown card that a reader saw last today; "" when there is none, which the Report tells.
struct UnknownCard {
  std::string code;
  Report report;
};
/// Takes it out of the journal. answers: whether the reader's controller does, by a test that has just been
/// made; it is read first then. What fails in that is told: an older card may still be in the journal.
UnknownCard takeLastUnknownCard(Installation& installation, const std::string& reader, bool answers);

/// How many transactions the journal has. A Refusal when it cannot be opened.
[[nodiscard]] std::int32_t journalSize(Installation& installation);

}  // namespace voxa
