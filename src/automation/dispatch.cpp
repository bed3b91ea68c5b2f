#include "dispatch.h"

#include <algorithm>
#include <deque>
#include <vector>

#include "conversion.h"

namespace voxa::automation {

namespace {

/// The arguments of one call, in the order and with the types that the member needs, and the caller's
/// variables behind them.
class Arguments {
 public:
  /// Converts all arguments that were given, by position or by name, and fills in those that were left out.
  /// So nothing about them can fail later, while the member runs. badArgument: gets the place of a wrong
  /// argument.
  HRESULT convert(const DISPPARAMS& given, const TypeInformation::Member& member, UINT* badArgument) {
    const std::size_t count = member.parameters.size();
    constexpr UINT nowhere = ~0U;
    std::vector<UINT> places(count, nowhere);
    for (UINT at = 0; at < given.cArgs; ++at) {
      const bool named = at < given.cNamedArgs;
      const std::size_t position = named ? namedPosition(given.rgdispidNamedArgs[at], count)
                                         : given.cArgs - 1 - at;  // the last argument stands first
      if (position >= count || places[position] != nowhere) {
        if (badArgument != nullptr) *badArgument = at;
        return named ? DISP_E_PARAMNOTFOUND : DISP_E_BADPARAMCOUNT;
      }
      places[position] = at;
    }
    values_.resize(count);
    for (std::size_t position = 0; position < count; ++position) {
      const TypeInformation::Parameter& parameter = member.parameters[position];
      const UINT at = places[position];
      if (at == nowhere && !parameter.isOptional) return DISP_E_BADPARAMCOUNT;
      VARIANT& value = values_[count - 1 - position];
      const HRESULT result = at == nowhere || isLeftOut(given.rgvarg[at])
                                 ? fillIn(value, parameter)
                                 : convertOne(value, given.rgvarg[at], parameter.type);
      if (SUCCEEDED(result)) continue;
      if (badArgument != nullptr && at != nowhere) *badArgument = at;
      return result;
    }
    const bool isPut = (member.kind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0;
    params_ = {values_.data(), isPut ? &valueOfPut_ : nullptr, static_cast<UINT>(count), isPut ? 1U : 0U};
    return S_OK;
  }

  [[nodiscard]] DISPPARAMS* params() { return &params_; }

  /// Stores the results in the caller's variables that were passed by reference. A variable that cannot hold
  /// its result does not stop the others.
  HRESULT writeBack() {
    HRESULT first = S_OK;
    for (const Reference& reference : references_) {
      const HRESULT result = store(*reference.variable, *reference.value);
      if (SUCCEEDED(first)) first = result;
    }
    return first;
  }

 private:
  struct Reference {
    VARIANT* variable;
    VARIANT* value;
  };

  static std::size_t namedPosition(DISPID name, std::size_t count) {
    return name == DISPID_PROPERTYPUT ? count - 1 : static_cast<std::size_t>(name);
  }

  static bool isLeftOut(VARIANT& argument) {
    const VARIANT& variable = variableBehind(argument);
    return variable.vt == VT_ERROR && variable.scode == DISP_E_PARAMNOTFOUND;
  }

  HRESULT fillIn(VARIANT& value, const TypeInformation::Parameter& parameter) {
    if (!parameter.isOptional) return DISP_E_PARAMNOTOPTIONAL;
    VARIANT* const local = &owned_.emplace_back();
    const HRESULT result = ::VariantCopy(local, const_cast<VARIANT*>(&*parameter.whenLeftOut));
    return FAILED(result) ? result : convertOne(value, *local, parameter.type);
  }

  HRESULT convertOne(VARIANT& value, VARIANT& argument, VARTYPE wanted) {
    VARIANT& variable = variableBehind(argument);
    const bool isReference = (argument.vt & VT_BYREF) != 0;
    if ((variable.vt & VT_BYREF) != 0 && variable.byref == nullptr) return E_INVALIDARG;
    const bool wantsReference = (wanted & VT_BYREF) != 0;
    if (wantsReference && isReference && !canHoldValue(variable)) return DISP_E_TYPEMISMATCH;
    if (variable.vt == wanted) {
      value = variable;
      return S_OK;
    }
    if (wanted == (VT_BYREF | VT_VARIANT) && isReference) {
      // The member itself sees what kind of variable it gets, and stores its result accordingly.
      value.vt = wanted;
      value.pvarVal = &variable;
      return S_OK;
    }
    VARIANT* const local = &owned_.emplace_back();
    const HRESULT result = convertValue(*local, variable, static_cast<VARTYPE>(wanted & ~VT_BYREF));
    if (FAILED(result)) return result;
    if (!wantsReference) {
      value = *local;
      return S_OK;
    }
    if (isReference) references_.push_back({&variable, local});
    value.vt = wanted;
    value.byref = wanted == (VT_BYREF | VT_VARIANT)
                      ? static_cast<void*>(local)
                      : &local->iVal;  // the value of every type is at this place
    return S_OK;
  }

  static HRESULT convertValue(VARIANT& value, VARIANT& given, VARTYPE wanted) {
    const HRESULT result = ::VariantCopyInd(&value, &given);
    if (FAILED(result) || wanted == VT_VARIANT) return result;
    if ((value.vt & VT_ARRAY) != 0) return DISP_E_TYPEMISMATCH;
    if (wanted != VT_DISPATCH) return ::VariantChangeType(&value, &value, 0, wanted);
    return value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN ? S_OK : DISP_E_TYPEMISMATCH;
  }

  DISPPARAMS params_{};
  DISPID valueOfPut_ = DISPID_PROPERTYPUT;
  std::vector<VARIANT> values_;
  std::deque<OwnVariant> owned_;  // elements never move, since arguments refer to them
  std::vector<Reference> references_;
};

/// Passes the arguments that a property itself does not take on to the default member of the object that the
/// property hands out. For a put these are all but the value.
HRESULT invokeOnward(IDispatch* object, const TypeInformation& type, const TypeInformation::Member& property,
                     WORD flags, DISPPARAMS& given, VARIANT* result, EXCEPINFO* exception,
                     UINT* badArgument) {
  const UINT indexes = given.cArgs - given.cNamedArgs;
  const UINT own = std::min(indexes, static_cast<UINT>(property.parameters.size()));
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

/// An object that was handed out by another of its interfaces: replaces it by what it answers to by names.
void useOwnDispatch(VARIANT& object) {
  IDispatch* own = nullptr;
  if (object.vt != VT_DISPATCH || object.pdispVal == nullptr) return;
  if (FAILED(object.pdispVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&own)))) return;
  object.pdispVal->Release();
  object.pdispVal = own;
}

}  // namespace

HRESULT invoke(IDispatch* object, const TypeInformation& type, DISPID member, WORD flags,
               DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
  constexpr WORD puts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
  if (arguments == nullptr || arguments->cNamedArgs > arguments->cArgs ||
      (arguments->cArgs != 0 && arguments->rgvarg == nullptr) ||
      (arguments->cNamedArgs != 0 && arguments->rgdispidNamedArgs == nullptr)) {
    return E_INVALIDARG;
  }
  const TypeInformation::Member* found = type.find(member, flags);
  if (found == nullptr && (flags & puts) != 0) {
    found = type.find(member, DISPATCH_PROPERTYGET | DISPATCH_METHOD);
    if (found == nullptr || !found->returnsObject) return DISP_E_MEMBERNOTFOUND;
    return invokeOnward(object, type, *found, flags, *arguments, result, exception, badArgument);
  }
  if (found == nullptr) return DISP_E_MEMBERNOTFOUND;
  if (found->returnsObject && arguments->cNamedArgs == 0 && arguments->cArgs > found->parameters.size()) {
    return invokeOnward(object, type, *found, flags, *arguments, result, exception, badArgument);
  }
  Arguments typed;
  HRESULT outcome = typed.convert(*arguments, *found, badArgument);
  if (FAILED(outcome)) return outcome;
  outcome = type.info->Invoke(object, member, flags, typed.params(), result, exception, badArgument);
  if (outcome == E_NOINTERFACE) return DISP_E_TYPEMISMATCH;  // an object of another kind
  if (FAILED(outcome)) return outcome;
  if (found->returnsObject && result != nullptr) useOwnDispatch(*result);
  outcome = typed.writeBack();
  if (FAILED(outcome) && result != nullptr) (void)::VariantClear(result);
  return outcome;
}

}  // namespace voxa::automation
