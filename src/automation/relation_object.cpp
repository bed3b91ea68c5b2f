#include "data_objects.h"

namespace voxa::automation {

namespace {

constexpr GUID relationId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x14}};

struct State {
  Relation relation;
  bool isFixed = false;  ///< it is in a file

  void requireDraft() const {
    if (isFixed) refuseFixed("relation", relation.name);
  }
};

class RelationObject final : public Object<::IRelation> {
 public:
  RelationObject(Relation relation, bool isFixed)
      : state_(std::make_shared<State>(State{std::move(relation), isFixed})) {}

  [[nodiscard]] State& state() const { return *state_; }

  STDMETHODIMP get_Fields(::IFields** fields) override {
    return give(fields, [&] {
      const auto state = state_;
      return nameCollection([state] { return state->relation.fields.size(); },
                            [state](std::size_t i) {
                              const auto& [name, foreign] = state->relation.fields.at(i);
                              return DefinedField{{.name = name}, foreign, state->relation.table, i};
                            },
                            [state](const DefinedField& field) {
                              state->requireDraft();
                              state->relation.fields.emplace_back(field.definition.name, field.foreignName);
                            });
    });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return state_->relation.name; });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return change([&](Relation& relation) { relation.name = fromBstr(name); });
  }
  STDMETHODIMP get_Table(BSTR* table) override {
    return give(table, [&] { return state_->relation.table; });
  }
  STDMETHODIMP put_Table(BSTR table) override {
    return change([&](Relation& relation) { relation.table = fromBstr(table); });
  }
  STDMETHODIMP get_ForeignTable(BSTR* table) override {
    return give(table, [&] { return state_->relation.foreignTable; });
  }
  STDMETHODIMP put_ForeignTable(BSTR table) override {
    return change([&](Relation& relation) { relation.foreignTable = fromBstr(table); });
  }
  STDMETHODIMP get_Attributes(long* attributes) override {
    return give(attributes, [&] {
      const Relation& relation = state_->relation;
      return (relation.cascadeUpdate ? cascadeUpdateAttribute : 0) |
             (relation.cascadeDelete ? cascadeDeleteAttribute : 0);
    });
  }
  STDMETHODIMP put_Attributes(long attributes) override {
    return change([&](Relation& relation) {
      relation.cascadeUpdate = (attributes & cascadeUpdateAttribute) != 0;
      relation.cascadeDelete = (attributes & cascadeDeleteAttribute) != 0;
    });
  }
  STDMETHODIMP CreateField(BSTR name, ::IField** field) override {
    return give(field, [&] { return makeDefinedField({.definition = {.name = fromBstr(name)}}); });
  }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return give(properties, [&] { return makeProperties(this); });
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == relationId ? this : nullptr; }

  template <typename Change>
  HRESULT change(Change&& body) {
    return call([&] {
      state_->requireDraft();
      body(state_->relation);
    });
  }

  std::shared_ptr<State> state_;
};

}  // namespace

::IRelation* makeRelation(Relation relation, bool isFixed) {
  return new RelationObject(std::move(relation), isFixed);
}

void appendRelation(Database& database, IUnknown* object) {
  State& state = static_cast<RelationObject*>(objectBehind(object, relationId, "relation"))->state();
  database.createRelation(state.relation);
  state.isFixed = true;
}

}  // namespace voxa::automation
