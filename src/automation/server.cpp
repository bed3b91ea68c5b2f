// What the operating system asks from an automation server: class factories, and whether it may be unloaded.

#include "classes.h"
#include "object.h"

namespace voxa::automation {

namespace {

class ClassFactory final : public Counted<IClassFactory> {
 public:
  explicit ClassFactory(const CreatableClass& made) : made_(made) {}

  STDMETHODIMP QueryInterface(REFIID wanted, void** out) override {
    return answer(wanted == IID_IUnknown || wanted == IID_IClassFactory ? this : nullptr, out);
  }
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID wanted, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    HRESULT result = E_FAIL;
    const HRESULT failure = guarded(IID_IClassFactory, [&] {
      IUnknown* const object = made_.make();
      object->AddRef();
      result = object->QueryInterface(wanted, out);
      object->Release();
    });
    return FAILED(failure) ? failure : result;
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    lockModule(lock != FALSE);
    return S_OK;
  }

 private:
  const CreatableClass& made_;
};

}  // namespace

IClassFactory* newClassFactory(const CreatableClass& made) {
  auto* const factory = new ClassFactory(made);
  factory->AddRef();
  return factory;
}

}  // namespace voxa::automation

STDAPI DllGetClassObject(REFCLSID classId, REFIID wanted, void** out) {
  using namespace voxa::automation;
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  for (const CreatableClass& made : creatableClasses()) {
    if (*made.id != classId) continue;
    HRESULT result = E_FAIL;
    const HRESULT failure = guarded(IID_IClassFactory, [&] {
      IClassFactory* const factory = newClassFactory(made);
      result = factory->QueryInterface(wanted, out);
      factory->Release();
    });
    return FAILED(failure) ? failure : result;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  return voxa::automation::isModuleUsed() ? S_FALSE : S_OK;
}
