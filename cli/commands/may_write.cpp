#include "may_write.h"

#include "app/installation_files.h"
#include "platform/files.h"
#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

void requireMayWrite(Session& session, const std::string& path, bool force) {
  if (isFileOfInstallation(session.folder(), path)) {
    throw Refusal(path + " belongs to the installation: name another file");
  }
  if (force || !files::exists(path)) return;
  const Answer answer =
      session.prompts().messageBox("The file " + path + " already exists. Replace it?",
                                   style::yesNo | style::exclamation | style::secondDefault, "");
  if (answer != Answer::yes) throw Refusal(path + " exists and stays as it is; --force replaces it");
}

}  // namespace voxa::cli
