#include "data_objects.h"
#include "open_options.h"

namespace voxa::automation {

namespace {

constexpr GUID tableId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x13}};

/// A definition, and the database that has the table: none while the definition is being filled.
struct Defined {
  TableDef table;
  std::shared_ptr<Database> database;

  /// The definition as the file holds it now, or the one that is being filled.
  TableDef& current() {
    if (database != nullptr) table = database->tableDef(table.name);
    return table;
  }
};

template <typename Part>
void removePart(std::vector<Part>& parts, const std::string& name) {
  const std::size_t at = findName(name, parts);
  parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(at));
}

/// A change of a column goes into the definition to which it was appended. That of a table in the file keeps
/// its name, type, size and numbering.
FieldChanged changeOf(const std::shared_ptr<Defined>& defined, const std::string& name) {
  return [defined, name = name](const FieldDef& changed) mutable {
    if (defined->database != nullptr) {
      const FieldDef* const old = defined->current().field(name);
      const bool isAllowed = old != nullptr && changed.name == old->name && changed.type == old->type &&
                             changed.size == old->size && changed.autoIncrement == old->autoIncrement;
      if (!isAllowed) refuseChange(changed);
      return defined->database->alterField(defined->table.name, changed);
    }
    auto& fields = defined->table.fields;
    fields[findName(name, fields)] = changed;
    name = changed.name;
  };
}

void appendField(const std::shared_ptr<Defined>& defined, IDispatch* object) {
  const FieldDef field = fieldBehind(object).definition;
  if (defined->database != nullptr) {
    defined->database->addField(defined->table.name, field);
  } else {
    defined->table.fields.push_back(field);
  }
  tellChanges(object, changeOf(defined, field.name));
}

class TableDefObject final : public Object<::ITableDef> {
 public:
  TableDefObject(TableDef table, std::shared_ptr<Database> database)
      : defined_(std::make_shared<Defined>(Defined{std::move(table), std::move(database)})) {}

  [[nodiscard]] Defined& defined() const { return *defined_; }

  STDMETHODIMP get_Fields(::IFields** fields) override {
    return give(fields, [&] {
      const auto defined = defined_;
      return makeCollection<::IFields, ::IField>({
          .count = [defined] { return defined->current().fields.size(); },
          .item = [defined](std::size_t i) -> IDispatch* {
            const TableDef& table = defined->current();
            return makeDefinedField({table.fields.at(i), "", table.name, i},
                                    changeOf(defined, table.fields.at(i).name));
          },
          .find = [defined](const std::string& name) { return findName(name, defined->current().fields); },
          .append = [defined](IDispatch* object) { appendField(defined, object); },
          .remove =
              [defined](const std::string& name) {
                if (defined->database == nullptr) return removePart(defined->table.fields, name);
                defined->database->deleteField(defined->table.name, name);
              },
      });
    });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return defined_->table.name; });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return call([&] {
      if (defined_->database != nullptr) {
        throw Error(err::dbInvalidOperation, "A table that is in the file cannot get another name");
      }
      defined_->table.name = fromBstr(name);
    });
  }
  STDMETHODIMP get_Indexes(::IIndexes** indexes) override {
    return give(indexes, [&] {
      const auto defined = defined_;
      return makeCollection<::IIndexes, ::IIndex>({
          .count = [defined] { return defined->current().indexes.size(); },
          .item = [defined](std::size_t i) -> IDispatch* {
            return makeIndex(defined->current().indexes.at(i), true);
          },
          .find = [defined](const std::string& name) { return findName(name, defined->current().indexes); },
          .append =
              [defined](IDispatch* object) {
                appendIndex(object, [&](const IndexDef& index) {
                  if (defined->database == nullptr) return defined->table.indexes.push_back(index);
                  defined->database->addIndex(defined->table.name, index);
                });
              },
          .remove =
              [defined](const std::string& name) {
                if (defined->database == nullptr) return removePart(defined->table.indexes, name);
                defined->database->deleteIndex(defined->table.name, name);
              },
      });
    });
  }
  STDMETHODIMP CreateField(BSTR name, short type, long size, ::IField** field) override {
    return give(field, [&] {
      return makeDefinedField(
          {.definition = {.name = fromBstr(name), .type = dataType(type), .size = static_cast<int>(size)}});
    });
  }
  STDMETHODIMP CreateIndex(BSTR name, ::IIndex** index) override {
    return give(index, [&] { return makeIndex({.name = fromBstr(name)}, false); });
  }
  STDMETHODIMP get_RecordCount(long* count) override {
    return give(count, [&] {
      if (defined_->database == nullptr) return std::int32_t{-1};
      return defined_->database->openRecordset("select count(*) from [" + defined_->table.name + "]")
          ->get(0)
          .toInt32();
    });
  }
  STDMETHODIMP get_Updatable(VARIANT_BOOL* updatable) override {
    return give(updatable, [&] { return defined_->database == nullptr || defined_->database->updatable(); });
  }
  STDMETHODIMP get_Connect(BSTR* text) override { return giveNothing(text); }
  STDMETHODIMP get_SourceTableName(BSTR* text) override { return giveNothing(text); }
  STDMETHODIMP get_ValidationRule(BSTR* text) override { return giveNothing(text); }
  STDMETHODIMP get_ValidationText(BSTR* text) override { return giveNothing(text); }
  STDMETHODIMP get_Attributes(long* attributes) override {
    return give(attributes, [] { return std::int32_t{0}; });
  }
  STDMETHODIMP OpenRecordset(VARIANT type, VARIANT options, ::IRecordset** rows) override {
    return give(rows, [&] {
      const auto& database = defined_->database;
      if (database == nullptr) {
        throw Error(err::dbInvalidOperation, "The table is not in a file yet: it has no rows");
      }
      return makeRecordset(database,
                           database->openRecordset(defined_->table.name, {}, rowOptions(type, options)));
    });
  }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return give(properties, [&] { return makeProperties(this); });
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == tableId ? this : nullptr; }
  HRESULT giveNothing(BSTR* text) {
    return give(text, [] { return std::string(); });
  }

  std::shared_ptr<Defined> defined_;
};

Defined& behind(IUnknown* object) {
  return static_cast<TableDefObject*>(objectBehind(object, tableId, "table definition"))->defined();
}

}  // namespace

::ITableDef* makeTableDef(TableDef definition, std::shared_ptr<Database> database) {
  return new TableDefObject(std::move(definition), std::move(database));
}

TableDef& definitionBehind(IUnknown* object) {
  return behind(object).table;
}

void appendTable(const std::shared_ptr<Database>& database, IUnknown* object) {
  Defined& defined = behind(object);
  database->createTable(defined.table);
  defined.database = database;
}

}  // namespace voxa::automation
