#include "messages/strings.h"

#include <type_traits>
#include <utility>

#include "app/library.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

/// The number of a foreign object's member; DISPID_UNKNOWN when it has none of that name.
DISPID memberOf(IDispatch& object, const wchar_t* name) {
  LPOLESTR wanted = const_cast<LPOLESTR>(name);
  DISPID id = DISPID_UNKNOWN;
  return SUCCEEDED(object.GetIDsOfNames(IID_NULL, &wanted, 1, LOCALE_USER_DEFAULT, &id)) ? id
                                                                                         : DISPID_UNKNOWN;
}

/// A foreign object's property of that name; Null when it has none.
Value property(IDispatch& object, const wchar_t* name) {
  const DISPID id = memberOf(object, name);
  if (id == DISPID_UNKNOWN) return {};
  DISPPARAMS none{};
  OwnVariant value;
  const HRESULT result =
      object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET | DISPATCH_METHOD, &none, &value,
                    nullptr, nullptr);
  return FAILED(result) ? Value() : fromVariant(*value);
}

/// The name of a foreign object's type; "" when it does not tell.
std::string typeName(IDispatch& object) {
  ITypeInfo* info = nullptr;
  if (FAILED(object.GetTypeInfo(0, LOCALE_USER_DEFAULT, &info)) || info == nullptr) return {};
  BSTR name = nullptr;
  (void)info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
  info->Release();
  std::string out = fromBstr(name);
  ::SysFreeString(name);
  return out;
}

/// Whether the object is a client's error object. Some hosts do not tell its type; then its members decide.
bool isErrorObject(IDispatch& object) {
  const std::string type = typeName(object);
  if (!type.empty()) return type == "ErrObject" || type == "IErrObject" || type == "_ErrObject";
  for (const wchar_t* member : {L"Number", L"Description", L"Raise"}) {
    if (memberOf(object, member) == DISPID_UNKNOWN) return false;
  }
  return true;
}

/// Reads what a caller gave for a message; nothing when it cannot be read. The rest of the message tells more
/// than an error about the message would.
template <typename Read>
std::invoke_result_t<Read> available(Read&& read) {
  try {
    return std::forward<Read>(read)();
  } catch (const Error&) {
    return {};
  }
}

/// What display adds to a message: the number and description of an error object, or the value of anything
/// else.
DisplayArgument displayArgument(const VARIANT& argument) {
  if (isMissing(argument)) return {};
  OwnVariant own;
  if (SUCCEEDED(::VariantCopyInd(&own, const_cast<VARIANT*>(&argument))) && own->vt == VT_DISPATCH &&
      own->pdispVal != nullptr) {
    IDispatch& object = *own->pdispVal;
    if (isErrorObject(object)) {
      return ErrorInfo{property(object, L"Number").toInt32(), property(object, L"Description").toText()};
    }
  }
  Value value = fromVariant(argument);
  if (std::holds_alternative<Bytes>(value.data())) return {};  // they have no text
  return value;
}

class StringsObject final : public Object<::IStrings>, public Shared<StringsObject> {
 public:
  STDMETHODIMP Initialize() override {
    return call([] { strings().Initialize(); });
  }
  STDMETHODIMP createDB(short* status) override {
    return give(status, [] { return strings().createDB(); });
  }
  STDMETHODIMP insert(BSTR mnem, BSTR textEng, short width, BSTR context, BSTR sType, VARIANT fontSize,
                      VARIANT_BOOL fontBold, short* status) override {
    return give(status, [&] {
      const double size = isMissing(fontSize) ? 7.8 : fromVariant(fontSize).toDouble();
      return strings().insert(fromBstr(mnem), fromBstr(textEng), width, fromBstr(context), fromBstr(sType),
                              static_cast<float>(size), fontBold != 0);
    });
  }
  STDMETHODIMP read(BSTR mnem, BSTR* text) override {
    return give(text, [&] { return strings().read(fromBstr(mnem)); });
  }
  STDMETHODIMP display(BSTR mnem, BSTR method, VARIANT arg, long msgStyle) override {
    return call([&] {
      strings().display(available([&] { return fromBstr(mnem); }),
                        available([&] { return fromBstr(method); }),
                        available([&] { return displayArgument(arg); }), static_cast<int>(msgStyle));
    });
  }

 private:
  static Strings& strings() { return library().Strings(); }
};

}  // namespace

::IStrings* stringsObject() {
  return StringsObject::get();
}

}  // namespace voxa::automation
