#include "files/ufile.h"

#include <algorithm>

#include "app/library.h"
#include "comm/com.h"
#include "messages/strings.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/ui/prompts.h"

namespace voxa {

namespace {

// A path as the refusal tests compare it: "\" between its parts, from the root on, upper-case.
std::string comparable(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  const bool absolute = path.starts_with('\\') || (path.size() > 1 && path[1] == ':');
  if (!absolute) {
    std::string folder = files::currentFolder();
    std::replace(folder.begin(), folder.end(), '/', '\\');
    path = folder + "\\" + path;
  }
  return toUpper(path);
}

std::string inWorkingFolder(Library& library, const char* suffix) {
  return comparable(library.Com().Chemin) + suffix;
}

bool isJournal(Library& library, const std::string& chosen) {
  return comparable(chosen) == inWorkingFolder(library, "\\JOURNAL.MDB");
}

// The main database's suffix is compared in its mixed case with an upper-case name and so never matches:
// only the journal is protected, as users of these dialogs expect.
bool isProtected(Library& library, const std::string& chosen) {
  return isJournal(library, chosen) || comparable(chosen) == inWorkingFolder(library, "\\KRV.mdb");
}

}  // namespace

std::string UFile::choose(const char* titleMnemonic, const std::string& proposed, bool save) {
  FileDialog dialog;
  dialog.title = library_.Strings().read(titleMnemonic);
  dialog.proposedName = proposed;
  dialog.filter = filter;
  dialog.flags = flags;
  dialog.save = save;
  return library_.prompts().chooseFile(dialog);
}

bool UFile::confirmed(const char* mnemonic) {
  return library_.prompts().messageBox(library_.Strings().read(mnemonic), style::yesNo | style::question,
                                       library_.Strings().read("MDIkrvCaption")) == Answer::yes;
}

std::int16_t UFile::refuse() {
  library_.Strings().display("msgIllegalName", "", {}, style::critical);
  return -1;
}

std::int16_t UFile::DlgRename(const std::string& fileName) {
  const std::string chosen = choose("msgSaveAs", fileName, true);
  if (chosen.empty()) return -1;
  if (isProtected(library_, chosen)) return refuse();
  if (comparable(chosen) == comparable(fileName)) return 0;  // it has that name already
  // A copy reaches another volume, too, and a file of that name is replaced by a whole one or not at all.
  files::copy(fileName, chosen);
  files::remove(fileName);
  return 0;
}

std::int16_t UFile::DlgSaveAs(const std::string& fileName) {
  const std::string chosen = choose("msgSaveAs", fileName, true);
  if (chosen.empty()) return -1;
  const std::string mainDatabase = comparable(library_.Com().AppDB);
  const std::string mainName = mainDatabase.substr(mainDatabase.find_last_of('\\'));
  if (isJournal(library_, chosen) || comparable(chosen) == inWorkingFolder(library_, "") + mainName) {
    return refuse();
  }
  files::copy(fileName, chosen);  // replaces a file of that name in one step
  return 0;
}

std::int16_t UFile::DlgRestore(const std::string& newFileName) {
  const std::string chosen = choose("msgFileToRestore", "", false);
  if (chosen.empty()) return -1;
  if (isProtected(library_, chosen)) return refuse();
  if (files::exists(newFileName) && !confirmed("msgOverrideYN")) return -1;
  // A file that is no database must not replace one: opening it raises the engine's error first.
  const auto backup = library_.engine().open(chosen);
  requireFit(*backup);
  backup->close();
  files::copy(chosen, newFileName);
  return 0;
}

std::int16_t UFile::DlgDelete() {
  flags = FileDialog::fileMustExist | FileDialog::pathMustExist | FileDialog::noChangeDir;
  const std::string chosen = choose("msgFileToDelete", "", false);
  if (chosen.empty() || !confirmed("msgDeleteYN")) return -1;
  files::remove(chosen);
  return 0;
}

}  // namespace voxa
