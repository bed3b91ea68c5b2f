#include "work/copies.h"

#include <filesystem>

#include "comm/modem_file.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "work/installation.h"
#include "work/installation_files.h"
#include "work/refusal.h"

namespace voxa {

namespace {

void requireModemsHere(Installation& installation, const std::string& path) {
  if (!files::isPlain(path)) return;
  std::string names;
  try {
    const auto copy = installation.engine().open(path);
    names = eachOnALine(stationsWithModemElsewhere(*copy));
    copy->close();
  } catch (const Error&) {
    return;  // no database that could be restored, which the restore tells
  }
  if (names.empty()) return;
  throw Refusal("these stations of " + path +
                " have a modem file outside the installation; --yes takes it so:" + names);
}

}  // namespace

void requireForeignFile(Installation& installation, const std::string& path) {
  if (!isFileOfInstallation(installation.paths().Chemin, path)) return;
  throw Refusal(path + " belongs to the installation: name another file");
}

std::string copyToRestore(Installation& installation, const std::string& path, bool modemsSeen) {
  std::error_code noSuchFile;
  const std::filesystem::path found = std::filesystem::canonical(path, noSuchFile);
  const std::string file = noSuchFile ? path : found.string();
  requireForeignFile(installation, file);
  if (!modemsSeen) requireModemsHere(installation, file);
  return file;
}

}  // namespace voxa
