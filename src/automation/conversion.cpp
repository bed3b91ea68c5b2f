#include "conversion.h"

#include <cstring>

#include "platform/error.h"

namespace voxa::automation {

namespace {

/// Size in bytes of a variable of a type that numbers, dates and booleans can be converted to; 0 for other
/// types.
std::size_t sizeOfValue(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    case VT_DECIMAL:
      return sizeof(DECIMAL);
    default:
      return 0;
  }
}

}  // namespace

bool canHoldValue(const VARIANT& variable) {
  if ((variable.vt & VT_BYREF) == 0) return true;
  const auto type = static_cast<VARTYPE>(variable.vt & ~VT_BYREF);
  return variable.byref != nullptr && (type == VT_BSTR || sizeOfValue(type) != 0);
}

HRESULT store(VARIANT& variable, const VARIANT& value) {
  if ((variable.vt & VT_BYREF) == 0) return ::VariantCopy(&variable, const_cast<VARIANT*>(&value));
  if (!canHoldValue(variable)) return DISP_E_TYPEMISMATCH;
  const auto type = static_cast<VARTYPE>(variable.vt & ~VT_BYREF);
  OwnVariant typed;
  const HRESULT result = ::VariantChangeType(&typed, const_cast<VARIANT*>(&value), 0, type);
  if (FAILED(result)) return result;
  if (type == VT_BSTR) {
    const BSTR text = typed->bstrVal;
    return ::SysReAllocStringLen(variable.pbstrVal, text, ::SysStringLen(text)) ? S_OK : E_OUTOFMEMORY;
  }
  if (type == VT_DECIMAL) {
    // In a variant its first two bytes hold the type.
    typed->vt = VT_EMPTY;
    *variable.pdecVal = typed->decVal;
  } else {
    std::memcpy(variable.byref, &typed->llVal, sizeOfValue(type));
  }
  return S_OK;
}

}  // namespace voxa::automation
