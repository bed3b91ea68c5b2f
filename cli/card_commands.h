#pragma once

namespace CLI {
class App;
}

namespace voxa::cli {

class Installation;

/// "batch", "delete" and "invalidate" of the group "card".
void addCardClearingCommands(CLI::App& group, Installation& installation);
/// "last-unknown" of it.
void addLastUnknownCommand(CLI::App& group, Installation& installation);

}  // namespace voxa::cli
