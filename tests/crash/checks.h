#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace voxa::crash {

class Plant;

/// What is wrong, in words. What is not wrong but worth knowing is counted.
struct Findings {
  std::vector<std::string> wrong;
  std::map<std::string, int> seen;
};

/// Rows of the journal, and of a copy that it was saved to, by their data. Empty without a journal.
[[nodiscard]] std::map<std::string, int> journalRows(const std::filesystem::path& folder);
/// Data of the transactions in the memories of the controllers.
[[nodiscard]] std::vector<std::string> onControllers(const std::filesystem::path& siteFolder);

/// Checks an installation in which an operation was attempted `runs` times since Plant::remember:
/// - every database opens and is whole by its engine's own word, relations included;
/// - each recorded transaction is in the journal or on its controller. A row comes at most once an attempt,
///   and only while its controller had not cleared it;
/// - a block of cards is there with all its cards or with none;
/// - what is not planned to be sent to a controller is there as its row says, marked or not.
void check(const Plant& plant, int runs, Findings& findings);
/// Looks for cards that are on controllers and in no table. After a kill the next command must erase them.
void checkStrays(const Plant& plant, Findings& findings);

}  // namespace voxa::crash
