#pragma once

#include <string>

#include "work/transfer.h"

namespace voxa {

// A whole database as statements of our own language, each ended by a semicolon at the end of a line: a text
// that a person can read, and that makes the same database again. The first line is a comment with the
// version of the schema, the last one a comment that says that nothing is missing.

/// Whether a file is one of statements, by the end of its name: ".sql".
[[nodiscard]] bool isScript(const std::string& path);

/// Writes the database into a file that only its owner can use. observer: told of each row. A failure leaves
/// no file that could be taken for a whole one. 58 when the file exists.
Transferred writeScript(Database& from, const std::string& path, Observer& observer);

/// Carries out the statements of a file on an empty database, in one transaction. Text of other makers is
/// taken, too, as far as it is our language. A failure names the line where its statement begins. refused:
/// told of statements that break a rule, a unique index or a relation.
Transferred readScript(const std::string& path, DatabaseEngine& engine, Database& to,
                       const OnRefused& refused, Observer& observer);

}  // namespace voxa
