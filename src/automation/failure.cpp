#include "failure.h"

#include "conversion.h"
#include "platform/error.h"
#include "type_information.h"

namespace voxa::automation {

namespace {

constexpr int runTimeErrors = static_cast<int>(0x800A0000);
constexpr int greatestNumber = 0xFFFF;

void setErrorObject(REFIID interfaceId, const ErrorInfo& error) {
  ICreateErrorInfo* created = nullptr;
  if (FAILED(::CreateErrorInfo(&created))) return;
  const BSTR description = toBstr(error.description);
  const BSTR source = toBstr("KORVA." + className(interfaceId));
  (void)created->SetGUID(interfaceId);
  (void)created->SetDescription(description);
  (void)created->SetSource(source);
  ::SysFreeString(description);
  ::SysFreeString(source);
  IErrorInfo* info = nullptr;
  if (SUCCEEDED(created->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
    (void)::SetErrorInfo(0, info);
    info->Release();
  }
  created->Release();
}

}  // namespace

HRESULT reportCurrentException(REFIID interfaceId) noexcept {
  try {
    ErrorInfo error = describeCurrentException();
    const bool fits = error.number > 0 && error.number <= greatestNumber;
    if (!fits) error.description += " (" + std::to_string(error.number) + ")";
    setErrorObject(interfaceId, error);
    return fits ? runTimeErrors | error.number : E_FAIL;
  } catch (...) {
    return E_OUTOFMEMORY;  // there is no memory even for the message
  }
}

}  // namespace voxa::automation
