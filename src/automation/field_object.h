#pragma once

#include "data_objects.h"

namespace voxa::automation {

/// Size in bytes of a value of a field's type, as callers know it; for a text its number of characters.
[[nodiscard]] std::int32_t sizeOfField(const FieldDef& field);

/// What all columns tell of themselves.
class FieldObject : public Object<::IField> {
 public:
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return definition().name; });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [&] { return static_cast<std::int16_t>(definition().type); });
  }
  STDMETHODIMP get_Size(long* size) override {
    return give(size, [&] { return sizeOfField(definition()); });
  }
  STDMETHODIMP get_Required(VARIANT_BOOL* required) override {
    return give(required, [&] { return definition().required; });
  }
  STDMETHODIMP get_AllowZeroLength(VARIANT_BOOL* allowed) override {
    return give(allowed, [&] { return definition().allowZeroLength; });
  }
  STDMETHODIMP get_DefaultValue(VARIANT* value) override {
    // An empty text alone would mean that there is none.
    return give(value, [&] {
      const Value& set = definition().defaultValue;
      return set == Value("") ? Value("\"\"") : set;
    });
  }
  STDMETHODIMP get_ValidationRule(BSTR* rule) override {
    return give(rule, [&] { return definition().validationRule; });
  }
  STDMETHODIMP get_Attributes(long* attributes) override {
    return give(attributes,
                [&] { return std::int32_t{definition().autoIncrement ? autoIncrementAttribute : 0}; });
  }
  STDMETHODIMP get_ValidationText(BSTR* text) override {
    return give(text, [] { return std::string(); });
  }
  STDMETHODIMP get_CollatingOrder(long* order) override {
    return give(order, [] { return generalOrder; });
  }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return give(properties, [&] { return makeProperties(this); });
  }

 protected:
  [[nodiscard]] virtual const FieldDef& definition() const = 0;
};

}  // namespace voxa::automation
