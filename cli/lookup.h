#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "comm/row_download.h"

namespace CLI {
class App;
}

namespace voxa {
class Recordset;
}

namespace voxa::cli {

class Installation;

// What people write on the command line, as numbers and rows. Names are compared row by row and never become
// part of a statement.

/// what: how a Refusal names the number ("the port"): for a text that is no whole number, a fraction
/// included, and for one outside the range.
[[nodiscard]] std::int16_t number16(const std::string& what, const std::string& text);
[[nodiscard]] std::int32_t number32(const std::string& what, const std::string& text);
/// The same within bounds.
[[nodiscard]] std::int16_t numberWithin(const std::string& what, const std::string& text, std::int16_t least,
                                        std::int16_t greatest);

/// The text itself; a Refusal when it has control characters, characters that the controllers' files cannot
/// hold, or more than so many. what: as the Refusal names it ("a name").
[[nodiscard]] std::string checkedText(const std::string& what, const std::string& text, std::size_t most);
/// The same of a name, up to 50 characters, which is not empty.
[[nodiscard]] std::string checkedName(const std::string& name);
/// The same for a station or reader; a Refusal for a name with an apostrophe too: the journal's statements
/// carry these names as they are, so that nothing of such a door could ever be read.
[[nodiscard]] std::string checkedPlaceName(const std::string& name);

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

/// Where a download or command goes, as the person chose it.
struct ComponentChoice {
  std::string station;
  std::string reader;
};
void addComponentOptions(CLI::App& command, ComponentChoice& choice);
/// The component; a Refusal when there is no such station or reader, or no active station at all.
[[nodiscard]] Component chosen(Installation& installation, const ComponentChoice& choice);

}  // namespace voxa::cli
