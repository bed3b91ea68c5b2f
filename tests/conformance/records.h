#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace voxa::conformance {

/// A record of a file in the form of sqllogictest. Records are parted by empty lines; # begins a comment.
///
///   table NAME                    makes a table: a line for each column, with its type (TextN: N characters)
///   statement ok|count N|error N  runs the text below it: how many rows it changes, or the number it raises
///   query TYPES [rowsort]         its rows below ----, with | between the values. A letter a column: I for a
///                                 whole number or boolean, R another number, D a moment, T a text
///   query error N                 the number that it raises
///
/// NULL and (empty) stand for these; in a column of type I True is -1.
struct Record {
  enum class Kind { table, statement, query };
  Kind kind = Kind::query;
  int line = 0;
  std::string text;  ///< the name of the table, or what is run
  std::optional<int> error;
  std::optional<int> count;
  std::string types;
  bool sorted = false;  ///< the rows may come in any order: both sides are sorted
  std::vector<std::string> rows;
  std::vector<std::pair<std::string, std::string>> columns;  ///< of a table: name and type
};

/// Throws std::runtime_error with the number of a line that is no part of a record.
[[nodiscard]] std::vector<Record> readRecords(std::istream& in);

}  // namespace voxa::conformance
