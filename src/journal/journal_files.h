#pragma once

namespace voxa {

/// The work file that the driver writes a controller's memory into.
inline constexpr const char* dumpFile = "J.DAT";

/// Makes way for a new work file. One that is still there was left by a read that failed or was killed before
/// its lines were in the journal for certain. The controller should still hold them, unless its memory ran
/// over since; so the file is kept, as "J-001.DAT" and so on, unless it is empty.
void setAsideDump();

}  // namespace voxa
