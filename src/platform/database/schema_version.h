#pragma once

#include <functional>
#include <string>
#include <vector>

namespace voxa {

class Database;
class DatabaseEngine;

/// Each kind of database file has versions, which differ in its tables. The number of a file's version is in
/// the file (Database::schemaVersion); who creates one sets it, in the transaction that makes the tables.

/// Makes the tables of one version into those of the next; part of a transaction. A failure is raised. Empty:
/// a stamp, which only sets the number, since the tables are right already.
using SchemaStep = std::function<void(Database&)>;

/// Step i makes version i into i + 1: the number of steps is the current version. Version 0 is that of files
/// from before there were numbers. Steps are added behind the others and never change.
using SchemaSteps = std::vector<SchemaStep>;

/// Brings a file that was just opened to the current version: the steps that it lacks and the number, in one
/// transaction. Before them the file is copied beside it, as its name and ".v0" (the old version), or
/// ".v0-2",
/// ".v0-3" when there is one already. Of two processes one does it; the other waits as long as the engine
/// waits for a lock, and finds it done.
///
/// For stamps alone no copy is made. When such a file cannot be written now (it is read-only or locked, its
/// folder is, the disk is full, a transaction of the caller's is running), it stays as it is, usable, until
/// it is opened again.
///
/// Otherwise a failure is raised, and the file is what it was, without a new copy beside it: `err::dbVersion`
/// for a file of a newer version; 3001 within a transaction of the caller's, who could take the steps back;
/// what copyTo and the steps raise.
void bringForward(DatabaseEngine& engine, Database& database, const SchemaSteps& steps);

/// Passes to `check` what an open file will be when it has been brought forward; the file stays as it is.
/// trial: path for a copy that exists meanwhile. Raises what bringForward would raise, and what `check`
/// raises.
void checkBroughtForward(DatabaseEngine& engine, Database& database, const SchemaSteps& steps,
                         const std::string& trial, const std::function<void(Database&)>& check);

}  // namespace voxa
