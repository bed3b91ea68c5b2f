#include <limits>

#include "data_objects.h"
#include "platform/text.h"

namespace voxa::automation {

namespace {

/// For Each: gives the objects that were there when it began.
class Enumerator final : public Counted<IEnumVARIANT> {
 public:
  explicit Enumerator(std::vector<IDispatch*> objects) : objects_(std::move(objects)) {}

  STDMETHODIMP QueryInterface(REFIID wanted, void** out) override {
    return answer(wanted == IID_IUnknown || wanted == IID_IEnumVARIANT ? this : nullptr, out);
  }
  STDMETHODIMP Next(ULONG wanted, VARIANT* out, ULONG* fetched) override {
    if (out == nullptr) return E_POINTER;
    ULONG count = 0;
    for (; count < wanted && at_ < objects_.size(); ++count, ++at_) {
      ::VariantInit(&out[count]);
      out[count].vt = VT_DISPATCH;
      out[count].pdispVal = objects_[at_];
      objects_[at_]->AddRef();
    }
    if (fetched != nullptr) *fetched = count;
    return count == wanted ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t left = objects_.size() - at_;
    at_ += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    at_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(IEnumVARIANT** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return guarded(IID_IEnumVARIANT, [&] {
      auto* copy = new Enumerator(objects_);
      for (IDispatch* object : objects_) object->AddRef();
      copy->at_ = at_;
      copy->AddRef();
      *out = copy;
    });
  }

 private:
  ~Enumerator() override {
    for (IDispatch* object : objects_) object->Release();
  }

  std::vector<IDispatch*> objects_;  // counted
  std::size_t at_ = 0;
};

}  // namespace

IUnknown* enumeratorOf(const CollectionSource& source) {
  std::vector<IDispatch*> objects(source.count());
  for (std::size_t i = 0; i < objects.size(); ++i) {
    objects[i] = source.item(i);
    objects[i]->AddRef();
  }
  return new Enumerator(std::move(objects));
}

void refuseCollectionChange() {
  throw Error(err::dbInvalidOperation, "This collection cannot be changed");
}

std::size_t positionIn(const CollectionSource& source, const VARIANT& index) {
  const Value which = fromVariant(index);
  if (which.isText()) return source.find(which.toText());
  const std::int32_t number = which.toInt32();
  if (number < 0 || static_cast<std::size_t>(number) >= source.count())
    throw Error(err::dbNotInCollection, "The collection has no item number " + std::to_string(number));
  return static_cast<std::size_t>(number);
}

std::size_t findName(const std::string& name, std::size_t count,
                     const std::function<std::string(std::size_t)>& nameAt) {
  for (std::size_t i = 0; i < count; ++i) {
    if (equalNoCase(nameAt(i), name)) return i;
  }
  throw Error(err::dbNotInCollection, "The collection has no item '" + name + "'");
}

void* objectBehind(IUnknown* object, REFIID privateId, const char* what) {
  if (object == nullptr) throw Error(err::objectNotSet, "Object variable not set");
  IUnknown* own = nullptr;
  if (FAILED(object->QueryInterface(privateId, reinterpret_cast<void**>(&own)))) {
    throw Error(err::typeMismatch,
                std::string("Type mismatch: the object is no ") + what + " of this library");
  }
  object->Release();  // the identifier is no interface; it only leads to the object that the caller holds
  return own;
}

}  // namespace voxa::automation
