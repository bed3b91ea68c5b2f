#include <wrl/client.h>

#include "data_objects.h"

namespace voxa::automation {

namespace {

using Microsoft::WRL::ComPtr;

class RecordsetObject;

/// Size in bytes of a value of a type, as callers know it; for a text its number of characters.
long sizeOf(const FieldDef& field) {
  switch (field.type) {
    case DataType::Boolean:
    case DataType::Byte:
      return 1;
    case DataType::Integer:
      return 2;
    case DataType::Long:
    case DataType::Single:
      return 4;
    case DataType::Currency:
    case DataType::Double:
    case DataType::Date:
      return 8;
    case DataType::Text:
      return field.size;
    case DataType::Memo:
      break;
  }
  return 0;
}

[[noreturn]] void refuseDefinition() {
  throw Error(err::dbInvalidOperation, "The definition of a column of rows cannot be changed");
}

/// A column of rows.
class RowField final : public Object<::IField> {
 public:
  RowField(RecordsetObject* rows, std::size_t index) : rows_(rows), index_(index) {}

  STDMETHODIMP get_Value(VARIANT* value) override {
    return give(value, [&] { return rows().get(index_); });
  }
  STDMETHODIMP put_Value(VARIANT value) override {
    return call([&] { rows().set(index_, fromVariant(value)); });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return definition().name; });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [&] { return static_cast<std::int16_t>(definition().type); });
  }
  STDMETHODIMP get_Size(long* size) override {
    return give(size, [&] { return static_cast<std::int32_t>(sizeOf(definition())); });
  }
  STDMETHODIMP get_Required(VARIANT_BOOL* required) override {
    return give(required, [&] { return definition().required; });
  }
  STDMETHODIMP get_AllowZeroLength(VARIANT_BOOL* allowed) override {
    return give(allowed, [&] { return definition().allowZeroLength; });
  }
  STDMETHODIMP get_DefaultValue(VARIANT* value) override {
    return give(value, [&] { return definition().defaultValue; });
  }
  STDMETHODIMP get_ValidationRule(BSTR* rule) override {
    return give(rule, [&] { return definition().validationRule; });
  }
  STDMETHODIMP get_Attributes(long* attributes) override {
    return give(attributes,
                [&] { return std::int32_t{definition().autoIncrement ? autoIncrementAttribute : 0}; });
  }
  STDMETHODIMP get_ForeignName(BSTR* name) override {
    return give(name, [] { return std::string(); });
  }
  STDMETHODIMP put_Name(BSTR) override { return call(refuseDefinition); }
  STDMETHODIMP put_Type(short) override { return call(refuseDefinition); }
  STDMETHODIMP put_Size(long) override { return call(refuseDefinition); }
  STDMETHODIMP put_Required(VARIANT_BOOL) override { return call(refuseDefinition); }
  STDMETHODIMP put_AllowZeroLength(VARIANT_BOOL) override { return call(refuseDefinition); }
  STDMETHODIMP put_DefaultValue(VARIANT) override { return call(refuseDefinition); }
  STDMETHODIMP put_ValidationRule(BSTR) override { return call(refuseDefinition); }
  STDMETHODIMP put_Attributes(long) override { return call(refuseDefinition); }
  STDMETHODIMP put_ForeignName(BSTR) override { return call(refuseDefinition); }

 private:
  [[nodiscard]] Recordset& rows() const;
  [[nodiscard]] const FieldDef& definition() const { return rows().field(index_); }

  ComPtr<RecordsetObject> rows_;
  std::size_t index_;
};

class RecordsetObject final : public Object<::IRecordset> {
 public:
  explicit RecordsetObject(std::unique_ptr<Recordset> rows) : rows_(std::move(rows)) {}

  [[nodiscard]] Recordset& rows() const {
    if (rows_ == nullptr) throw Error(err::dbInvalidObject, "The rows are closed");
    return *rows_;
  }

  STDMETHODIMP get_Fields(::ICollection** fields) override {
    return give(fields, [&] {
      const ComPtr<RecordsetObject> self(this);
      return makeCollection({
          .count = [self] { return self->rows().fieldCount(); },
          .item = [self](std::size_t i) -> IDispatch* { return new RowField(self.Get(), i); },
          .find = [self](const std::string& name) { return self->rows().fieldIndex(name); },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP get_BOF(VARIANT_BOOL* value) override {
    return give(value, [&] { return rows().bof(); });
  }
  STDMETHODIMP get_EOF(VARIANT_BOOL* value) override {
    return give(value, [&] { return rows().eof(); });
  }
  STDMETHODIMP MoveFirst() override {
    return call([&] { rows().moveFirst(); });
  }
  STDMETHODIMP MoveNext() override {
    return call([&] { rows().moveNext(); });
  }
  STDMETHODIMP MoveLast() override {
    return call([&] { rows().moveLast(); });
  }
  STDMETHODIMP MovePrevious() override {
    return call([&] { rows().movePrevious(); });
  }
  STDMETHODIMP Edit() override {
    return call([&] { rows().edit(); });
  }
  STDMETHODIMP AddNew() override {
    return call([&] { rows().addNew(); });
  }
  STDMETHODIMP Update() override {
    return call([&] { rows().update(); });
  }
  STDMETHODIMP CancelUpdate() override {
    return call([&] { rows().cancelUpdate(); });
  }
  STDMETHODIMP Delete() override {
    return call([&] { rows().remove(); });
  }
  STDMETHODIMP FindFirst(BSTR criteria) override {
    return call([&] { noMatch_ = !rows().findFirst(fromBstr(criteria)); });
  }
  STDMETHODIMP FindNext(BSTR criteria) override {
    return call([&] { noMatch_ = !rows().findNext(fromBstr(criteria)); });
  }
  STDMETHODIMP get_NoMatch(VARIANT_BOOL* value) override {
    return give(value, [&] { return noMatch_; });
  }
  STDMETHODIMP get_RecordCount(long* count) override {
    return give(count, [&] { return static_cast<std::int32_t>(rows().recordCount()); });
  }
  STDMETHODIMP Close() override {
    return call([&] { rows_.reset(); });
  }

 private:
  std::unique_ptr<Recordset> rows_;
  bool noMatch_ = false;
};

Recordset& RowField::rows() const {
  return rows_->rows();
}

}  // namespace

::IRecordset* makeRecordset(std::unique_ptr<Recordset> rows) {
  return new RecordsetObject(std::move(rows));
}

}  // namespace voxa::automation
