#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace voxa {

class Database;

/// Why a station's `ModemIniFile`, the file that initialises its modem, cannot be handed to the driver, which
/// opens it; "" when it can. A path is as good as a name in the working folder; a device is no file, and a
/// name on the network makes the computer log on wherever it leads.
[[nodiscard]] std::string_view modemFileFault(const std::string& path);

/// Names of the stations of a database whose modem file is not simply a file of the working folder: a person
/// should have seen that before a database from elsewhere is put to use.
[[nodiscard]] std::vector<std::string> stationsWithModemElsewhere(Database& database);

}  // namespace voxa
