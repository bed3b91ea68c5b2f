#pragma once

namespace voxa::cli {

class Command;
class Session;

/// Adds the command `query` to the group of the database.
void addQueryCommand(Command& group, Session& session);

}  // namespace voxa::cli
