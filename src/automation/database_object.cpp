#include "platform/database/database.h"

#include <map>

#include "app/library.h"
#include "data_objects.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

using Parameters = std::vector<std::pair<std::string, Value>>;

class ParameterObject final : public Object<::IParameter> {
 public:
  ParameterObject(std::shared_ptr<Parameters> parameters, std::size_t index)
      : parameters_(std::move(parameters)), index_(index) {}

  STDMETHODIMP get_Value(VARIANT* value) override {
    return give(value, [&] { return (*parameters_)[index_].second; });
  }
  STDMETHODIMP put_Value(VARIANT value) override {
    return call([&] { (*parameters_)[index_].second = fromVariant(value); });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return (*parameters_)[index_].first; });
  }

 private:
  std::shared_ptr<Parameters> parameters_;
  std::size_t index_;
};

class QueryDefObject final : public Object<::IQueryDef> {
 public:
  QueryDefObject(std::shared_ptr<Database> database, QueryDef query)
      : database_(std::move(database)), query_(std::move(query)) {}

  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return query_.name; });
  }
  STDMETHODIMP get_SQL(BSTR* sql) override {
    return give(sql, [&] { return query_.sql; });
  }
  STDMETHODIMP get_Parameters(::ICollection** parameters) override {
    return give(parameters, [&] {
      const auto all = parameters_;
      return makeCollection({
          .count = [all] { return all->size(); },
          .item = [all](std::size_t i) -> IDispatch* { return new ParameterObject(all, i); },
          // Any name is accepted here, since the caller is about to give it a value. The query refuses a name
          // that it does not know.
          .find =
              [all](const std::string& name) {
                const auto known = [&](const auto& parameter) { return parameter.first == name; };
                const auto found = std::find_if(all->begin(), all->end(), known);
                const auto at = static_cast<std::size_t>(found - all->begin());
                if (found == all->end()) all->emplace_back(name, Value());
                return at;
              },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP OpenRecordset(VARIANT, VARIANT, ::IRecordset** rows) override {
    return give(rows, [&] { return makeRecordset(database_->openRecordset(query_.name, *parameters_)); });
  }

 private:
  std::shared_ptr<Database> database_;
  QueryDef query_;
  std::shared_ptr<Parameters> parameters_ = std::make_shared<Parameters>();
};

class ErrorObject final : public Object<::IError> {
 public:
  explicit ErrorObject(ErrorInfo error) : error_(std::move(error)) {}

  STDMETHODIMP get_Description(BSTR* text) override {
    return give(text, [&] { return error_.description; });
  }
  STDMETHODIMP get_Number(long* number) override {
    return give(number, [&] { return std::int32_t{error_.number}; });
  }

 private:
  ErrorInfo error_;
};

class DatabaseObject final : public Object<::IDatabase> {
 public:
  explicit DatabaseObject(std::shared_ptr<Database> database) : database_(std::move(database)) {
    living()[database_.get()] = this;
  }
  DatabaseObject(const DatabaseObject&) = delete;
  DatabaseObject& operator=(const DatabaseObject&) = delete;

  static std::map<Database*, DatabaseObject*>& living() {
    static std::map<Database*, DatabaseObject*> objects;
    return objects;
  }

  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return database_->name(); });
  }
  STDMETHODIMP OpenRecordset(BSTR source, VARIANT, VARIANT, ::IRecordset** rows) override {
    return give(rows, [&] { return makeRecordset(database_->openRecordset(fromBstr(source))); });
  }
  STDMETHODIMP Execute(BSTR sql, VARIANT) override {
    return call([&] { affected_ = database_->execute(fromBstr(sql)); });
  }
  STDMETHODIMP get_RecordsAffected(long* rows) override {
    return give(rows, [&] { return std::int32_t{affected_}; });
  }
  STDMETHODIMP get_TableDefs(::ICollection** tables) override {
    return give(tables, [&] {
      const auto database = database_;
      const auto nameAt = [database](std::size_t i) { return database->tableNames().at(i); };
      return makeCollection({
          .count = [database] { return database->tableNames().size(); },
          .item = [database, nameAt](std::size_t i) -> IDispatch* {
            return makeTableDef(std::make_shared<TableDef>(database->tableDef(nameAt(i))));
          },
          .find =
              [database, nameAt](const std::string& name) {
                return findName(name, database->tableNames().size(), nameAt);
              },
          .append = [database](IDispatch* object) { database->createTable(definitionBehind(object)); },
          .remove = [database](const std::string& name) { database->deleteTable(name); },
      });
    });
  }
  STDMETHODIMP get_QueryDefs(::ICollection** queries) override {
    return give(queries, [&] {
      const auto database = database_;
      return makeCollection({
          .count = [database] { return database->queries().size(); },
          .item = [database](std::size_t i) -> IDispatch* {
            return makeQueryDef(database, database->queries().at(i));
          },
          .find =
              [database](const std::string& name) {
                const std::vector<QueryDef> all = database->queries();
                return findName(name, all.size(), [&](std::size_t i) { return all[i].name; });
              },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP get_Relations(::ICollection** relations) override {
    return give(relations, [&] {
      const auto database = database_;
      return makeCollection({
          .count = [database] { return database->relations().size(); },
          .item = [database](std::size_t i) -> IDispatch* {
            return makeRelation(std::make_shared<Relation>(database->relations().at(i)));
          },
          .find =
              [database](const std::string& name) {
                const std::vector<Relation> all = database->relations();
                return findName(name, all.size(), [&](std::size_t i) { return all[i].name; });
              },
          .append = [database](IDispatch* object) { database->createRelation(relationBehind(object)); },
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP get_Errors(::ICollection** errors) override {
    return give(errors, [] {
      const auto all = std::make_shared<std::vector<ErrorInfo>>(library().engine().errors());
      return makeCollection({
          .count = [all] { return all->size(); },
          .item = [all](std::size_t i) -> IDispatch* { return new ErrorObject(all->at(i)); },
          .find = [](const std::string& name) -> std::size_t {
            throw Error(err::dbNotInCollection, "Errors have no names: '" + name + "'");
          },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP CreateTableDef(BSTR name, ::ITableDef** table) override {
    return give(table, [&] {
      auto definition = std::make_shared<TableDef>();
      definition->name = fromBstr(name);
      return makeTableDef(std::move(definition));
    });
  }
  STDMETHODIMP CreateRelation(BSTR name, BSTR table, BSTR foreignTable, long attributes,
                              ::IRelation** relation) override {
    return give(relation, [&] {
      return makeRelation(
          std::make_shared<Relation>(Relation{.name = fromBstr(name),
                                              .table = fromBstr(table),
                                              .foreignTable = fromBstr(foreignTable),
                                              .fields = {},
                                              .cascadeUpdate = (attributes & cascadeUpdateAttribute) != 0,
                                              .cascadeDelete = (attributes & cascadeDeleteAttribute) != 0}));
    });
  }
  STDMETHODIMP CreateQueryDef(BSTR name, BSTR sql, ::IQueryDef** query) override {
    return give(query, [&] {
      const QueryDef definition{fromBstr(name), fromBstr(sql)};
      database_->createQuery(definition);
      return makeQueryDef(database_, definition);
    });
  }
  STDMETHODIMP Close() override {
    return call([&] { database_->close(); });
  }

 protected:
  ~DatabaseObject() override { living().erase(database_.get()); }

 private:
  std::shared_ptr<Database> database_;
  int affected_ = 0;
};

}  // namespace

::IDatabase* databaseObject(const std::shared_ptr<Database>& database) {
  if (database == nullptr) return nullptr;
  const auto found = DatabaseObject::living().find(database.get());
  return found != DatabaseObject::living().end() ? found->second : new DatabaseObject(database);
}

::IQueryDef* makeQueryDef(std::shared_ptr<Database> database, const QueryDef& query) {
  return new QueryDefObject(std::move(database), query);
}

}  // namespace voxa::automation
