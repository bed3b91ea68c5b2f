// What the parts of the early-bound client share.
#pragma once

#include <windows.h>

#include <cguid.h>
#include <wrl/client.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <vector>

#include "korva.h"

using Microsoft::WRL::ComPtr;

inline std::atomic<int> failures = 0;

inline void check(bool condition, const char* what) {
  if (condition) return;
  std::printf("FAILED: %s\n", what);
  ++failures;
}

/// A text that is freed.
class Text {
 public:
  explicit Text(const wchar_t* text = nullptr) : text_(::SysAllocString(text)) {}
  ~Text() { ::SysFreeString(text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  operator BSTR() const { return text_; }
  BSTR* out() {
    ::SysFreeString(text_);
    text_ = nullptr;
    return &text_;
  }
  [[nodiscard]] std::wstring value() const { return text_ == nullptr ? std::wstring() : std::wstring(text_); }

 private:
  BSTR text_;
};

/// Whether a call failed with a run-time error number, and the error object tells it in words.
inline bool failsWith(HRESULT result, int number) {
  ComPtr<IErrorInfo> info;
  Text words;
  return result == static_cast<HRESULT>(0x800A0000 | number) && ::GetErrorInfo(0, &info) == S_OK &&
         SUCCEEDED(info->GetDescription(words.out())) && !words.value().empty();
}

template <typename Interface>
ComPtr<Interface> create(REFCLSID id) {
  ComPtr<Interface> object;
  check(SUCCEEDED(::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object))),
        "create a class");
  return object;
}

inline ComPtr<IDatabase> databaseOf(IGlob* glob) {
  ComPtr<IQDB> container;
  ComPtr<IDatabase> database;
  check(
      SUCCEEDED(glob->get_QDB(&container)) && SUCCEEDED(container->get_DB(&database)) && database != nullptr,
      "the open database");
  return database;
}

VARIANT variantOf(VARTYPE type, void* place);  ///< a reference to a variable of that type
VARIANT variantOf(short number);
/// Calls a member by name; the arguments stand in their order, the last ones may have names of their own.
HRESULT callByName(IDispatch* object, std::vector<const wchar_t*> names, std::vector<VARIANT> arguments,
                   VARIANT* result = nullptr);

// The parts, each over the open installation.
void callsByName(IGlob* glob);
void otherApartments();
