#pragma once

namespace site {
class Site;
}

namespace voxa::cli {

class Session;

/// The second half of the demonstration, over an installation whose controllers hold its programs: cards,
/// their download, a week at the doors, and the journal of it. A Refusal when something is not as the rows of
/// the installation say it must be.
void demonstrateAccess(Session& session, site::Site& site);

}  // namespace voxa::cli
