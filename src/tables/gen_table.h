#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {

class Database;
class ITable;
class TableContext;
class Recordset;
struct TableDef;

/// The work that all table classes share: building the table, finding a free number, finding rows, and the
/// to-download flags. Each table object has one. It works with that object's name and database.
///
/// A FlagD column is a boolean column whose name ends in "FlagD", in any case. True means that the row, or
/// that part of it, must still be sent to the controllers.
///
/// Every member but appendField, definition, openWhere and currentValues shows its failures and raises none.
class GenTable {
 public:
  GenTable(TableContext& context, ITable& table);
  ~GenTable();
  GenTable(const GenTable&) = delete;
  GenTable& operator=(const GenTable&) = delete;

  /// Adds a column to the definition that is being built (only inside createFields).
  /// size: 0 for the type's default. defaultValue: Null for none.
  void appendField(const std::string& fldName, DataType dataType, int size, const Value& defaultValue);

  /// The first free positive value of an integer column among the rows that satisfy `condition` ("" for all).
  /// -1 when there is none, and after a failure, which was shown.
  std::int16_t getFreeValue(const std::string& field, const std::string& condition);
  /// Sets the FlagD columns of every row that satisfies `condition` ("" for all). A row that fails shows its
  /// error and ends this: the rows before it have the new value, those behind it the old one.
  std::int16_t setTableFlagsD(bool value, const std::string& condition);
  /// Sets the FlagD columns of the current row. A row that already has the value is not written.
  std::int16_t setFlagsD(bool value);
  /// Null columns of the current row become "" or 0.
  std::int16_t fillNulls();
  /// Whether a FlagD column of the current row is set.
  bool getFlagDSetFound();
  /// `Id` of the first row that satisfies `condition`; -1, without a message, when there is none.
  std::int16_t getId(const std::string& condition);

  // For the table classes only.

  /// The rows that the last query opened, at the current row; null before the first query.
  [[nodiscard]] Recordset* currentRecordset() const { return rows_.get(); }
  void currentRecordset(std::unique_ptr<Recordset> rows);
  /// The definition that buildTable uses. A failure of the owner's createFields or createIndexes is raised.
  [[nodiscard]] TableDef definition();
  void buildTable();
  /// Opens the rows that satisfy `condition`. Returns true when there is NO such row. Failures are raised.
  bool openWhere(const std::string& condition);
  std::int16_t fillTableNulls();  ///< for every row, in the way of setTableFlagsD

  /// The values of the current row. clearFlagsOfSent compares them later.
  [[nodiscard]] std::vector<Value> currentValues() const;
  /// Clears the flags of the row that satisfies `condition`. sent: its values when it was sent. A row that
  /// somebody has changed since keeps its flags, since the controllers do not hold the change.
  std::int16_t clearFlagsOfSent(const std::string& condition, const std::vector<Value>& sent);

 private:
  [[nodiscard]] Database& database() const;
  [[nodiscard]] Recordset& current() const;  // raises `err::objectNotSet` before the first query
  [[nodiscard]] std::string methodText(const char* member) const;
  std::int16_t changeRows(const std::function<std::int16_t()>& changeAll);
  std::int16_t changeEach(const std::string& source, const std::function<std::int16_t()>& changeRow);
  std::optional<std::int16_t> setFlagsAtOnce(bool value);
  void writeFlags(bool value);

  TableContext& context_;
  ITable& table_;
  TableDef* building_ = nullptr;
  std::unique_ptr<Recordset> rows_;
};

}  // namespace voxa
