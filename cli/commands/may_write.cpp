#include "may_write.h"

#include "platform/files.h"
#include "session.h"
#include "work/copies.h"
#include "work/refusal.h"

namespace voxa::cli {

void requireMayWrite(Session& session, const std::string& path, bool force) {
  requireForeignFile(session.library(), path);
  if (force || !files::exists(path)) return;
  const Answer answer =
      session.prompts().messageBox("The file " + path + " already exists. Replace it?",
                                   style::yesNo | style::exclamation | style::secondDefault, "");
  if (answer != Answer::yes) throw Refusal(path + " exists and stays as it is; --force replaces it");
}

}  // namespace voxa::cli
