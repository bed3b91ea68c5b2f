#include "files/ufile.h"

#include <algorithm>

#include "files/file_context.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/ui/prompts.h"

namespace voxa {

namespace {

// A path in the form in which two are compared: absolute, with "\" between its parts, in upper-case.
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

std::string inWorkingFolder(FileContext& context, const char* suffix) {
  return comparable(context.paths().Chemin) + suffix;
}

bool isJournal(FileContext& context, const std::string& chosen) {
  return comparable(chosen) == inWorkingFolder(context, "\\JOURNAL.MDB");
}

// The main database's name has small letters here and never equals the upper-case name that was chosen. So
// only the journal is protected, as users of these dialogs expect.
bool isProtected(FileContext& context, const std::string& chosen) {
  return isJournal(context, chosen) || comparable(chosen) == inWorkingFolder(context, "\\KRV.mdb");
}

}  // namespace

std::string UFile::choose(const char* titleMnemonic, const std::string& proposed, bool save) {
  FileDialog dialog;
  dialog.title = context_.messages().read(titleMnemonic);
  dialog.proposedName = proposed;
  dialog.filter = filter;
  dialog.flags = flags;
  dialog.save = save;
  return context_.prompts().chooseFile(dialog);
}

bool UFile::confirmed(const char* mnemonic) {
  return context_.prompts().messageBox(context_.messages().read(mnemonic), style::yesNo | style::question,
                                       context_.messages().read("MDIkrvCaption")) == Answer::yes;
}

std::int16_t UFile::refuse() {
  context_.messages().display("msgIllegalName", "", {}, style::critical);
  return -1;
}

std::int16_t UFile::DlgRename(const std::string& fileName) {
  const std::string chosen = choose("msgSaveAs", fileName, true);
  if (chosen.empty()) return -1;
  if (isProtected(context_, chosen)) return refuse();
  if (comparable(chosen) == comparable(fileName)) return 0;  // the file already has that name
  // A copy can reach another volume. It also replaces a file of that name as a whole or not at all.
  files::copy(fileName, chosen);
  files::remove(fileName);
  return 0;
}

std::int16_t UFile::DlgSaveAs(const std::string& fileName) {
  const std::string chosen = choose("msgSaveAs", fileName, true);
  if (chosen.empty()) return -1;
  const std::string mainDatabase = comparable(context_.paths().AppDB);
  const std::string mainName = mainDatabase.substr(mainDatabase.find_last_of('\\'));
  if (isJournal(context_, chosen) || comparable(chosen) == inWorkingFolder(context_, "") + mainName) {
    return refuse();
  }
  files::copy(fileName, chosen);  // replaces a file of that name in one step
  return 0;
}

std::int16_t UFile::DlgRestore(const std::string& newFileName) {
  const std::string chosen = choose("msgFileToRestore", "", false);
  if (chosen.empty()) return -1;
  if (isProtected(context_, chosen)) return refuse();
  if (files::exists(newFileName) && !confirmed("msgOverrideYN")) return -1;
  // A file that is no database must not replace one, so it is opened first, which raises the engine's error.
  const auto backup = context_.engine().open(chosen);
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
