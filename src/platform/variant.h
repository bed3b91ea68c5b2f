#pragma once

// Windows only: values as automation has them. They are needed below, where objects of others are called, and
// above, where ours are.

#include <oaidl.h>

#include <string>

#include "platform/value.h"

namespace voxa {

/// UTF-16 to UTF-8. A null pointer is the empty text. Half a character raises `err::invalidArgument`, and so
/// does the character 0, at which file names and statements would end: no text is silently cut or changed.
[[nodiscard]] std::string fromBstr(BSTR text);
/// UTF-8 to a new UTF-16 text, which the caller frees. Bytes that are no UTF-8 raise `err::invalidArgument`.
[[nodiscard]] BSTR toBstr(const std::string& text);

/// A variant as a value. Empty and Null are Null. An object stands for its default property, a reference for
/// what it refers to. Arrays and other types raise `err::typeMismatch`.
[[nodiscard]] Value fromVariant(const VARIANT& variant);
/// A value as a new variant, which the caller clears.
[[nodiscard]] VARIANT toVariant(const Value& value);
/// A value of a column: an amount, or a number of 32 bits, where the column has that type.
struct ColumnValue {
  Value value;
  DataType type;
};
[[nodiscard]] VARIANT toVariant(const ColumnValue& column);

/// Whether the caller left out an optional argument.
[[nodiscard]] bool isMissing(const VARIANT& variant);

/// The variable behind an argument. Where references lead to a variant of the caller's, it is that variant.
/// Else it is the argument itself, which may be a reference to a variable of another type.
[[nodiscard]] VARIANT& variableBehind(VARIANT& argument);
/// A variant that is cleared at the end of its life.
class OwnVariant {
 public:
  OwnVariant() { ::VariantInit(&value_); }
  explicit OwnVariant(const VARIANT& taken) : value_(taken) {}  ///< takes over what it holds
  ~OwnVariant() { (void)::VariantClear(&value_); }
  OwnVariant(OwnVariant&& other) noexcept : value_(other.value_) { ::VariantInit(&other.value_); }
  OwnVariant(const OwnVariant&) = delete;
  OwnVariant& operator=(const OwnVariant&) = delete;
  [[nodiscard]] VARIANT* operator&() { return &value_; }  // NOLINT(google-runtime-operator)
  [[nodiscard]] VARIANT* operator->() { return &value_; }
  [[nodiscard]] VARIANT& operator*() { return value_; }
  [[nodiscard]] const VARIANT& operator*() const { return value_; }

 private:
  VARIANT value_;
};

}  // namespace voxa
