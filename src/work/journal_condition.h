#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"

namespace voxa {

/// What rows of the journal have to be, as the part of a statement behind WHERE. Conditions are met together.
class JournalCondition {
 public:
  /// The condition of a text with "?" where the value stands. type: of the value, in the language:
  /// "datetime".
  void add(std::string_view condition, std::string_view type, const Value& value);
  void add(std::string_view condition);
  /// A column that is one of these values, of which there is at least one.
  void addAnyOf(const std::string& column, std::string_view type, const std::vector<Value>& values);

  /// Declares a value that a condition needs besides: its name there.
  std::string declare(std::string_view type, const Value& value);

  /// A statement on the table. columns: what stands behind SELECT. order: with ORDER BY in front, or "".
  [[nodiscard]] std::string statement(const std::string& columns, const std::string& order = "") const;
  /// A statement that changes rows of it. what: stands in front, "delete from Journal".
  [[nodiscard]] std::string change(const std::string& what) const;
  /// Whether an index that a journal can have finds the rows.
  [[nodiscard]] bool isIndexed() const;
  [[nodiscard]] const Database::Parameters& values() const { return values_; }

 private:
  std::string declared_;
  std::string conditions_;
  Database::Parameters values_;
};

}  // namespace voxa
