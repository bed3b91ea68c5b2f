#include "work/installation_files.h"

#include <algorithm>
#include <filesystem>
#include <regex>

#include "platform/files.h"

namespace voxa {

namespace {

namespace fs = std::filesystem;

bool isReserved(const fs::path& name) {
  // The databases with what their engine or a copy leaves beside them, the files of the driver and of a read,
  // logs, the driver itself. Earlier versions noted batches of cards in files.
  static const std::regex reserved(
      R"((KRV\.mdb|Journal\.MDB|I18N\.MDB|Ledger\.MDB)([-~.].*)?|Ledger\d+\.own|COMMAND\.TXT|COM\.LOG|Log\.txt|voxa\.lck|S\d+\.ini|RS\d+\.OUT|)"
      R"(J\.DAT|J-?\d+\.(DAT|OLD|BAD)|CardBlock\d+\.txt|(lib)?TLXP32(\.so|\.dll)?|Backup|site)",
      std::regex::icase);
  return std::regex_match(name.string(), reserved);
}

/// The first part of a path below a folder; empty for a path elsewhere.
fs::path firstBelow(const fs::path& folder, const fs::path& path) {
  const auto [inFolder, inPath] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
  return inFolder == folder.end() && inPath != path.end() ? *inPath : fs::path();
}

}  // namespace

bool isFileOfInstallation(const std::string& folder, const std::string& path) {
  std::error_code none;  // what cannot be looked at is no file that could be damaged
  const fs::path home = fs::canonical(folder, none);
  if (isReserved(firstBelow(home, fs::weakly_canonical(files::native(path), none)))) return true;
  // A hard link has a name of its own.
  fs::directory_iterator entry(home, none);
  return std::any_of(fs::begin(entry), fs::end(entry), [&](const fs::directory_entry& file) {
    return isReserved(file.path().filename()) && fs::equivalent(file.path(), files::native(path), none);
  });
}

}  // namespace voxa
