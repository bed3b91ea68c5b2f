#pragma once

#include <string>

#include "lines/station_result.h"

namespace voxa {

class Context;

/// Reads a station result file; a missing or unreadable one raises the error of SeqFile.
[[nodiscard]] StationResult readStationResult(Context& context, const std::string& path);

}  // namespace voxa
