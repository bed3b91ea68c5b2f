#pragma once

namespace voxa::cli {

class Command;
class Session;

/// "batch", "delete" and "invalidate" of the group "card".
void addCardClearingCommands(Command& group, Session& session);
/// "last-unknown" of it.
void addLastUnknownCommand(Command& group, Session& session);

}  // namespace voxa::cli
