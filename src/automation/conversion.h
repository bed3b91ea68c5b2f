#pragma once

#include <oaidl.h>

#include <cstdint>
#include <string>

#include "platform/variant.h"

namespace voxa::automation {

/// Whether a value can be stored in the variable: it is a variant, or has a type that values can be converted
/// to.
[[nodiscard]] bool canHoldValue(const VARIANT& variable);
/// Copies the value into the variable, converted to the variable's own type if it has one. Fails when that
/// type cannot hold the value.
[[nodiscard]] HRESULT store(VARIANT& variable, const VARIANT& value);

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
