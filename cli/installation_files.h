#pragma once

#include <string>

namespace voxa::cli {

class Installation;

/// Whether a path is a file of the installation, or the place of one, whatever it is spelled and whatever
/// links lead there: its databases, what it exchanges with the driver, its logs and archives, its simulated
/// controllers. folder: of the installation.
[[nodiscard]] bool isFileOfInstallation(const std::string& folder, const std::string& path);

/// Lets a command write a file that a person named. A Refusal for a file of the installation, and for any
/// other that exists, unless `force` or the person's answer says that it may be replaced.
void requireMayWrite(Installation& installation, const std::string& path, bool force);

}  // namespace voxa::cli
