#include <optional>

#include "app/library.h"
#include "data_objects.h"
#include "open_options.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

constexpr GUID queryId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x15}};

struct Given {
  FieldDef parameter;
  std::optional<Value> value;
};
using GivenValues = std::vector<Given>;

class ParameterObject final : public Object<::IParameter> {
 public:
  ParameterObject(std::shared_ptr<GivenValues> all, std::size_t index)
      : all_(std::move(all)), index_(index) {}

  STDMETHODIMP get_Value(VARIANT* value) override {
    return give(value, [&] { return given().value.value_or(Value()); });
  }
  STDMETHODIMP put_Value(VARIANT value) override {
    return call([&] { given().value = fromVariant(value); });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return given().parameter.name; });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [&] { return static_cast<std::int16_t>(given().parameter.type); });
  }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return give(properties, [&] { return makeProperties(this); });
  }

 private:
  [[nodiscard]] Given& given() const { return (*all_)[index_]; }

  std::shared_ptr<GivenValues> all_;
  std::size_t index_;
};

std::int16_t numberOf(QueryInfo::Kind kind) {
  switch (kind) {
    case QueryInfo::Kind::select:
      return dbQSelect;
    case QueryInfo::Kind::unite:
      return dbQSetOperation;
    case QueryInfo::Kind::append:
      return dbQAppend;
    case QueryInfo::Kind::update:
      return dbQUpdate;
    case QueryInfo::Kind::remove:
      return dbQDelete;
    case QueryInfo::Kind::makeTable:
      return dbQMakeTable;
    case QueryInfo::Kind::definition:
      break;
  }
  return dbQDDL;
}

class QueryDefObject final : public Object<::IQueryDef> {
 public:
  QueryDefObject(std::shared_ptr<Database> database, QueryDef query, bool isStored)
      : database_(std::move(database)), query_(std::move(query)), isStored_(isStored) {}

  void store() {
    if (query_.name.empty()) throw Error(err::dbInvalidArgument, "Invalid argument: a query needs a name");
    database_->createQuery(query_);
    isStored_ = true;
  }

  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return query_.name; });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return call([&] { replace({fromBstr(name), query_.sql}); });
  }
  STDMETHODIMP get_SQL(BSTR* sql) override {
    return give(sql, [&] { return query_.sql; });
  }
  STDMETHODIMP put_SQL(BSTR sql) override {
    return call([&] {
      const bool storedNow = !isStored_ && query_.sql.empty() && !query_.name.empty();
      replace({query_.name, fromBstr(sql)});
      given_ = nullptr;
      if (storedNow) store();
    });
  }
  STDMETHODIMP get_Parameters(::IParameters** parameters) override {
    return give(parameters, [&] {
      const std::shared_ptr<GivenValues> all = given();
      return makeCollection<::IParameters, ::IParameter>({
          .count = [all] { return all->size(); },
          .item = [all](std::size_t i) -> IDispatch* { return new ParameterObject(all, i); },
          .find =
              [all](const std::string& name) {
                return findName(name, all->size(), [&](std::size_t i) { return (*all)[i].parameter.name; });
              },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP get__Parameters(::IParameters** parameters) override { return get_Parameters(parameters); }
  STDMETHODIMP OpenRecordset(VARIANT type, VARIANT options, ::IRecordset** rows) override {
    return give(rows, [&] {
      return makeRecordset(database_,
                           database_->openRecordset(source(), values(), rowOptions(type, options)));
    });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [&] { return numberOf(information().kind); });
  }
  STDMETHODIMP Execute(VARIANT options) override {
    return call([&] {
      checkExecuteOptions(options);
      affected_ = database_->execute(source(), values());
    });
  }
  STDMETHODIMP get_RecordsAffected(long* rows) override {
    return give(rows, [&] { return std::int32_t{affected_}; });
  }
  STDMETHODIMP get_Fields(::IFields** fields) override {
    return give(fields, [&] {
      const auto columns = std::make_shared<std::vector<FieldDef>>(information().columns);
      return makeCollection<::IFields, ::IField>({
          .count = [columns] { return columns->size(); },
          .item = [columns](std::size_t i) -> IDispatch* {
            return makeDefinedField({.definition = columns->at(i), .position = i}, refuseChange);
          },
          .find = [columns](const std::string& name) { return findName(name, *columns); },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP get_Updatable(VARIANT_BOOL* updatable) override {
    return give(updatable, [&] { return !isStored_ || database_->updatable(); });
  }
  STDMETHODIMP get_ReturnsRecords(VARIANT_BOOL* returns) override {
    return give(returns, [&] {
      const QueryInfo::Kind kind = information().kind;
      return kind == QueryInfo::Kind::select || kind == QueryInfo::Kind::unite;
    });
  }
  STDMETHODIMP get_Connect(BSTR* text) override {
    return give(text, [] { return std::string(); });
  }
  STDMETHODIMP Close() override { return S_OK; }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return give(properties, [&] { return makeProperties(this); });
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == queryId ? this : nullptr; }

  [[nodiscard]] const std::string& source() const { return isStored_ ? query_.name : query_.sql; }
  [[nodiscard]] QueryInfo information() const { return database_->describe(source()); }

  /// The parameters with the values that they were given; read from the text at first use.
  std::shared_ptr<GivenValues> given() {
    if (given_ == nullptr) {
      auto all = std::make_shared<GivenValues>();
      for (const FieldDef& parameter : information().parameters) all->push_back({parameter, std::nullopt});
      given_ = std::move(all);
    }
    return given_;
  }
  [[nodiscard]] Database::Parameters values() const {
    Database::Parameters out;
    if (given_ == nullptr) return out;
    for (const Given& given : *given_) {
      if (given.value) out.emplace_back(given.parameter.name, *given.value);
    }
    return out;
  }
  void replace(QueryDef query) {
    if (isStored_) {
      Transaction transaction(library().engine(), *database_);
      database_->deleteQuery(query_.name);
      database_->createQuery(query);
      transaction.commit();
    }
    query_ = std::move(query);
  }

  std::shared_ptr<Database> database_;
  QueryDef query_;
  bool isStored_;
  std::shared_ptr<GivenValues> given_;
  int affected_ = 0;
};

}  // namespace

::IQueryDef* makeQueryDef(std::shared_ptr<Database> database, QueryDef query, bool isStored) {
  return new QueryDefObject(std::move(database), std::move(query), isStored);
}

void appendQuery(IUnknown* object) {
  static_cast<QueryDefObject*>(objectBehind(object, queryId, "query"))->store();
}

}  // namespace voxa::automation
