#include <cstring>
#include <limits>
#include <memory>

#include "platform/error.h"
#include "platform/variant.h"

namespace voxa {

namespace {

int checkedLength(std::size_t length) {
  if (length <= static_cast<std::size_t>(std::numeric_limits<int>::max())) return static_cast<int>(length);
  throw Error(err::outOfMemory, "The text is too long");
}

void require(HRESULT result, const char* what) {
  if (SUCCEEDED(result)) return;
  if (result == E_OUTOFMEMORY) throw Error(err::outOfMemory, "Out of memory");
  if (result == DISP_E_OVERFLOW) throw Error(err::overflow, std::string("Overflow: ") + what);
  throw Error(err::typeMismatch, std::string("Type mismatch: ") + what);
}

/// Converts the variant to another type.
void change(OwnVariant& variant, VARTYPE type) {
  require(::VariantChangeType(&variant, &variant, 0, type), "the argument has another type");
}

/// The bytes of an array: of bytes, or, as a script has it, of numbers from 0 to 255.
Bytes bytesOf(SAFEARRAY* array) {
  if (array == nullptr || ::SafeArrayGetDim(array) != 1)
    throw Error(err::typeMismatch, "Type mismatch: bytes are an array of one dimension");
  VARTYPE type = VT_EMPTY;
  LONG first = 0;
  LONG last = 0;
  void* data = nullptr;
  require(::SafeArrayGetVartype(array, &type), "the array cannot be read");
  require(::SafeArrayGetLBound(array, 1, &first), "the array cannot be read");
  require(::SafeArrayGetUBound(array, 1, &last), "the array cannot be read");
  if (type != VT_UI1 && type != VT_VARIANT)
    throw Error(err::typeMismatch, "Type mismatch: the array holds no bytes");
  require(::SafeArrayAccessData(array, &data), "the array cannot be read");
  const std::unique_ptr<SAFEARRAY, HRESULT(WINAPI*)(SAFEARRAY*)> access(array, &::SafeArrayUnaccessData);
  const auto count = static_cast<std::size_t>(last - first + 1);
  if (type == VT_UI1) return {std::string(static_cast<const char*>(data), count)};
  Bytes out;
  for (std::size_t i = 0; i < count; ++i) {
    const Value number = fromVariant(static_cast<const VARIANT*>(data)[i]);
    out.data += static_cast<char>(convertForField(number, DataType::Byte, 0).toInt16());
  }
  return out;
}

Value defaultProperty(IDispatch* object) {
  if (object == nullptr) throw Error(err::objectNotSet, "Object variable not set");
  DISPPARAMS none{};
  OwnVariant value;
  require(object->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET | DISPATCH_METHOD,
                         &none, &value, nullptr, nullptr),
          "the object has no default property");
  return fromVariant(*value);
}

}  // namespace

std::string fromBstr(BSTR text) {
  const int length = text == nullptr ? 0 : checkedLength(::SysStringLen(text));
  if (length == 0) return {};
  if (std::wstring_view(text, static_cast<std::size_t>(length)).find(L'\0') != std::wstring_view::npos) {
    throw Error(err::invalidArgument, "The text holds the character 0");
  }
  const int size =
      ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text, length, nullptr, 0, nullptr, nullptr);
  if (size == 0) throw Error(err::invalidArgument, "The text holds half a character");
  std::string out(static_cast<std::size_t>(size), '\0');
  (void)::WideCharToMultiByte(CP_UTF8, 0, text, length, out.data(), size, nullptr, nullptr);
  return out;
}

BSTR toBstr(const std::string& text) {
  const int size = checkedLength(text.size());
  const int length =
      size == 0 ? 0 : ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
  if (size != 0 && length == 0) throw Error(err::invalidArgument, "The text is damaged: it is no UTF-8");
  const BSTR out = ::SysAllocStringLen(nullptr, static_cast<UINT>(length));
  if (out == nullptr) throw Error(err::outOfMemory, "Out of memory");
  if (size != 0) (void)::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, out, length);
  return out;
}

Value fromVariant(const VARIANT& variant) {
  OwnVariant own;
  if (const VARIANT& behind = variableBehind(const_cast<VARIANT&>(variant));
      (behind.vt & VT_BYREF) != 0 && behind.byref == nullptr) {
    throw Error(err::typeMismatch, "Type mismatch: the argument refers to nothing");
  }
  require(::VariantCopyInd(&own, const_cast<VARIANT*>(&variant)), "the argument cannot be read");
  if (own->vt == VT_DISPATCH) return defaultProperty(own->pdispVal);
  if ((own->vt & VT_ARRAY) != 0) return bytesOf(own->parray);
  switch (own->vt) {
    case VT_EMPTY:
    case VT_NULL:
      return {};
    case VT_BOOL:
      return own->boolVal != 0;
    case VT_UI1:
      return static_cast<std::uint8_t>(own->bVal);
    case VT_I2:
      return static_cast<std::int16_t>(own->iVal);
    case VT_I1:
    case VT_UI2:
    case VT_I4:
    case VT_INT:
      change(own, VT_I4);
      return static_cast<std::int32_t>(own->lVal);
    case VT_UI4:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DECIMAL:
      change(own, VT_R8);
      return static_cast<double>(own->dblVal);
    case VT_DATE:
      return DateTime{own->date};
    case VT_BSTR:
      return fromBstr(own->bstrVal);
    default:
      throw Error(err::typeMismatch, "Type mismatch: the argument is no value");
  }
}

VARIANT toVariant(const Value& value) {
  struct Maker {
    VARIANT& out;
    void operator()(std::monostate) const { out.vt = VT_NULL; }
    void operator()(bool v) const {
      out.vt = VT_BOOL;
      out.boolVal = v ? VARIANT_TRUE : VARIANT_FALSE;
    }
    void operator()(std::uint8_t v) const {
      out.vt = VT_UI1;
      out.bVal = v;
    }
    void operator()(std::int16_t v) const {
      out.vt = VT_I2;
      out.iVal = v;
    }
    void operator()(std::int32_t v) const {
      out.vt = VT_I4;
      out.lVal = v;
    }
    void operator()(double v) const {
      out.vt = VT_R8;
      out.dblVal = v;
    }
    void operator()(DateTime v) const {
      out.vt = VT_DATE;
      out.date = v.days;
    }
    void operator()(const std::string& v) const {
      out.bstrVal = toBstr(v);
      out.vt = VT_BSTR;
    }
    void operator()(const Bytes& v) const {
      out.parray = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(checkedLength(v.data.size())));
      if (out.parray == nullptr) throw Error(err::outOfMemory, "Out of memory");
      out.vt = VT_ARRAY | VT_UI1;
      std::memcpy(out.parray->pvData, v.data.data(), v.data.size());
    }
  };
  VARIANT out;
  ::VariantInit(&out);
  std::visit(Maker{out}, value.data());
  return out;
}

VARIANT toVariant(const ColumnValue& column) {
  VARIANT out = toVariant(column.value);
  if (out.vt != VT_R8) return out;
  if (column.type == DataType::Single) {
    out.fltVal = static_cast<float>(out.dblVal);
    out.vt = VT_R4;
  } else if (column.type == DataType::Currency) {
    CY amount{};
    if (FAILED(::VarCyFromR8(out.dblVal, &amount))) throw Error(err::overflow, "Overflow: an amount");
    out.cyVal = amount;
    out.vt = VT_CY;
  }
  return out;
}

bool isMissing(const VARIANT& variant) {
  const VARIANT& inner = variableBehind(const_cast<VARIANT&>(variant));
  return (inner.vt == VT_ERROR && inner.scode == DISP_E_PARAMNOTFOUND) || inner.vt == VT_EMPTY;
}

VARIANT& variableBehind(VARIANT& argument) {
  VARIANT* variable = &argument;
  while (variable->vt == (VT_BYREF | VT_VARIANT) && variable->pvarVal != nullptr) {
    variable = variable->pvarVal;
  }
  return *variable;
}

}  // namespace voxa
