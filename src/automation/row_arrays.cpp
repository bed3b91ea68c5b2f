#include "row_arrays.h"

#include <cstring>

#include "conversion.h"
#include "platform/error.h"

namespace voxa::automation {

namespace {

void require(HRESULT result) {
  if (FAILED(result)) throw Error(err::outOfMemory, "Out of memory");
}

}  // namespace

VARIANT toVariant(const BookmarkBytes& bookmark) {
  return toVariant(Value(Bytes{std::string(reinterpret_cast<const char*>(&bookmark), sizeof bookmark)}));
}

BookmarkBytes bookmarkFrom(const VARIANT& variant) {
  OwnVariant own;
  const HRESULT copied = ::VariantCopyInd(&own, &variableBehind(const_cast<VARIANT&>(variant)));
  const void* bytes = nullptr;
  std::size_t size = 0;
  if (SUCCEEDED(copied) && own->vt == (VT_ARRAY | VT_UI1) && ::SafeArrayGetDim(own->parray) == 1) {
    bytes = own->parray->pvData;
    size = own->parray->rgsabound[0].cElements;
  } else if (SUCCEEDED(copied) && own->vt == VT_BSTR) {
    bytes = own->bstrVal;
    size = ::SysStringByteLen(own->bstrVal);
  }
  BookmarkBytes out;
  if (bytes == nullptr || size != sizeof out) throw Error(err::dbNotABookmark, "This is no bookmark");
  std::memcpy(&out, bytes, sizeof out);
  return out;
}

VARIANT toVariant(const RowArray& array) {
  const auto& values = array.values;
  const auto fields = static_cast<ULONG>(values.size());
  const auto rows = static_cast<ULONG>(values.empty() ? 0 : values.front().size());
  SAFEARRAYBOUND bounds[] = {{fields, 0}, {rows, 0}};
  OwnVariant out;
  out->parray = ::SafeArrayCreate(VT_VARIANT, 2, bounds);
  require(out->parray == nullptr ? E_OUTOFMEMORY : S_OK);
  out->vt = VT_ARRAY | VT_VARIANT;
  // The first dimension is the one whose neighbours lie side by side.
  auto* const places = static_cast<VARIANT*>(out->parray->pvData);
  for (ULONG field = 0; field < fields; ++field) {
    for (ULONG row = 0; row < rows; ++row)
      places[row * fields + field] = toVariant(ColumnValue{values[field][row], array.types[field]});
  }
  VARIANT result = *out;
  ::VariantInit(&out);
  return result;
}

}  // namespace voxa::automation
