#pragma once

#include <map>
#include <string>
#include <vector>

namespace site {
class Site;
}

namespace voxa {
class Installation;
}

namespace voxa::cli {

/// One program on one controller: what the database says and what the controller holds.
struct Verdict {
  std::string controller;  ///< "Annex 2"
  std::string program;
  std::string wanted;
  std::string held;  ///< "" when the controller was never told
  [[nodiscard]] bool same() const { return wanted == held; }
};

/// Every program that the database or a controller of an active station has, controller by controller. Taken
/// from the rows on one side and from the controllers' memories on the other; no command line is looked at.
[[nodiscard]] std::vector<Verdict> compareWithControllers(Installation& installation, site::Site& site);

/// Prints them side by side; returns how many differ. onlyDifferences: leaves out those that do not.
int printVerdicts(const std::vector<Verdict>& verdicts, bool onlyDifferences);

}  // namespace voxa::cli
