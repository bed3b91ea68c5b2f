#pragma once

#include <memory>
#include <string>

namespace voxa {

class Installation;
class Recordset;

// Rows by what a person calls them.

/// Moves to the first row of that name; false, and past the last row, when there is none.
bool moveToName(Recordset& rows, const std::string& name);
/// Moves to the row of that number, when the text is one, else to the row of that name. A Refusal with the
/// text of `mnemonic` when there is none.
void moveToNumberOrName(Recordset& rows, const char* numberColumn, const std::string& text,
                        const char* mnemonic);
/// Rows of a table placed on the one of that name; a Refusal when there is none.
[[nodiscard]] std::unique_ptr<Recordset> stationNamed(Installation& installation, const std::string& name);
[[nodiscard]] std::unique_ptr<Recordset> readerNamed(Installation& installation, const std::string& name);

/// Rows of the badge formats; a Refusal when the installation has no table of them.
[[nodiscard]] std::unique_ptr<Recordset> badgeFormats(Installation& installation);
[[nodiscard]] bool hasBadgeFormats(Installation& installation);

}  // namespace voxa
