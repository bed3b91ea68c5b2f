#include "field_object.h"
#include "open_rows.h"
#include "platform/text.h"

namespace voxa::automation {

namespace {

[[noreturn]] void refuseDefinition() {
  throw Error(err::dbInvalidOperation, "The definition of a column of rows cannot be changed");
}

/// A part of a text or of bytes: `count` characters or bytes from the one at `from` on.
VARIANT partOf(const Value& value, long from, long count) {
  if (from < 0 || count < 0) throw Error(err::dbInvalidArgument, "A part begins at 0 or behind");
  if (const auto* bytes = std::get_if<Bytes>(&value.data())) {
    const std::size_t begin = std::min(static_cast<std::size_t>(from), bytes->data.size());
    return toVariant(Bytes{bytes->data.substr(begin, static_cast<std::size_t>(count))});
  }
  OwnVariant whole(toVariant(value));
  const auto length = static_cast<long>(::SysStringLen(whole->bstrVal));
  const long begin = std::min(from, length);
  VARIANT part;
  ::VariantInit(&part);
  part.bstrVal =
      ::SysAllocStringLen(whole->bstrVal + begin, static_cast<UINT>(std::min(count, length - begin)));
  if (part.bstrVal == nullptr) throw Error(err::outOfMemory, "Out of memory");
  part.vt = VT_BSTR;
  return part;
}

class RowField final : public FieldObject {
 public:
  RowField(std::shared_ptr<OpenRows> rows, std::size_t index) : rows_(std::move(rows)), index_(index) {}

  STDMETHODIMP get_Value(VARIANT* value) override {
    return give(value, [&] { return ColumnValue{rows().get(index_), definition().type}; });
  }
  STDMETHODIMP put_Value(VARIANT value) override {
    return call([&] { rows().set(index_, fromVariant(value)); });
  }
  STDMETHODIMP get_ForeignName(BSTR* name) override {
    return give(name, [] { return std::string(); });
  }
  STDMETHODIMP get_OrdinalPosition(short* position) override {
    return give(position, [&] { return static_cast<std::int16_t>(index_); });
  }
  STDMETHODIMP get_SourceField(BSTR* field) override {
    return give(field, [&] { return rows().source(index_).field; });
  }
  STDMETHODIMP get_SourceTable(BSTR* table) override {
    return give(table, [&] { return rows().source(index_).table; });
  }
  STDMETHODIMP get_DataUpdatable(VARIANT_BOOL* updatable) override {
    return give(updatable, [&] {
      return rows().updatable() && !rows().source(index_).field.empty() && !definition().autoIncrement;
    });
  }
  STDMETHODIMP get_FieldSize(long* size) override {
    return give(size, [&] {
      const Value value = rows().get(index_);
      if (const auto* bytes = std::get_if<Bytes>(&value.data()))
        return static_cast<std::int32_t>(bytes->data.size());
      return static_cast<std::int32_t>(value.isText() ? lengthInCharacters(value.toText()) : 0);
    });
  }
  STDMETHODIMP GetChunk(long offset, long bytes, VARIANT* part) override {
    if (part == nullptr) return E_POINTER;
    ::VariantInit(part);
    return call([&] {
      requireLong();
      const Value value = rows().get(index_);
      *part = value.isNull() ? toVariant(value) : partOf(value, offset, bytes);
    });
  }
  STDMETHODIMP AppendChunk(VARIANT value) override {
    return call([&] {
      requireLong();
      rows_->append(index_, fromVariant(value));
    });
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
  [[nodiscard]] Recordset& rows() const { return rows_->get(); }
  [[nodiscard]] const FieldDef& definition() const override { return rows().field(index_); }
  void requireLong() const {
    if (definition().type == DataType::Memo || definition().type == DataType::LongBinary) return;
    throw Error(err::dbInvalidFieldType,
                "Parts are those of a memo or a long binary field, which '" + definition().name + "' is not");
  }

  std::shared_ptr<OpenRows> rows_;
  std::size_t index_;
};

}  // namespace

std::int32_t sizeOfField(const FieldDef& field) {
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
    case DataType::Binary:
      return field.size;
    case DataType::Memo:
    case DataType::LongBinary:
      break;
  }
  return 0;
}

::IField* makeRowField(std::shared_ptr<OpenRows> rows, std::size_t index) {
  return new RowField(std::move(rows), index);
}

}  // namespace voxa::automation
