#pragma once

#include <string>

#include "app/open_installation.h"
#include "work/refused_rows.h"
#include "work/transfer.h"

namespace voxa {

/// The database files of an installation that another system, or another engine, has kept. Full paths; "" for
/// one that is not brought along.
struct OldFiles {
  std::string main{};
  std::string journal{};
  std::string texts{};
};

/// Makes a new installation in a folder, with what an old one's files hold. Tables and columns meet by their
/// names, in any case; what this system does not have is kept beside it. The marks of what is to be sent are
/// kept, and nothing is known of what controllers hold, so that the plan compares everything. The whole
/// installation is there at the end, or nothing, whenever the import is broken off. The old files are only
/// read.
/// how: its folder is a full path, and is made when it is missing. trial: everything is done, in a temporary
/// folder, and nothing is left of it.
/// A Refusal for a folder that holds an installation, and for a main database that is none.
Transferred importInstallation(Prompts& prompts, const Opening& how, const OldFiles& old,
                               RefusedRows& refused, bool trial, Observer& observer);

/// Deletes what an import that was broken off has left in the current folder: its own folder, and what it has
/// moved out of there already.
void removeUnfinishedImport();

}  // namespace voxa
