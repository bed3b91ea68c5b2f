#include <wrl/client.h>

#include "data_objects.h"

namespace voxa::automation {

namespace {

// {C77D0FA1-6C1E-4A2B-9B1C-0D9C8B6F4E11} and its neighbours identify this library's own objects.
constexpr GUID fieldId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x11}};
constexpr GUID indexId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x12}};
constexpr GUID tableId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x13}};
constexpr GUID relationId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x14}};

/// A definition that was read from a file tells what the file holds. It cannot be used to change the file.
class DefinedFieldObject final : public Object<::IField> {
 public:
  explicit DefinedFieldObject(DefinedField field) : field_(std::move(field)) {}

  [[nodiscard]] const DefinedField& field() const { return field_; }

  STDMETHODIMP get_Value(VARIANT* value) override {
    return give(value, [] { return noRows(); });
  }
  STDMETHODIMP put_Value(VARIANT) override {
    return call([] { (void)noRows(); });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return field_.definition.name; });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return call([&] { field_.definition.name = fromBstr(name); });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [&] { return static_cast<std::int16_t>(field_.definition.type); });
  }
  STDMETHODIMP put_Type(short type) override {
    return call([&] { field_.definition.type = dataType(type); });
  }
  STDMETHODIMP get_Size(long* size) override {
    return give(size, [&] { return std::int32_t{field_.definition.size}; });
  }
  STDMETHODIMP put_Size(long size) override {
    return call([&] { field_.definition.size = static_cast<int>(size); });
  }
  STDMETHODIMP get_Required(VARIANT_BOOL* required) override {
    return give(required, [&] { return field_.definition.required; });
  }
  STDMETHODIMP put_Required(VARIANT_BOOL required) override {
    return call([&] { field_.definition.required = required != 0; });
  }
  STDMETHODIMP get_AllowZeroLength(VARIANT_BOOL* allowed) override {
    return give(allowed, [&] { return field_.definition.allowZeroLength; });
  }
  STDMETHODIMP put_AllowZeroLength(VARIANT_BOOL allowed) override {
    return call([&] { field_.definition.allowZeroLength = allowed != 0; });
  }
  STDMETHODIMP get_DefaultValue(VARIANT* value) override {
    return give(value, [&] { return field_.definition.defaultValue; });
  }
  STDMETHODIMP put_DefaultValue(VARIANT value) override {
    return call([&] { field_.definition.defaultValue = fromVariant(value); });
  }
  STDMETHODIMP get_ValidationRule(BSTR* rule) override {
    return give(rule, [&] { return field_.definition.validationRule; });
  }
  STDMETHODIMP put_ValidationRule(BSTR rule) override {
    return call([&] { field_.definition.validationRule = fromBstr(rule); });
  }
  STDMETHODIMP get_Attributes(long* attributes) override {
    return give(attributes,
                [&] { return std::int32_t{field_.definition.autoIncrement ? autoIncrementAttribute : 0}; });
  }
  STDMETHODIMP put_Attributes(long attributes) override {
    return call([&] { field_.definition.autoIncrement = (attributes & autoIncrementAttribute) != 0; });
  }
  STDMETHODIMP get_ForeignName(BSTR* name) override {
    return give(name, [&] { return field_.foreignName; });
  }
  STDMETHODIMP put_ForeignName(BSTR name) override {
    return call([&] { field_.foreignName = fromBstr(name); });
  }

  static DataType dataType(short type) {
    for (const DataType known :
         {DataType::Boolean, DataType::Byte, DataType::Integer, DataType::Long, DataType::Currency,
          DataType::Single, DataType::Double, DataType::Date, DataType::Text, DataType::Memo}) {
      if (static_cast<short>(known) == type) return known;
    }
    throw Error(err::dbInvalidArgument, "There is no field type " + std::to_string(type));
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == fieldId ? this : nullptr; }
  [[noreturn]] static Value noRows() {
    throw Error(err::dbInvalidOperation, "A column of a definition has no value");
  }

  DefinedField field_;
};

/// The columns of an index or a relation. Only their names count.
template <typename Names>
::ICollection* nameCollection(std::shared_ptr<Names> names) {
  return makeCollection({
      .count = [names] { return names->count(); },
      .item = [names](std::size_t i) -> IDispatch* { return new DefinedFieldObject(names->at(i)); },
      .find =
          [names](const std::string& name) {
            return findName(name, names->count(),
                            [&](std::size_t i) { return names->at(i).definition.name; });
          },
      .append = [names](IDispatch* object) { names->append(fieldBehind(object)); },
      .remove = nullptr,
  });
}

struct IndexNames {
  std::shared_ptr<IndexDef> index;
  [[nodiscard]] std::size_t count() const { return index->fields.size(); }
  [[nodiscard]] DefinedField at(std::size_t i) const { return {FieldDef{.name = index->fields[i]}, ""}; }
  void append(const DefinedField& field) const { index->fields.push_back(field.definition.name); }
};

struct RelationNames {
  std::shared_ptr<Relation> relation;
  [[nodiscard]] std::size_t count() const { return relation->fields.size(); }
  [[nodiscard]] DefinedField at(std::size_t i) const {
    return {FieldDef{.name = relation->fields[i].first}, relation->fields[i].second};
  }
  void append(const DefinedField& field) const {
    relation->fields.emplace_back(field.definition.name, field.foreignName);
  }
};

class IndexObject final : public Object<::IIndex> {
 public:
  explicit IndexObject(std::shared_ptr<IndexDef> index) : index_(std::move(index)) {}

  [[nodiscard]] const IndexDef& index() const { return *index_; }

  STDMETHODIMP get_Fields(::ICollection** fields) override {
    return give(fields, [&] { return nameCollection(std::make_shared<IndexNames>(IndexNames{index_})); });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return index_->name; });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return call([&] { index_->name = fromBstr(name); });
  }
  STDMETHODIMP get_Primary(VARIANT_BOOL* primary) override {
    return give(primary, [&] { return index_->primary; });
  }
  STDMETHODIMP put_Primary(VARIANT_BOOL primary) override {
    return call([&] { index_->primary = primary != 0; });
  }
  STDMETHODIMP get_Unique(VARIANT_BOOL* unique) override {
    return give(unique, [&] { return index_->unique || index_->primary; });
  }
  STDMETHODIMP put_Unique(VARIANT_BOOL unique) override {
    return call([&] { index_->unique = unique != 0; });
  }
  STDMETHODIMP get_Required(VARIANT_BOOL* required) override {
    return give(required, [&] { return index_->required || index_->primary; });
  }
  STDMETHODIMP put_Required(VARIANT_BOOL required) override {
    return call([&] { index_->required = required != 0; });
  }
  STDMETHODIMP CreateField(BSTR name, ::IField** field) override {
    return give(field, [&] { return makeDefinedField(FieldDef{.name = fromBstr(name)}); });
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == indexId ? this : nullptr; }

  std::shared_ptr<IndexDef> index_;
};

class TableDefObject final : public Object<::ITableDef> {
 public:
  explicit TableDefObject(std::shared_ptr<TableDef> table) : table_(std::move(table)) {}

  [[nodiscard]] TableDef& definition() const { return *table_; }

  STDMETHODIMP get_Fields(::ICollection** fields) override {
    return give(fields, [&] {
      const auto table = table_;
      return makeCollection({
          .count = [table] { return table->fields.size(); },
          .item = [table](std::size_t i) -> IDispatch* { return makeDefinedField(table->fields[i]); },
          .find =
              [table](const std::string& name) {
                return findName(name, table->fields.size(),
                                [&](std::size_t i) { return table->fields[i].name; });
              },
          .append = [table](IDispatch* object) { table->fields.push_back(fieldBehind(object).definition); },
          .remove = [table](const std::string& name) { remove(table->fields, name); },
      });
    });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return table_->name; });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return call([&] { table_->name = fromBstr(name); });
  }
  STDMETHODIMP get_Indexes(::ICollection** indexes) override {
    return give(indexes, [&] {
      const auto table = table_;
      return makeCollection({
          .count = [table] { return table->indexes.size(); },
          .item = [table](std::size_t i) -> IDispatch* {
            return new IndexObject(std::make_shared<IndexDef>(table->indexes[i]));
          },
          .find =
              [table](const std::string& name) {
                return findName(name, table->indexes.size(),
                                [&](std::size_t i) { return table->indexes[i].name; });
              },
          .append =
              [table](IDispatch* object) {
                const void* own = objectBehind(object, indexId, "index");
                table->indexes.push_back(static_cast<const IndexObject*>(own)->index());
              },
          .remove = [table](const std::string& name) { remove(table->indexes, name); },
      });
    });
  }
  STDMETHODIMP CreateField(BSTR name, short type, long size, ::IField** field) override {
    return give(field, [&] {
      return makeDefinedField(FieldDef{.name = fromBstr(name),
                                       .type = DefinedFieldObject::dataType(type),
                                       .size = static_cast<int>(size)});
    });
  }
  STDMETHODIMP CreateIndex(BSTR name, ::IIndex** index) override {
    return give(index, [&]() -> ::IIndex* {
      return new IndexObject(std::make_shared<IndexDef>(IndexDef{.name = fromBstr(name)}));
    });
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == tableId ? this : nullptr; }

  template <typename Part>
  static void remove(std::vector<Part>& parts, const std::string& name) {
    const std::size_t at = findName(name, parts.size(), [&](std::size_t i) { return parts[i].name; });
    parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(at));
  }

  std::shared_ptr<TableDef> table_;
};

class RelationObject final : public Object<::IRelation> {
 public:
  explicit RelationObject(std::shared_ptr<Relation> relation) : relation_(std::move(relation)) {}

  [[nodiscard]] const Relation& relation() const { return *relation_; }

  STDMETHODIMP get_Fields(::ICollection** fields) override {
    return give(fields,
                [&] { return nameCollection(std::make_shared<RelationNames>(RelationNames{relation_})); });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return relation_->name; });
  }
  STDMETHODIMP get_Table(BSTR* table) override {
    return give(table, [&] { return relation_->table; });
  }
  STDMETHODIMP get_ForeignTable(BSTR* table) override {
    return give(table, [&] { return relation_->foreignTable; });
  }
  STDMETHODIMP get_Attributes(long* attributes) override {
    return give(attributes, [&] {
      return (relation_->cascadeUpdate ? cascadeUpdateAttribute : 0) |
             (relation_->cascadeDelete ? cascadeDeleteAttribute : 0);
    });
  }
  STDMETHODIMP CreateField(BSTR name, ::IField** field) override {
    return give(field, [&] { return makeDefinedField(FieldDef{.name = fromBstr(name)}); });
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == relationId ? this : nullptr; }

  std::shared_ptr<Relation> relation_;
};

}  // namespace

::IField* makeDefinedField(const FieldDef& definition) {
  return new DefinedFieldObject({definition, ""});
}

const DefinedField& fieldBehind(IUnknown* object) {
  return static_cast<DefinedFieldObject*>(objectBehind(object, fieldId, "column"))->field();
}

::ITableDef* makeTableDef(std::shared_ptr<TableDef> definition) {
  return new TableDefObject(std::move(definition));
}

TableDef& definitionBehind(IUnknown* object) {
  return static_cast<TableDefObject*>(objectBehind(object, tableId, "table definition"))->definition();
}

::IRelation* makeRelation(std::shared_ptr<Relation> relation) {
  return new RelationObject(std::move(relation));
}

const Relation& relationBehind(IUnknown* object) {
  return static_cast<RelationObject*>(objectBehind(object, relationId, "relation"))->relation();
}

}  // namespace voxa::automation
