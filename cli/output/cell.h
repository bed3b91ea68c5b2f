#pragma once

#include <concepts>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/value.h"

namespace voxa::cli {

/// What a list or table has in one place: a value, several, or a text for a person beside what a program
/// gets. Programs get numbers, flags and arrays, and moments in ISO form: "2026-12-24", with a time
/// "2026-12-24T18:05:00". People get yes and no, dates as dd/mm/yyyy, and several values with commas.
class Cell {
 public:
  Cell() = default;  ///< Null
  template <typename T>
  requires(std::convertible_to<T, Value> && !std::same_as<std::remove_cvref_t<T>, Cell>)
      // NOLINTNEXTLINE(google-explicit-constructor,bugprone-forwarding-reference-overload)
      Cell(T&& value)
      : value_(std::forward<T>(value)) {}
  Cell(const std::vector<std::string>& values);  // NOLINT(google-explicit-constructor)
  Cell(const std::vector<Value>& values);        // NOLINT(google-explicit-constructor)
  /// A text for a person, and what programs get.
  Cell(std::string text, const nlohmann::ordered_json& forPrograms);
  /// A moment that is always shown with its hour and minute, for programs with its second too.
  [[nodiscard]] static Cell moment(DateTime moment);

  /// For a person. Null and a list of nothing are "-", bytes in base 16.
  [[nodiscard]] std::string text() const;
  /// For a field of a CSV file: as for a person, moments in ISO form, Null and a list of nothing are empty.
  [[nodiscard]] std::string field() const;
  [[nodiscard]] nlohmann::ordered_json json() const;
  /// Puts a value in, and keeps the memory of the one that was there.
  void set(const Value& value) { value_ = value, forPrograms_.reset(); }

  [[nodiscard]] bool isText() const { return value_.isText(); }
  /// A number for a person, which stands at the right edge of its column.
  [[nodiscard]] bool isNumber() const;
  [[nodiscard]] bool isTrue() const { return value_ == Value(true); }

 private:
  Value value_;                                                // what a person gets
  std::shared_ptr<const nlohmann::ordered_json> forPrograms_;  // nullptr: the value
};

/// A moment in ISO form: "2026-12-24" when it is the beginning of a day, "18:05:00" of day 0, else
/// "2026-12-24T18:05:00".
[[nodiscard]] std::string isoText(DateTime moment);

}  // namespace voxa::cli
