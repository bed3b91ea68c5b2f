#pragma once

#include <cstdint>
#include <string>

namespace site {
class Site;
}

namespace voxa::cli {

class Session;

/// Fills a new installation as a small company has it (two stations, six controllers, nine readers, four
/// daily and three weekly programs) and puts its controllers on the lines.
void fillDemoInstallation(Session& session, site::Site& site);

/// Changes an interval of a daily program, or the holidays of a weekly one (family C), and marks it to be
/// sent.
void changeDaily(Session& session, const std::string& name, const std::string& firstStart);
void changeWeekly(Session& session, const std::string& name, std::int16_t holidays);

}  // namespace voxa::cli
