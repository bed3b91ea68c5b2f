#include "files/database_files.h"

#include <algorithm>

#include "files/file_context.h"
#include "files/ufile.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/ui/prompts.h"

namespace voxa {

namespace {

constexpr const char* databaseFilter = "Access Databases   (*.mdb)|*.mdb";
constexpr int saveFlags = FileDialog::overwritePrompt | FileDialog::noChangeDir | FileDialog::pathMustExist;

Answer ask(FileContext& context, const char* mnemonic, int boxStyle) {
  return context.prompts().messageBox(context.messages().read(mnemonic), boxStyle,
                                      context.messages().read("MDIkrvCaption"));
}

UFile saveDialog(FileContext& context) {
  UFile dialog(context);
  dialog.filter = databaseFilter;
  dialog.flags = saveFlags;
  return dialog;
}

}  // namespace

void closeDatabaseFile(FileContext& context, const std::string& name) {
  const bool bare = name.find_first_of("\\/") == std::string::npos;
  const std::string wanted = toUpper(files::native(bare ? files::currentFolder() + "\\" + name : name));
  auto open = context.engine().databases();
  std::reverse(open.begin(), open.end());  // the one opened last comes first
  for (const auto& database : open) {
    if (toUpper(database->name()) == wanted) database->close();
  }
}

bool saveBeforeReplace(FileContext& context, const std::string& name, const char* mnemonic,
                       bool overwriteAllowed) {
  if (!files::exists(name)) return true;
  Answer answer = ask(context, mnemonic, style::yesNoCancel | style::question);
  if (answer == Answer::cancel) return true;
  if (answer == Answer::no && overwriteAllowed &&
      ask(context, "msgConfirmOverwriteDB", style::yesNo | style::critical | style::secondDefault) ==
          Answer::no) {
    answer = Answer::yes;
  }
  closeDatabaseFile(context, name);
  if (answer != Answer::yes) {
    files::remove(name);
    return false;
  }
  return saveDialog(context).DlgRename(name) != 0;
}

std::int16_t saveDatabaseAs(FileContext& context, const std::string& name) {
  closeDatabaseFile(context, name);
  return saveDialog(context).DlgSaveAs(name);
}

std::int16_t restoreDatabase(FileContext& context, const std::string& name, const char* mnemonic,
                             std::function<void(Database&)> requireFit) {
  Answer answer = Answer::no;
  if (files::exists(name)) {
    answer = ask(context, mnemonic, style::yesNoCancel | style::question);
    if (answer == Answer::cancel) return -1;
  }
  closeDatabaseFile(context, name);
  if (answer == Answer::yes && saveDialog(context).DlgSaveAs(name) != 0) return -1;
  UFile dialog(context);
  dialog.filter = databaseFilter;
  dialog.requireFit = std::move(requireFit);
  return dialog.DlgRestore(name);
}

}  // namespace voxa
