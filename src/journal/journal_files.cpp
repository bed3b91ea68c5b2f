// The files of a read: names, the two generations of a controller, the archive.

#include "journal/journal_files.h"

#include "access/access_context.h"
#include "comm/com.h"
#include "journal/journal.h"
#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/files.h"
#include "platform/text.h"

namespace voxa {

namespace {

/// Whether the work file, which exists, was empty.
bool removedEmpty() {
  const bool empty = files::Stream(dumpFile, files::Stream::Mode::read).atEnd();
  if (empty) files::remove(dumpFile);
  return empty;
}

}  // namespace

void setAsideDump() {
  if (!files::exists(dumpFile) || removedEmpty()) return;
  int number = 1;
  const auto name = [&] { return "J-" + zeroPadded(number, 3) + ".DAT"; };
  while (files::exists(name())) ++number;
  files::rename(dumpFile, name());
}

std::string Journal::makeFileName(const ControllerPlace& source) {
  return "J" + zeroPadded(source.station, 3) + zeroPadded(source.address, 2);
}

void Journal::rotateFile(const std::string& baseName) {
  const std::string latest = baseName + ".DAT";
  const std::string before = baseName + ".OLD";
  if (!files::exists(latest)) return;
  if (files::exists(before)) files::remove(before);
  files::rename(latest, before);
}

bool Journal::removeEmptyDump() const {
  return passesEmptyOver && files::exists(dumpFile) && removedEmpty();
}

void Journal::archiveFile(const std::string& baseName) {
  if (files::exists(dumpFile)) files::rename(dumpFile, baseName + ".DAT");
  const std::string folder = access_.Com().Chemin + "\\Backup";
  // Looked for in the current folder, made in the working folder: the same place in an installation.
  if (!files::folderExists("Backup")) files::makeFolder(folder);
  const auto target = [&] {
    return folder + "\\" + baseName + " " + formatDateTime(context_.clock().now(), "ddmmmyyyy-hh.nn.ss") +
           ".DAT";
  };
  // Read twice within a second: the first archive stays.
  while (files::exists(target())) context_.clock().wait(1);
  // Fails when the driver reported success but wrote no file: then nothing is cleared.
  files::copy(baseName + ".Dat", target());
}

}  // namespace voxa
