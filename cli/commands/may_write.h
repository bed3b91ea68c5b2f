#pragma once

#include <string>

namespace voxa::cli {

class Session;

/// Lets a command write a file that a person named. A Refusal for a file of the installation, and for any
/// other that exists, unless `force` or the person's answer says that it may be replaced.
void requireMayWrite(Session& session, const std::string& path, bool force);

}  // namespace voxa::cli
