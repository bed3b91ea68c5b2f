#include "field_object.h"

namespace voxa::automation {

namespace {

// This identifies the library's own objects (objectBehind).
constexpr GUID fieldId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x11}};

/// A default value may be given as the expression that it is for others: a text in quotes, a moment between
/// #.
Value literalOf(const Value& given) {
  if (!given.isText()) return given;
  const std::string text = given.toText();
  return text.empty() ? Value() : Value(literalText(text));
}

[[noreturn]] Value noRows() {
  throw Error(err::dbInvalidOperation, "A column of a definition has no value");
}

class DefinedFieldObject final : public FieldObject {
 public:
  DefinedFieldObject(DefinedField field, FieldChanged changed)
      : field_(std::move(field)), changed_(std::move(changed)) {}

  [[nodiscard]] const DefinedField& field() const { return field_; }
  void tell(FieldChanged changed) { changed_ = std::move(changed); }

  STDMETHODIMP get_Value(VARIANT* value) override { return give(value, noRows); }
  STDMETHODIMP put_Value(VARIANT) override {
    return call([] { (void)noRows(); });
  }
  STDMETHODIMP get_Size(long* size) override {
    return give(size, [&] { return std::int32_t{field_.definition.size}; });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return change([&](FieldDef& field) { field.name = fromBstr(name); });
  }
  STDMETHODIMP put_Type(short type) override {
    return change([&](FieldDef& field) { field.type = dataType(type); });
  }
  STDMETHODIMP put_Size(long size) override {
    return change([&](FieldDef& field) { field.size = static_cast<int>(size); });
  }
  STDMETHODIMP put_Required(VARIANT_BOOL required) override {
    return change([&](FieldDef& field) { field.required = required != 0; });
  }
  STDMETHODIMP put_AllowZeroLength(VARIANT_BOOL allowed) override {
    return change([&](FieldDef& field) { field.allowZeroLength = allowed != 0; });
  }
  STDMETHODIMP put_DefaultValue(VARIANT value) override {
    return change([&](FieldDef& field) { field.defaultValue = literalOf(fromVariant(value)); });
  }
  STDMETHODIMP put_ValidationRule(BSTR rule) override {
    return change([&](FieldDef& field) { field.validationRule = fromBstr(rule); });
  }
  STDMETHODIMP put_Attributes(long attributes) override {
    return change([&](FieldDef& field) { field.autoIncrement = (attributes & autoIncrementAttribute) != 0; });
  }
  STDMETHODIMP get_ForeignName(BSTR* name) override {
    return give(name, [&] { return field_.foreignName; });
  }
  STDMETHODIMP put_ForeignName(BSTR name) override {
    return call([&] {
      if (changed_) changed_(field_.definition);
      field_.foreignName = fromBstr(name);
    });
  }
  STDMETHODIMP get_OrdinalPosition(short* position) override {
    return give(position, [&] { return static_cast<std::int16_t>(field_.position); });
  }
  STDMETHODIMP get_SourceField(BSTR* name) override {
    return give(name, [&] { return field_.definition.name; });
  }
  STDMETHODIMP get_SourceTable(BSTR* name) override {
    return give(name, [&] { return field_.table; });
  }
  STDMETHODIMP get_DataUpdatable(VARIANT_BOOL* updatable) override {
    return give(updatable, [] { return false; });
  }
  STDMETHODIMP get_FieldSize(long* size) override {
    return give(size, [] { return noRows().toInt32(); });
  }
  STDMETHODIMP GetChunk(long, long, VARIANT* part) override { return give(part, noRows); }
  STDMETHODIMP AppendChunk(VARIANT) override {
    return call([] { (void)noRows(); });
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == fieldId ? this : nullptr; }
  [[nodiscard]] const FieldDef& definition() const override { return field_.definition; }

  template <typename Change>
  HRESULT change(Change&& body) {
    return call([&] {
      FieldDef definition = field_.definition;
      body(definition);
      if (changed_) changed_(definition);
      field_.definition = std::move(definition);
    });
  }

  DefinedField field_;
  FieldChanged changed_;
};

DefinedFieldObject& behind(IUnknown* object) {
  return *static_cast<DefinedFieldObject*>(objectBehind(object, fieldId, "column"));
}

}  // namespace

DataType dataType(short type) {
  for (const DataType known : {DataType::Boolean, DataType::Byte, DataType::Integer, DataType::Long,
                               DataType::Currency, DataType::Single, DataType::Double, DataType::Date,
                               DataType::Text, DataType::Memo, DataType::Binary, DataType::LongBinary}) {
    if (static_cast<short>(known) == type) return known;
  }
  throw Error(err::dbInvalidArgument, "There is no field type " + std::to_string(type));
}

::IField* makeDefinedField(DefinedField field, FieldChanged changed) {
  return new DefinedFieldObject(std::move(field), std::move(changed));
}

void refuseFixed(const char* what, const std::string& name) {
  throw Error(err::dbInvalidOperation,
              std::string("The ") + what + " '" + name + "' is in the file already and cannot be changed");
}

void refuseChange(const FieldDef& definition) {
  refuseFixed("column", definition.name);
}

const DefinedField& fieldBehind(IUnknown* object) {
  return behind(object).field();
}

void tellChanges(IUnknown* field, FieldChanged changed) {
  behind(field).tell(std::move(changed));
}

::IFields* nameCollection(std::function<std::size_t()> count, std::function<DefinedField(std::size_t)> at,
                          std::function<void(const DefinedField&)> append) {
  return makeCollection<::IFields, ::IField>({
      .count = count,
      .item = [at](std::size_t i) -> IDispatch* { return makeDefinedField(at(i), refuseChange); },
      .find =
          [count, at](const std::string& name) {
            return findName(name, count(), [&](std::size_t i) { return at(i).definition.name; });
          },
      .append = [append](IDispatch* object) { append(fieldBehind(object)); },
      .remove = nullptr,
  });
}

}  // namespace voxa::automation
