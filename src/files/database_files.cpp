#include "files/database_files.h"

#include <algorithm>

#include "app/library.h"
#include "files/ufile.h"
#include "messages/strings.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/ui/prompts.h"

namespace voxa {

namespace {

constexpr const char* databaseFilter = "Access Databases   (*.mdb)|*.mdb";
constexpr int saveFlags = FileDialog::overwritePrompt | FileDialog::noChangeDir | FileDialog::pathMustExist;

Answer ask(Library& library, const char* mnemonic, int boxStyle) {
  return library.prompts().messageBox(library.Strings().read(mnemonic), boxStyle,
                                      library.Strings().read("MDIkrvCaption"));
}

UFile saveDialog(Library& library) {
  UFile dialog(library);
  dialog.filter = databaseFilter;
  dialog.flags = saveFlags;
  return dialog;
}

}  // namespace

void closeDatabaseFile(Library& library, const std::string& name) {
  const bool bare = name.find_first_of("\\/") == std::string::npos;
  const std::string wanted = toUpper(files::native(bare ? files::currentFolder() + "\\" + name : name));
  auto open = library.engine().databases();
  std::reverse(open.begin(), open.end());  // the youngest first
  for (const auto& database : open) {
    if (toUpper(database->name()) == wanted) database->close();
  }
}

bool saveBeforeReplace(Library& library, const std::string& name, const char* mnemonic,
                       bool overwriteAllowed) {
  if (!files::exists(name)) return true;
  Answer answer = ask(library, mnemonic, style::yesNoCancel | style::question);
  if (answer == Answer::cancel) return true;
  if (answer == Answer::no && overwriteAllowed &&
      ask(library, "msgConfirmOverwriteDB", style::yesNo | style::critical | style::secondDefault) ==
          Answer::no) {
    answer = Answer::yes;
  }
  closeDatabaseFile(library, name);
  if (answer != Answer::yes) {
    files::remove(name);
    return false;
  }
  return saveDialog(library).DlgRename(name) != 0;
}

std::int16_t saveDatabaseAs(Library& library, const std::string& name) {
  closeDatabaseFile(library, name);
  return saveDialog(library).DlgSaveAs(name);
}

std::int16_t restoreDatabase(Library& library, const std::string& name, const char* mnemonic,
                             std::function<void(Database&)> requireFit) {
  Answer answer = Answer::no;
  if (files::exists(name)) {
    answer = ask(library, mnemonic, style::yesNoCancel | style::question);
    if (answer == Answer::cancel) return -1;
  }
  closeDatabaseFile(library, name);
  if (answer == Answer::yes && saveDialog(library).DlgSaveAs(name) != 0) return -1;
  UFile dialog(library);
  dialog.filter = databaseFilter;
  dialog.requireFit = std::move(requireFit);
  return dialog.DlgRestore(name);
}

}  // namespace voxa
