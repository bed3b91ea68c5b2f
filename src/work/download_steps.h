#pragma once

#include "work/download.h"

namespace voxa {

// The kinds whose marks are of more than one table (download_cards.cpp).

Report downloadGroups(Installation& installation, const DownloadTarget& target);
Report downloadCards(Installation& installation, const DownloadTarget& target);

}  // namespace voxa
