#pragma once

#include <string>

namespace voxa {

/// Whether a path is a file of the installation, or the place of one, whatever it is spelled and whatever
/// links lead there: its databases, what it exchanges with the driver, its logs and archives, its simulated
/// controllers. folder: of the installation.
[[nodiscard]] bool isFileOfInstallation(const std::string& folder, const std::string& path);

}  // namespace voxa
