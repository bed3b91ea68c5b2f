#pragma once

#include <functional>
#include <string>
#include <vector>

#include "comm/row_download.h"

namespace voxa {
class Recordset;
}

namespace voxa::cli {

class Session;

enum class Programs { daily, weekly, holidays, groups, cards };

struct DownloadCount {
  int sent = 0;
  int unchanged = 0;
  int failed = 0;
  int waiting = 0;  ///< for lines that are not in use
};

/// Names of the component's controllers that did not answer the last test, or of which it says nothing.
[[nodiscard]] std::vector<std::string> silentControllers(Session& session, const Component& component);

/// One download to a component, with one communication test for all that is sent. A program that the person
/// let go out without controllers that did not answer stays marked, so that the next download brings it to
/// them.
class Download {
 public:
  Download(Session& session, Component component) : session_(session), component_(std::move(component)) {}

  /// Tests the component's controllers; false when the person chose to send nothing. Those of a station that
  /// cannot be tested count as not answering; a Refusal when the test fails altogether.
  [[nodiscard]] bool ready();
  /// Sends the marked programs, or all of them when `full`. Failures have been shown. Groups are sent to all
  /// their controllers only: a download to one component passes them over, and leaves the marks of cards.
  DownloadCount send(Programs programs, bool full);
  /// Sends a badge format, when it is marked or `full`, to each reader of a VRMD1 and to every other
  /// controller once; those are what is counted. Readers of stations that are not active, and those of
  /// controllers that did not answer, are passed over. The mark stays: who works with the format is not
  /// known.
  DownloadCount sendBadgeFormat(const Recordset& format, bool full);
  /// Names of the controllers that are not known to answer.
  [[nodiscard]] const std::vector<std::string>& leftOut() const { return leftOut_; }

 private:
  DownloadCount sendGroups(bool full);
  DownloadCount sendCards(bool full);

  Session& session_;
  Component component_;
  std::vector<std::string> leftOut_;
};

}  // namespace voxa::cli
