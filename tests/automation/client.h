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

/// The 64-bit client has its objects in a process of their own.
constexpr bool outOfProcess = sizeof(void*) == 8;

/// Whether a call failed with a run-time error number, and the error object tells it in words. Wine carries
/// no error objects from one process to another.
inline bool failsWith(HRESULT result, int number) {
  ComPtr<IErrorInfo> info;
  Text words;
  if (outOfProcess) return result == static_cast<HRESULT>(0x800A0000 | number);
  return result == static_cast<HRESULT>(0x800A0000 | number) && ::GetErrorInfo(0, &info) == S_OK &&
         SUCCEEDED(info->GetDescription(words.out())) && !words.value().empty();
}

template <typename Interface>
ComPtr<Interface> create(REFCLSID id) {
  ComPtr<Interface> object;
  const DWORD where = outOfProcess ? CLSCTX_LOCAL_SERVER : CLSCTX_INPROC_SERVER;
  check(SUCCEEDED(::CoCreateInstance(id, nullptr, where, IID_PPV_ARGS(&object))), "create a class");
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
void classesAndTables(IGlob* glob);
void sharedProcess(IGlob* glob);  ///< of the 64-bit client
void processEnds();               ///< the same, behind the last object
