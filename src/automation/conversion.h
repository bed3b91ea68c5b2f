#pragma once

#include <oaidl.h>

#include <cstdint>
#include <string>

#include "platform/value.h"

namespace voxa::automation {

/// UTF-16 to UTF-8; a null pointer is the empty text. Half a character and the character 0, at which file
/// names and statements would end, raise `err::invalidArgument`: no text is silently cut or changed.
[[nodiscard]] std::string fromBstr(BSTR text);
/// UTF-8 to a new UTF-16 text, which the caller frees. Bytes that are no UTF-8 raise `err::invalidArgument`.
[[nodiscard]] BSTR toBstr(const std::string& text);

/// A variant as a value; Empty and Null are Null, an object stands for its default property, a reference for
/// what it refers to. Arrays and other types raise `err::typeMismatch`.
[[nodiscard]] Value fromVariant(const VARIANT& variant);
/// A value as a new variant, which the caller clears.
[[nodiscard]] VARIANT toVariant(const Value& value);

/// Whether an optional argument was left out.
[[nodiscard]] bool isMissing(const VARIANT& variant);

/// What an argument stands for: the caller's variant behind references to variants, else the argument itself,
/// which may be a reference to a variable with a type of its own.
[[nodiscard]] VARIANT& variableBehind(VARIANT& argument);
/// Whether a value can go into the variable: a variant, or one of a type that values can be converted to.
[[nodiscard]] bool canHoldValue(const VARIANT& variable);
/// Puts a copy of the value into the variable, in the variable's own type if it has one; fails when that type
/// cannot hold it.
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

// Results, as a member hands them out.
inline void put(short* out, std::int16_t value) {
  *out = value;
}
inline void put(long* out, std::int32_t value) {
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

/// A boolean that is passed by reference and may be missing: false then, and nothing is written back.
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
