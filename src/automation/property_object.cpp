#include <wrl/client.h>

#include "data_objects.h"
#include "platform/text.h"

namespace voxa::automation {

namespace {

using Microsoft::WRL::ComPtr;

/// A member of an object that holds a value.
struct HeldValue {
  DISPID id;
  std::string name;
  VARTYPE type;
};

/// Calls the member of an object; its failure is raised with its number and words.
OwnVariant callMember(IDispatch& object, DISPID id, WORD kind, VARIANT* argument) {
  DISPID putName = DISPID_PROPERTYPUT;
  const UINT count = argument == nullptr ? 0 : 1;
  DISPPARAMS arguments{argument, argument == nullptr ? nullptr : &putName, count, count};
  OwnVariant result;
  EXCEPINFO failure{};
  const HRESULT outcome =
      object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &arguments, &result, &failure, nullptr);
  const std::string description = fromBstr(failure.bstrDescription);
  for (const BSTR text : {failure.bstrDescription, failure.bstrSource, failure.bstrHelpFile}) {
    ::SysFreeString(text);
  }
  if (outcome == DISP_E_EXCEPTION) throw Error(HRESULT_CODE(failure.scode), description);
  if (outcome == DISP_E_MEMBERNOTFOUND) {
    throw Error(err::dbInvalidOperation, "The property can only be read");
  }
  if (outcome == DISP_E_OVERFLOW) throw Error(err::overflow, "Overflow: the value of a property");
  if (FAILED(outcome)) throw Error(err::typeMismatch, "Type mismatch: the value of a property");
  return result;
}

class PropertyObject final : public Object<::IProperty> {
 public:
  PropertyObject(ComPtr<IDispatch> object, HeldValue held)
      : object_(std::move(object)), held_(std::move(held)) {}

  STDMETHODIMP get_Value(VARIANT* value) override {
    if (value == nullptr) return E_POINTER;
    ::VariantInit(value);
    return call([&] {
      OwnVariant got = callMember(*object_.Get(), held_.id, DISPATCH_PROPERTYGET, nullptr);
      std::swap(*value, *got);
    });
  }
  STDMETHODIMP put_Value(VARIANT value) override {
    return call([&] { (void)callMember(*object_.Get(), held_.id, DISPATCH_PROPERTYPUT, &value); });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return held_.name; });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [&] {
      switch (held_.type) {
        case VT_BOOL:
          return std::int16_t{dbBoolean};
        case VT_I2:
          return std::int16_t{dbInteger};
        case VT_I4:
          return std::int16_t{dbLong};
        case VT_R4:
          return std::int16_t{dbDouble};
        default:
          return std::int16_t{dbText};
      }
    });
  }
  STDMETHODIMP get_Inherited(VARIANT_BOOL* inherited) override {
    return give(inherited, [] { return false; });
  }

 private:
  ComPtr<IDispatch> object_;
  HeldValue held_;
};

void require(HRESULT result) {
  if (FAILED(result)) throw Error(err::internalError, "The members of an object cannot be listed");
}

/// The members of the object that hold values, from its type information.
std::vector<HeldValue> heldValues(IDispatch& object) {
  ComPtr<ITypeInfo> info;
  require(object.GetTypeInfo(0, LOCALE_USER_DEFAULT, &info));
  TYPEATTR* attributes = nullptr;
  require(info->GetTypeAttr(&attributes));
  const WORD functions = attributes->cFuncs;
  info->ReleaseTypeAttr(attributes);
  std::vector<HeldValue> out;
  for (UINT i = 0; i < functions; ++i) {
    FUNCDESC* function = nullptr;
    require(info->GetFuncDesc(i, &function));
    const DISPID id = function->memid;
    const VARTYPE type = function->elemdescFunc.tdesc.vt;
    const bool holds = function->invkind == INVOKE_PROPERTYGET && function->cParams == 0 && type != VT_PTR;
    info->ReleaseFuncDesc(function);
    if (!holds) continue;
    BSTR name = nullptr;
    require(info->GetDocumentation(id, &name, nullptr, nullptr, nullptr));
    out.push_back({id, fromBstr(name), type});
    ::SysFreeString(name);
  }
  return out;
}

}  // namespace

::IProperties* makeProperties(IDispatch* object, std::shared_ptr<Database> database) {
  const ComPtr<IDispatch> held(object);
  const auto all = std::make_shared<std::vector<HeldValue>>(heldValues(*object));
  const auto count = [all, database] {
    const bool hasVersion = database != nullptr && database->schemaVersion() != 0;
    return all->size() + (hasVersion ? 1 : 0);
  };
  return makeCollection<::IProperties, ::IProperty>({
      .count = count,
      .item = [held, all, database](std::size_t i) -> IDispatch* {
        if (i == all->size()) return makeVersionProperty(database);
        return new PropertyObject(held, all->at(i));
      },
      .find =
          [all, count](const std::string& name) {
            for (std::size_t i = 0; i < count(); ++i) {
              if (equalNoCase(name, i < all->size() ? (*all)[i].name : versionProperty)) return i;
            }
            throw Error(err::dbNoSuchProperty, "There is no property '" + name + "'");
          },
      .append = database == nullptr ? std::function<void(IDispatch*)>()
                                    : [database](IDispatch* own) { appendProperty(database, own); },
      .remove = nullptr,
  });
}

}  // namespace voxa::automation
