#pragma once

#include <functional>
#include <string>
#include <vector>

#include "comm/row_download.h"

namespace voxa::cli {

class Installation;

enum class Programs { daily, weekly };

struct DownloadCount {
  int sent = 0;
  int unchanged = 0;
  int failed = 0;
};

/// One download to a component, with one communication test for all that is sent. A program that the person
/// let go out without controllers that did not answer stays marked, so that the next download brings it to
/// them.
class Download {
 public:
  Download(Installation& installation, Component component)
      : installation_(installation), component_(std::move(component)) {}

  /// Tests the component's controllers; false when the person chose to send nothing. A Refusal when the test
  /// itself fails.
  [[nodiscard]] bool ready();
  /// Sends the marked programs, or all of them when `full`. Failures have been shown.
  DownloadCount send(Programs programs, bool full);
  /// Names of the controllers that did not answer the test.
  [[nodiscard]] const std::vector<std::string>& leftOut() const { return leftOut_; }

 private:
  Installation& installation_;
  Component component_;
  std::vector<std::string> leftOut_;
};

}  // namespace voxa::cli
