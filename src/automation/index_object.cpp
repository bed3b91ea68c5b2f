#include "data_objects.h"

namespace voxa::automation {

namespace {

constexpr GUID indexId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x12}};

struct State {
  IndexDef index;
  bool ignoreNulls = false;
  bool isFixed = false;  ///< it is that of a table

  void requireDraft() const {
    if (isFixed) refuseFixed("index", index.name);
  }
};

class IndexObject final : public Object<::IIndex> {
 public:
  IndexObject(IndexDef index, bool isFixed)
      : state_(std::make_shared<State>(State{.index = std::move(index), .isFixed = isFixed})) {}

  [[nodiscard]] State& state() const { return *state_; }

  STDMETHODIMP get_Fields(::IFields** fields) override {
    return give(fields, [&] {
      const auto state = state_;
      return nameCollection([state] { return state->index.fields.size(); },
                            [state](std::size_t i) {
                              return DefinedField{.definition = {.name = state->index.fields.at(i)},
                                                  .position = i};
                            },
                            [state](const DefinedField& field) {
                              state->requireDraft();
                              state->index.fields.push_back(field.definition.name);
                            });
    });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return state_->index.name; });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return change([&] { state_->index.name = fromBstr(name); });
  }
  STDMETHODIMP get_Primary(VARIANT_BOOL* primary) override {
    return give(primary, [&] { return state_->index.primary; });
  }
  STDMETHODIMP put_Primary(VARIANT_BOOL primary) override {
    return change([&] { state_->index.primary = primary != 0; });
  }
  STDMETHODIMP get_Unique(VARIANT_BOOL* unique) override {
    return give(unique, [&] { return state_->index.isUnique(); });
  }
  STDMETHODIMP put_Unique(VARIANT_BOOL unique) override {
    return change([&] { state_->index.unique = unique != 0; });
  }
  STDMETHODIMP get_Required(VARIANT_BOOL* required) override {
    return give(required, [&] { return state_->index.required || state_->index.primary; });
  }
  STDMETHODIMP put_Required(VARIANT_BOOL required) override {
    return change([&] { state_->index.required = required != 0; });
  }
  STDMETHODIMP CreateField(BSTR name, ::IField** field) override {
    return give(field, [&] { return makeDefinedField({.definition = {.name = fromBstr(name)}}); });
  }
  STDMETHODIMP get_Clustered(VARIANT_BOOL* clustered) override {
    return give(clustered, [] { return false; });
  }
  STDMETHODIMP get_Foreign(VARIANT_BOOL* foreign) override {
    return give(foreign, [] { return false; });
  }
  STDMETHODIMP get_IgnoreNulls(VARIANT_BOOL* ignore) override {
    return give(ignore, [&] { return state_->ignoreNulls; });
  }
  STDMETHODIMP put_IgnoreNulls(VARIANT_BOOL ignore) override {
    return change([&] { state_->ignoreNulls = ignore != 0; });
  }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return give(properties, [&] { return makeProperties(this); });
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == indexId ? this : nullptr; }

  template <typename Change>
  HRESULT change(Change&& body) {
    return call([&] {
      state_->requireDraft();
      body();
    });
  }

  std::shared_ptr<State> state_;
};

}  // namespace

::IIndex* makeIndex(IndexDef index, bool isFixed) {
  return new IndexObject(std::move(index), isFixed);
}

void appendIndex(IUnknown* object, const std::function<void(const IndexDef&)>& append) {
  State& state = static_cast<IndexObject*>(objectBehind(object, indexId, "index"))->state();
  append(state.index);
  state.isFixed = true;
}

}  // namespace voxa::automation
