#pragma once

#include <string>

#include "work/refused_rows.h"
#include "work/transfer.h"

namespace voxa {

class Clock;

/// Makes a new database file that holds what another one holds. Either may be a file of statements, whose
/// name ends in ".sql" (work/sql_script.h). The whole file is there at the end, or none, and only its owner
/// can use it: personal codes are in it. refused: takes the rows that break a rule, and decides. Full paths.
/// 58 when `to` exists.
Transferred convertDatabase(const Clock& clock, const std::string& from, const std::string& to,
                            RefusedRows& refused, Observer& observer);

/// Writes each table of a database into a file of its own, named after it, in a new folder, for spreadsheets.
/// The whole folder is there at the end, or none. codes: see FileRights. Full paths. 58 when `folder` exists.
Transferred exportTables(const Clock& clock, const std::string& from, const std::string& folder, bool codes,
                         Observer& observer);

}  // namespace voxa
