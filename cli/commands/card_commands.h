#pragma once

namespace voxa::cli {

class Command;
class Session;

/// "add", "lend", "set" and "rename" of the group "card".
void addCardChangeCommands(Command& group, Session& session);
/// "block", "unblock" and "replace" of it.
void addCardBlockingCommands(Command& group, Session& session);
/// "batch", "delete" and "invalidate" of it.
void addCardClearingCommands(Command& group, Session& session);
/// "restore" and "purge" of it.
void addDeletedCardCommands(Command& group, Session& session);
/// "show" of it.
void addCardShowCommand(Command& group, Session& session);
/// "last-unknown" of it.
void addLastUnknownCommand(Command& group, Session& session);

}  // namespace voxa::cli
