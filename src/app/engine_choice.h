#pragma once

#include <memory>

#include "platform/database/database.h"

namespace voxa {

class Clock;

/// The engines of a process as one (EngineByFile): files of the embedded engine are served by it, files of
/// the Jet database engine by the installed data-object library, when there is one (Windows only).
///
/// The environment variable VOXA_ENGINE says which one creates files: "embedded", as without it; "installed";
/// "installed:CLASS", with the class name of the library's engine. A class of this system itself, "KORVA.",
/// serves all files in place of the embedded engine: so the way through the data objects is tried where no
/// library is installed. Another word raises `err::invalidArgument`.
[[nodiscard]] std::unique_ptr<DatabaseEngine> makeEngine(const Clock& clock,
                                                         std::shared_ptr<DatabaseEngine> embedded);

}  // namespace voxa
