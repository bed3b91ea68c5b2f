#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include <utility>

#include "conversion.h"
#include "dispatch.h"
#include "failure.h"
#include "module.h"
#include "platform/error.h"

namespace voxa::automation {

/// Hands out an object, counted.
template <typename Interface>
void put(Interface** out, Interface* object) {
  if (object != nullptr) object->AddRef();
  *out = object;
}

/// A dual interface by name and by vtable. A derived class writes the members of `Interface` alone: each
/// converts, calls, converts back.
template <typename Interface>
class Dual : public Interface {
 public:
  Dual() = default;
  Dual(const Dual&) = delete;
  Dual& operator=(const Dual&) = delete;

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    return call([&] {
      *info = typeInformation(__uuidof(Interface))->info;
      (*info)->AddRef();
    });
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    HRESULT result = E_FAIL;
    const HRESULT failure =
        call([&] { result = typeInformation(__uuidof(Interface))->info->GetIDsOfNames(names, count, ids); });
    return FAILED(failure) ? failure : result;
  }
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* badArgument) override {
    HRESULT outcome = E_FAIL;
    const HRESULT failure = call([&] {
      outcome = invoke(static_cast<Interface*>(this), *typeInformation(__uuidof(Interface)), member, flags,
                       arguments, result, exception, badArgument);
    });
    return FAILED(failure) ? failure : outcome;
  }

 protected:
  virtual ~Dual() = default;

  /// The body of a member without a result.
  template <typename Body>
  [[nodiscard]] HRESULT call(Body&& body) noexcept {
    return guarded(__uuidof(Interface), std::forward<Body>(body));
  }
  /// The body of a member that gives a value.
  template <typename Out, typename Body>
  [[nodiscard]] HRESULT give(Out* out, Body&& body) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = Out{};
    return call([&] { put(out, body()); });
  }
};

/// What every automation object shares beside its interface: the count of its references, error information.
/// Objects are made with new and end with their last reference. One thread.
template <typename Interface>
class Object : public Dual<Interface>, public ISupportErrorInfo {
 public:
  STDMETHODIMP QueryInterface(REFIID wanted, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (wanted == IID_IUnknown || wanted == IID_IDispatch || wanted == __uuidof(Interface)) {
      *out = static_cast<Interface*>(this);
    } else if (wanted == IID_ISupportErrorInfo) {
      *out = static_cast<ISupportErrorInfo*>(this);
    } else {
      *out = furtherInterface(wanted);
    }
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID asked) override {
    return asked == __uuidof(Interface) || furtherInterface(asked) != nullptr ? S_OK : S_FALSE;
  }

 protected:
  /// An interface beside the first, of the same object; nullptr for none. Not counted yet.
  virtual void* furtherInterface(REFIID) { return nullptr; }

 private:
  ULONG references_ = 0;
  ModuleUse use_;
};

/// The one living object of a class, made when there is none: whoever asks for one of the library's service
/// or table objects gets the same as long as somebody holds it.
template <typename Class>
class Shared {
 public:
  [[nodiscard]] static Class* get() {
    if (living_ == nullptr) living_ = new Class;
    return living_;
  }

 protected:
  Shared() = default;
  ~Shared() { living_ = nullptr; }

 private:
  static inline Class* living_ = nullptr;
};

}  // namespace voxa::automation
