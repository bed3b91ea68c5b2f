#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "work/row_copy.h"

namespace voxa {

class DatabaseEngine;
class Observer;

/// What became of one table.
struct TransferredTable {
  std::string table;
  std::size_t read = 0;
  std::size_t written = 0;
  std::size_t refused = 0;
};

struct Transferred {
  std::vector<TransferredTable> tables;
  std::size_t indexes = 0;
  std::size_t relations = 0;
  std::size_t queries = 0;
  std::vector<std::string> notes{};  ///< what was not taken over, and why, in sentences
  bool damaged = false;              ///< the old file is damaged: some of it is lost
};

/// Copies a whole database into an empty one, whatever engines serve them: tables, rows, indexes, relations,
/// stored queries and the version of the schema, in one transaction of `engine`, which is that of `to`. Then
/// it reads the copy, and compares it with what was read. Memory does not grow with the rows.
/// refused: told of each row that breaks a rule, a unique index or a relation. The copy ends as it was
/// before, if that raises.
Transferred transfer(Database& from, DatabaseEngine& engine, Database& to, const OnRefused& refused,
                     Observer& observer);

/// Makes a table with its indexes, and copies the rows. What the copy holds is compared with what was
/// written. What cannot be kept of the definition is noted: a rule in words that the language does not have,
/// a name. The errors of definitions are noted, those of the disk and of locks raised.
void copyTable(Database& from, const TableDef& definition, Database& to, const OnRefused& refused,
               Transferred& out, Observer& observer);

/// Hands each row of a table to a copy.
void copyRows(Database& from, const std::string& table, RowCopy& copy, Observer& observer);

/// Stores a query, or notes why it cannot be stored.
void copyQuery(Database& to, const QueryDef& query, Transferred& done);

/// Raises for the first row that is refused.
[[noreturn]] void failAtRow(const RefusedRow& row);

/// Makes relations, behind the rows. Rows of a foreign side that break one are told of and deleted before. A
/// relation that cannot be is noted.
void copyRelations(Database& to, const std::vector<Relation>& relations, const OnRefused& refused,
                   Transferred& out);

}  // namespace voxa
