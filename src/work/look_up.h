#pragma once

#include <memory>
#include <string>
#include <vector>

namespace voxa {

class Database;
class Installation;
class Recordset;

// Rows by what a person calls them: a number or a name, in any case. Each returns the rows placed on the one
// that was found, with all columns, and raises a Refusal when there is none.

// Stations and readers often have numbers for names, those of rooms say: there a name comes before a number.
[[nodiscard]] std::unique_ptr<Recordset> stationNamed(Installation& installation, const std::string& name);
[[nodiscard]] std::unique_ptr<Recordset> readerNamed(Installation& installation, const std::string& name);

/// An alarm, or a lift output: the rows of "Alarms" with the type M. A name comes before a number here, too.
enum class AlarmKind : bool { alarm, lift };
[[nodiscard]] std::unique_ptr<Recordset> alarmNamed(Installation& installation, AlarmKind kind,
                                                    const std::string& name);

// A text of digits alone is a number first, and a name when no row has that number. One that no 16-bit number
// can hold is refused.

[[nodiscard]] std::unique_ptr<Recordset> dailyProgramNamed(Installation& installation,
                                                           const std::string& numberOrName);
/// family: "C" or "E", each with numbers and names of its own.
[[nodiscard]] std::unique_ptr<Recordset> weeklyProgramNamed(Installation& installation,
                                                            const std::string& family,
                                                            const std::string& numberOrName);
[[nodiscard]] std::unique_ptr<Recordset> holidayNamed(Installation& installation,
                                                      const std::string& numberOrName);
/// A Refusal also when the installation has no table of badge formats.
[[nodiscard]] std::unique_ptr<Recordset> badgeFormatNamed(Installation& installation,
                                                          const std::string& numberOrName);

/// Whether the main database has a table of that name, in any case.
[[nodiscard]] bool hasTable(Database& database, const std::string& table);

/// The names that a statement selects, in its order, for suggestions.h. Its column is Name.
[[nodiscard]] std::vector<std::string> namesOf(Installation& installation, const std::string& statement);

/// Rows of the badge formats; a Refusal when the installation has no table of them.
[[nodiscard]] std::unique_ptr<Recordset> badgeFormats(Installation& installation);
[[nodiscard]] bool hasBadgeFormats(Installation& installation);

}  // namespace voxa
