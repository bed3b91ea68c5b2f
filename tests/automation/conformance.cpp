// Runs the records of tests/conformance as a script would: an object by the name of its class, every member
// by its name. Runs in an empty folder with the files of records, beside VOXA.dll, which is registered.

#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "conformance/records.h"
#include "conformance/road.h"
#include "platform/error.h"

namespace voxa::conformance {
namespace {

std::wstring wide(std::string_view text) {
  const auto size = static_cast<int>(text.size());
  std::wstring out(text.size(), L'\0');
  out.resize(
      static_cast<std::size_t>(::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, out.data(), size)));
  return out;
}

std::string narrow(BSTR text) {
  const auto length = static_cast<int>(::SysStringLen(text));
  std::string out(static_cast<std::size_t>(length) * 3, '\0');
  const auto size = static_cast<int>(out.size());
  out.resize(static_cast<std::size_t>(
      ::WideCharToMultiByte(CP_UTF8, 0, text, length, out.data(), size, nullptr, nullptr)));
  return out;
}

/// A variant that is cleared at its end.
struct Variant : VARIANT {
  Variant() : VARIANT{} {}
  Variant(int number) : Variant() {  // NOLINT(google-explicit-constructor)
    vt = VT_I4;
    lVal = number;
  }
  Variant(bool flag) : Variant() {  // NOLINT(google-explicit-constructor)
    vt = VT_BOOL;
    boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
  }
  Variant(const std::wstring& text) : Variant() {  // NOLINT(google-explicit-constructor)
    vt = VT_BSTR;
    bstrVal = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  }
  Variant(IDispatch* object) : Variant() {  // NOLINT(google-explicit-constructor)
    vt = VT_DISPATCH;
    pdispVal = object;
    object->AddRef();
  }
  Variant(Variant&& other) noexcept : VARIANT(other) { other.vt = VT_EMPTY; }
  Variant(const Variant&) = delete;
  Variant& operator=(Variant other) noexcept {
    std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
    return *this;
  }
  ~Variant() { (void)::VariantClear(this); }
};

/// The failure of a call, with the number that a script finds in Err.Number.
[[noreturn]] void fail(HRESULT result, EXCEPINFO& info) {
  if (result == DISP_E_EXCEPTION && info.pfnDeferredFillIn != nullptr) (void)info.pfnDeferredFillIn(&info);
  const std::string description = narrow(info.bstrDescription);
  for (const BSTR text : {info.bstrDescription, info.bstrSource, info.bstrHelpFile}) ::SysFreeString(text);
  const HRESULT code = result == DISP_E_EXCEPTION ? info.scode : result;
  const bool number = HRESULT_FACILITY(code) == FACILITY_CONTROL;
  throw Error(info.wCode != 0 ? info.wCode
              : number        ? HRESULT_CODE(code)
                              : static_cast<int>(code),
              description);
}

class Object {
 public:
  explicit Object(const Variant& variant) {
    if (variant.vt != VT_DISPATCH || variant.pdispVal == nullptr) throw std::runtime_error("it is no object");
    object_ = variant.pdispVal;
  }
  /// CreateObject
  static Object create(const wchar_t* name) {
    CLSID id{};
    Variant out;
    out.vt = VT_DISPATCH;
    if (FAILED(::CLSIDFromProgID(name, &id)) ||
        FAILED(::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                  reinterpret_cast<void**>(&out.pdispVal)))) {
      throw std::runtime_error("no object by its name");
    }
    return Object(out);
  }

  template <typename... Arguments>
  Variant call(const wchar_t* name, Arguments&&... arguments) const {
    return invoke(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, std::forward<Arguments>(arguments)...);
  }
  template <typename... Arguments>
  [[nodiscard]] Object get(const wchar_t* name, Arguments&&... arguments) const {
    return Object(call(name, std::forward<Arguments>(arguments)...));
  }
  void put(const wchar_t* name, Variant value) const {
    (void)invoke(name, DISPATCH_PROPERTYPUT, std::move(value));
  }
  operator Variant() const { return object_.Get(); }  // NOLINT(google-explicit-constructor)

 private:
  template <typename... Arguments>
  Variant invoke(const wchar_t* name, WORD how, Arguments&&... arguments) const {
    std::vector<Variant> list;
    (list.emplace_back(std::forward<Arguments>(arguments)), ...);
    std::reverse(list.begin(), list.end());  // the last argument stands first
    auto* const member = const_cast<LPOLESTR>(name);
    DISPID id = 0;
    HRESULT result =
        object_->GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(&member), 1, LOCALE_USER_DEFAULT, &id);
    DISPID value = DISPID_PROPERTYPUT;
    const bool isPut = how == DISPATCH_PROPERTYPUT;
    DISPPARAMS given{list.data(), isPut ? &value : nullptr, static_cast<UINT>(list.size()), isPut ? 1U : 0U};
    Variant out;
    EXCEPINFO info{};
    if (SUCCEEDED(result)) {
      result = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, how, &given, isPut ? nullptr : &out, &info,
                               nullptr);
    }
    if (FAILED(result)) fail(result, info);
    return out;
  }

  Microsoft::WRL::ComPtr<IDispatch> object_;
};

/// By the type that the variant itself has: a script would see no other.
Value valueOf(const Variant& variant) {
  switch (variant.vt) {
    case VT_NULL:
      return {};
    case VT_BOOL:
      return variant.boolVal != 0;
    case VT_UI1:
      return std::int32_t{variant.bVal};
    case VT_I2:
      return std::int32_t{variant.iVal};
    case VT_I4:
      return static_cast<std::int32_t>(variant.lVal);
    case VT_R4:
      return toSingle(variant.fltVal);
    case VT_CY:
      return static_cast<double>(variant.cyVal.int64) / 10'000;
    case VT_R8:
      return variant.dblVal;
    case VT_DATE:
      return DateTime{variant.date};
    case VT_BSTR:
      return narrow(variant.bstrVal);
    default:
      return "a variant of type " + std::to_string(variant.vt);
  }
}

/// A database for one file of records.
class Automation : public Road {
 public:
  explicit Automation(const Object& db) : db_(db), tables_(db.get(L"TableDefs")) {}

  void createTable(const TableDef& definition) override {
    const Object table = db_.get(L"CreateTableDef", wide(definition.name));
    const Object fields = table.get(L"Fields");
    for (const FieldDef& field : definition.fields) {
      const Object made =
          table.get(L"CreateField", wide(field.name), static_cast<int>(field.type), field.size);
      made.put(L"AllowZeroLength", field.allowZeroLength);
      (void)fields.call(L"Append", made);
    }
    (void)tables_.call(L"Append", table);
  }
  int execute(std::string_view sql) override {
    (void)db_.call(L"Execute", wide(sql));
    return static_cast<int>(db_.call(L"RecordsAffected").lVal);
  }
  Rows rows(std::string_view sql) override {
    const Object rows = db_.get(L"OpenRecordset", wide(sql));
    const Object fields = rows.get(L"Fields");
    Rows out{static_cast<std::size_t>(fields.call(L"Count").lVal), {}};
    for (; rows.call(L"EOF").boolVal == VARIANT_FALSE; (void)rows.call(L"MoveNext")) {
      std::vector<Value>& row = out.values.emplace_back();
      for (std::size_t i = 0; i < out.columns; ++i) {
        row.push_back(valueOf(fields.get(L"Item", static_cast<int>(i)).call(L"Value")));
      }
    }
    return out;
  }

 private:
  Object db_;
  Object tables_;
};

int run() {
  namespace fs = std::filesystem;
  const fs::path here = fs::current_path();
  const Object glob = Object::create(L"KORVA.Glob");
  (void)glob.get(L"Strings").call(L"createDB");
  (void)glob.call(L"insertStrings");
  (void)glob.call(L"Initialize", (here / "KRV.mdb").wstring(), (here / "DRIVER.INI").wstring(),
                  (here / "COM.LOG").wstring(), here.wstring());
  const Object container = glob.get(L"QDB");
  (void)container.call(L"createDB");
  const Object engine = Object::create(L"KORVA.DBEngine");

  return runFiles(here, [&](const std::string& name) {
    return std::make_unique<Automation>(engine.get(L"CreateDatabase", wide(name)));
  });
}

}  // namespace
}  // namespace voxa::conformance

int main() {
  if (FAILED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  int result = 1;
  try {
    result = voxa::conformance::run();
  } catch (const std::exception& failure) {
    std::printf("FAILED: %s\n", failure.what());
  }
  ::CoUninitialize();
  if (result == 0) std::printf("passed\n");
  return result;
}
