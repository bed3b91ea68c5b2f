#pragma once

#include <string>
#include <vector>

#include "comm/com_types.h"
#include "work/report.h"

namespace voxa {

class Installation;

enum class DownloadKind { dailyPrograms, weeklyPrograms, holidays, groups, cards };

/// Where a download goes, and how.
struct DownloadTarget {
  Component component = {};
  bool full = false;  ///< also what is not marked
  /// Controllers that are not known to answer, of a test that has just been made (LineTest::silent).
  std::vector<Report::Controller> silent = {};
};

// Nothing is sent to a silent controller, and the Report has it. Nobody is asked.

/// Sends the marked rows of a kind, or all of them. The built-in programs 0 are never sent. A row that was
/// sent to the others while a controller was silent stays marked, so that the next download brings it there.
/// A failed row keeps its mark and stops no other.
///
/// Groups go to all their controllers only: a download to one component passes them over. A card counts as
/// sent when all its controllers have it; a download to one component leaves its mark. Deleted cards that a
/// controller has yet to erase are rows, too, of a download to all.
Report download(Installation& installation, DownloadKind kind, const DownloadTarget& target,
                Observer* observer = nullptr);

/// Sends a badge format, when it is marked or `full`, to each reader of a VRMD1 and to every other controller
/// once. Those are the rows; readers of stations that are not in use, and of silent controllers, are none.
/// The mark stays: who works with the format is not known. format: number or name; a Refusal when there is
/// none, and when there is no reader of a station in use.
Report downloadBadgeFormat(Installation& installation, const std::string& format,
                           const DownloadTarget& target);

}  // namespace voxa
