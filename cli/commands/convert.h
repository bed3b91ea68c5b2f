#pragma once

namespace voxa {
struct Transferred;
}

namespace voxa::cli {

class Command;
class Session;

/// Tells what became of each table.
void printTransferred(const Transferred& done);

void addConvertCommand(Command& group, Session& session);
void addExportDatabaseCommands(Command& group, Session& session);

}  // namespace voxa::cli
