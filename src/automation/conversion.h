#pragma once

#include <oaidl.h>

#include <cstdint>
#include <string>

#include "platform/value.h"

namespace voxa::automation {

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
/// Whether a value can be stored in the variable: it is a variant, or has a type that values can be converted
/// to.
[[nodiscard]] bool canHoldValue(const VARIANT& variable);
/// Copies the value into the variable, converted to the variable's own type if it has one. Fails when that
/// type cannot hold the value.
[[nodiscard]] HRESULT store(VARIANT& variable, const VARIANT& value);

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

// Results in the form in which a member hands them out.
inline void put(short* out, std::int16_t value) {
  *out = value;
}
inline void put(long* out, std::int32_t value) {
  *out = value;
}
inline void put(float* out, float value) {
  *out = value;
}
inline void put(VARIANT_BOOL* out, bool value) {
  *out = value ? VARIANT_TRUE : VARIANT_FALSE;
}
inline void put(BSTR* out, const std::string& value) {
  *out = toBstr(value);
}
inline void put(VARIANT* out, const Value& value) {
  *out = toVariant(value);
}
inline void put(VARIANT* out, const ColumnValue& value) {
  *out = toVariant(value);
}

/// An optional boolean that is passed by reference. When it is missing, it is false, and nothing is written
/// back.
class Flag {
 public:
  explicit Flag(VARIANT_BOOL* target) : target_(target), value_(target != nullptr && *target != 0) {}
  ~Flag() {
    if (target_ != nullptr) put(target_, value_);
  }
  Flag(const Flag&) = delete;
  Flag& operator=(const Flag&) = delete;
  [[nodiscard]] bool& value() { return value_; }

 private:
  VARIANT_BOOL* target_;
  bool value_;
};

}  // namespace voxa::automation
