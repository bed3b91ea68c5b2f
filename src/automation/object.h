#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include <utility>

#include "conversion.h"
#include "counted.h"
#include "dispatch.h"
#include "failure.h"
#include "platform/error.h"

namespace voxa::automation {

/// Hands out an object and counts the reference.
template <typename Interface>
void put(Interface** out, Interface* object) {
  if (object != nullptr) object->AddRef();
  *out = object;
}

/// A dual interface, called by name and through its vtable. A derived class writes only the members of
/// `Interface`. Each of them converts, calls, and converts back.
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
    if (names == nullptr || ids == nullptr) return E_POINTER;
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
  /// The body of a member that returns a value.
  template <typename Out, typename Body>
  [[nodiscard]] HRESULT give(Out* out, Body&& body) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = Out{};
    return call([&] { put(out, body()); });
  }
};

/// A dual interface whose errors have a description beside the number, and whose class can be asked for.
template <typename Interface>
class Reporting : public Dual<Interface>, public ISupportErrorInfo, public IProvideClassInfo {};

/// What all automation objects share. An object is made with new and deletes itself with its last reference.
template <typename Interface>
class Object : public Counted<Reporting<Interface>> {
 public:
  STDMETHODIMP QueryInterface(REFIID wanted, void** out) override {
    if (wanted == IID_IUnknown || wanted == IID_IDispatch || wanted == __uuidof(Interface)) {
      return this->answer(static_cast<Interface*>(this), out);
    }
    if (wanted == IID_ISupportErrorInfo) return this->answer(static_cast<ISupportErrorInfo*>(this), out);
    if (wanted == IID_IProvideClassInfo) return this->answer(static_cast<IProvideClassInfo*>(this), out);
    return this->answer(furtherInterface(wanted), out);
  }
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID asked) override {
    return asked == __uuidof(Interface) || furtherInterface(asked) != nullptr ? S_OK : S_FALSE;
  }
  STDMETHODIMP GetClassInfo(ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return this->call([&] { *info = classInformation(__uuidof(Interface)); });
  }

 protected:
  /// A further interface of the same object; nullptr for none. The reference is not counted yet.
  virtual void* furtherInterface(REFIID) { return nullptr; }
};

/// The one object of a class, made when there is none. While somebody holds one of the library's service or
/// table objects, everybody who asks for it gets the same one.
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
