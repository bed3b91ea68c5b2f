#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/database/database.h"
#include "work/table_digest.h"

namespace voxa {

/// A row that the other side does not take.
struct RefusedRow {
  std::string table;
  std::string key;     ///< "CardNum 12"; "row 17" in a table without a primary key
  std::string reason;  ///< in words
  std::vector<std::string> fields;
  std::vector<Value> values;  ///< one for each field, as they were read
};

/// Told of a row that is left out. What it raises ends the copy.
using OnRefused = std::function<void(RefusedRow row)>;

/// Copies rows of one table into another one, by an order of columns.
class RowCopy {
 public:
  /// fields: those of the rows that are read. target: the table that they are written to, which has a field
  /// of each of these names.
  RowCopy(Database& to, const TableDef& target, std::vector<std::string> fields, OnRefused refused);

  /// A row as it was read: a value for each field. One that the table cannot take is told of: its values do
  /// not fit the types, or break a rule, a unique index or a relation.
  void write(const Value* row);

  [[nodiscard]] std::size_t read() const { return read_; }
  [[nodiscard]] const TableDigest& written() const { return written_; }
  /// requireSame of what was written and what the table holds. Only for one that was empty before.
  void compare();

 private:
  Database& to_;
  const TableDef& target_;
  std::vector<std::string> fields_;
  std::vector<const FieldDef*> definitions_;
  OnRefused refused_;
  std::unique_ptr<Command> insert_;
  std::vector<Value> values_;
  std::size_t read_ = 0;
  TableDigest written_;
};

/// What a person calls a row: "CardNum 12", or "row 17" (number) in a table without a primary key.
[[nodiscard]] std::string keyOfRow(const TableDef& table, const std::vector<std::string>& fields,
                                   const Value* row, std::size_t number);

/// `err::internalError` when a copy does not hold what it is a copy of.
void requireSame(const std::string& table, const TableDigest& original, const TableDigest& copy);

/// Whether an error is about the values of one row, and others can be written all the same.
[[nodiscard]] bool isAboutRow(const Error& error);

}  // namespace voxa
