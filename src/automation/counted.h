#pragma once

#include <unknwn.h>

#include "module.h"

namespace voxa::automation {

/// Counts the references to an object, over the interfaces in `Base`. An object is made with new and deletes
/// itself with its last reference. It keeps the library loaded. One thread.
template <typename Base>
class Counted : public Base {
 public:
  Counted() = default;
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~Counted() = default;

  /// The answer to a query for an interface: `found`, with its reference counted, or that there is no such
  /// interface.
  HRESULT answer(void* found, void** out) {
    if (out == nullptr) return E_POINTER;
    *out = found;
    if (found == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

 private:
  ULONG references_ = 0;
  ModuleUse use_;
};

}  // namespace voxa::automation
