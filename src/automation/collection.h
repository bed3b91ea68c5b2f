#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

#include "conversion.h"
#include "korva.h"
#include "object.h"
#include "platform/error.h"

namespace voxa::automation {

/// What a collection consists of. A member that is not set is refused with 3219.
struct CollectionSource {
  std::function<std::size_t()> count;
  /// The object at a position below count, without a counted reference.
  std::function<IDispatch*(std::size_t)> item;
  /// Position of a name, in any case. Raises `err::dbNotInCollection` when there is none.
  std::function<std::size_t(const std::string&)> find;
  std::function<void(IDispatch*)> append;
  std::function<void(const std::string&)> remove;
};

/// Position of what a caller names or numbers. `err::dbNotInCollection` when there is none.
[[nodiscard]] std::size_t positionIn(const CollectionSource& source, const VARIANT& index);
/// For Each over the objects that are there now.
[[nodiscard]] IUnknown* enumeratorOf(const CollectionSource& source);
/// Refuses a change of a collection that has none with 3219.
[[noreturn]] void refuseCollectionChange();

/// A collection whose items have a type. Its interface has the members of ICollection in the same order, so
/// that it answers for that one, too.
template <typename Interface, typename Item>
class CollectionObject final : public Object<Interface> {
 public:
  explicit CollectionObject(CollectionSource source) : source_(std::move(source)) {}

  STDMETHODIMP get_Item(VARIANT index, Item** object) override {
    return this->give(object, [&] { return static_cast<Item*>(source_.item(positionIn(source_, index))); });
  }
  STDMETHODIMP get_Count(long* count) override {
    return this->give(count, [&] { return static_cast<std::int32_t>(source_.count()); });
  }
  STDMETHODIMP get__NewEnum(IUnknown** enumerator) override {
    return this->give(enumerator, [&] { return enumeratorOf(source_); });
  }
  STDMETHODIMP Append(IDispatch* object) override {
    return this->call([&] {
      if (object == nullptr) throw Error(err::objectNotSet, "Object variable not set");
      if (!source_.append) refuseCollectionChange();
      source_.append(object);
    });
  }
  STDMETHODIMP Delete(BSTR name) override {
    return this->call([&] {
      if (!source_.remove) refuseCollectionChange();
      source_.remove(fromBstr(name));
    });
  }
  STDMETHODIMP Refresh() override { return S_OK; }

 protected:
  void* furtherInterface(REFIID wanted) override {
    return wanted == __uuidof(::ICollection) ? static_cast<Interface*>(this) : nullptr;
  }

 private:
  CollectionSource source_;
};

template <typename Interface, typename Item>
[[nodiscard]] Interface* makeCollection(CollectionSource source) {
  return new CollectionObject<Interface, Item>(std::move(source));
}

}  // namespace voxa::automation
