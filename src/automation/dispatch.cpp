#include "dispatch.h"

#include <algorithm>
#include <deque>
#include <vector>

#include "conversion.h"

namespace voxa::automation {

namespace {

/// The arguments of one call in the types that the member wants, and the caller's variables behind them.
class Arguments {
 public:
  /// Fills the arguments; the position of one that cannot be converted goes to badArgument.
  HRESULT convert(const DISPPARAMS& given, const TypeInformation::Member& member, UINT* badArgument) {
    params_ = given;
    values_.assign(given.rgvarg, given.rgvarg + given.cArgs);
    params_.rgvarg = values_.data();
    const UINT named = given.cNamedArgs;
    for (UINT at = named; at < given.cArgs; ++at) {
      const UINT position = given.cArgs - 1 - at;  // the last one stands first
      if (position >= member.arguments.size()) continue;
      const HRESULT result = convertOne(values_[at], member.arguments[position]);
      if (SUCCEEDED(result)) continue;
      if (badArgument != nullptr) *badArgument = at;
      return result;
    }
    if (named == 1 && given.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT && !member.arguments.empty()) {
      return convertOne(values_[0], member.arguments.back());
    }
    return S_OK;
  }

  [[nodiscard]] DISPPARAMS* params() { return &params_; }

  HRESULT writeBack() {
    for (const Reference& reference : references_) {
      const VARIANT& variable = reference.variable;
      HRESULT result = S_OK;
      if (variable.vt == (VT_BYREF | VT_VARIANT)) {
        result = ::VariantCopy(variable.pvarVal, reference.value);
      } else {
        // A variable with a type of its own: the value as that type, into the place it refers to.
        OwnVariant typed;
        const auto type = static_cast<VARTYPE>(variable.vt & ~VT_BYREF);
        result = ::VariantChangeType(&typed, reference.value, 0, type);
        if (SUCCEEDED(result)) result = store(*typed, variable);
      }
      if (FAILED(result)) return result;
    }
    return S_OK;
  }

 private:
  struct Reference {
    VARIANT variable;  ///< as the caller gave it
    VARIANT* value;
  };

  static bool isLeftOut(const VARIANT& argument) {
    return argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND;
  }

  HRESULT convertOne(VARIANT& argument, VARTYPE wanted) {
    const bool isReference = (argument.vt & VT_BYREF) != 0;
    if (wanted == VT_EMPTY || argument.vt == wanted || isLeftOut(argument)) return S_OK;
    if ((argument.vt & VT_ARRAY) != 0) return DISP_E_TYPEMISMATCH;
    VARIANT* const local = &owned_.emplace_back();
    HRESULT result = ::VariantCopyInd(local, &argument);
    if (FAILED(result)) return result;
    if (isLeftOut(*local)) {
      argument = *local;
      return S_OK;
    }
    const auto type = static_cast<VARTYPE>(wanted & ~VT_BYREF);
    result = ::VariantChangeType(local, local, 0, type);
    if (FAILED(result)) return result;
    if ((wanted & VT_BYREF) == 0) {
      argument = *local;
      return S_OK;
    }
    if (isReference) references_.push_back({argument, local});
    argument.vt = wanted;
    argument.byref = &local->iVal;  // every type's value stands at the same place
    return S_OK;
  }

  static HRESULT store(VARIANT& value, const VARIANT& variable) {
    switch (value.vt) {
      case VT_I2:
      case VT_BOOL:
        *variable.piVal = value.iVal;
        return S_OK;
      case VT_I4:
        *variable.plVal = value.lVal;
        return S_OK;
      case VT_BSTR:
        (void)::SysReAllocStringLen(variable.pbstrVal, value.bstrVal, ::SysStringLen(value.bstrVal));
        return S_OK;
      case VT_R8:
        *variable.pdblVal = value.dblVal;
        return S_OK;
      default:
        return DISP_E_TYPEMISMATCH;
    }
  }

  DISPPARAMS params_{};
  std::vector<VARIANT> values_;
  std::deque<OwnVariant> owned_;  // never moved, since arguments refer to them
  std::vector<Reference> references_;
};

/// Calls the default member of the object that a property hands out with the arguments that the property
/// itself does not take: of a put all but the value count.
HRESULT invokeOnward(IDispatch* object, const TypeInformation& type, const TypeInformation::Member& property,
                     WORD flags, DISPPARAMS& given, VARIANT* result, EXCEPINFO* exception,
                     UINT* badArgument) {
  const UINT indexes = given.cArgs - given.cNamedArgs;
  const UINT own = std::min(indexes, static_cast<UINT>(property.arguments.size()));
  DISPPARAMS first{given.rgvarg + (given.cArgs - own), nullptr, own, 0};
  OwnVariant next;
  const HRESULT found = invoke(object, type, property.id, DISPATCH_PROPERTYGET | DISPATCH_METHOD, &first,
                               &next, exception, badArgument);
  if (FAILED(found)) return found;
  if (next->vt != VT_DISPATCH || next->pdispVal == nullptr) return DISP_E_MEMBERNOTFOUND;
  DISPPARAMS rest{given.rgvarg, given.rgdispidNamedArgs, given.cArgs - own, given.cNamedArgs};
  return next->pdispVal->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, flags, &rest, result, exception,
                                badArgument);
}

}  // namespace

HRESULT invoke(IDispatch* object, const TypeInformation& type, DISPID member, WORD flags,
               DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
  constexpr WORD puts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
  if (arguments == nullptr) return E_INVALIDARG;
  const TypeInformation::Member* found = type.find(member, flags);
  if (found == nullptr && (flags & puts) != 0) {
    found = type.find(member, DISPATCH_PROPERTYGET | DISPATCH_METHOD);
    if (found == nullptr || !found->returnsObject) return DISP_E_MEMBERNOTFOUND;
    return invokeOnward(object, type, *found, flags, *arguments, result, exception, badArgument);
  }
  if (found == nullptr) return DISP_E_MEMBERNOTFOUND;
  if (found->returnsObject && arguments->cNamedArgs == 0 && arguments->cArgs > found->arguments.size()) {
    return invokeOnward(object, type, *found, flags, *arguments, result, exception, badArgument);
  }
  Arguments typed;
  HRESULT outcome = typed.convert(*arguments, *found, badArgument);
  if (FAILED(outcome)) return outcome;
  outcome = type.info->Invoke(object, member, flags, typed.params(), result, exception, badArgument);
  if (outcome == E_NOINTERFACE) return DISP_E_TYPEMISMATCH;  // an object of another kind
  if (FAILED(outcome)) return outcome;
  return typed.writeBack();
}

}  // namespace voxa::automation
