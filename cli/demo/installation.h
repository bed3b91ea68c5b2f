#pragma once

namespace site {
class Site;
}

namespace voxa {
class Installation;
}

namespace voxa::cli {

/// Fills a new installation as a small company has it (two stations, six controllers, nine readers, four
/// daily and three weekly programs) and puts its controllers on the lines.
void fillDemoInstallation(Installation& installation, site::Site& site);

}  // namespace voxa::cli
