#pragma once

namespace voxa::cli {

class Command;
class Session;

/// Adds what is done with the journal as a file: index, save, restore, delete, verify.
void addJournalKeeping(Command& journal, Session& session);

}  // namespace voxa::cli
