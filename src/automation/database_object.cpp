#include <wrl/client.h>

#include <map>

#include "app/library.h"
#include "data_objects.h"
#include "engines/dao/engine.h"
#include "open_options.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

class DatabaseObject final : public Object<::IDatabase> {
 public:
  /// isGuest: a second object of a database that others have open. It is not given to others, and closing it
  /// leaves the database as it is.
  DatabaseObject(std::shared_ptr<Database> database, bool isGuest)
      : database_(std::move(database)), isGuest_(isGuest) {
    if (!isGuest_) living()[database_.get()] = this;
  }
  DatabaseObject(const DatabaseObject&) = delete;
  DatabaseObject& operator=(const DatabaseObject&) = delete;

  static std::map<Database*, DatabaseObject*>& living() {
    static std::map<Database*, DatabaseObject*> objects;
    return objects;
  }

  /// Who calls by names, and who asks for an interface of the installed library, gets that library's own
  /// object when it serves the file.
  STDMETHODIMP QueryInterface(REFIID wanted, void** out) override {
    IDispatch* const installed = database_ == nullptr ? nullptr : daoObject(*database_);
    const bool isOurs = wanted != IID_IDispatch && SUCCEEDED(Object::QueryInterface(wanted, out));
    if (isOurs || installed == nullptr) return isOurs ? S_OK : Object::QueryInterface(wanted, out);
    return installed->QueryInterface(wanted, out);
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return held()->name(); });
  }
  STDMETHODIMP OpenRecordset(BSTR source, VARIANT type, VARIANT options, ::IRecordset** rows) override {
    return give(rows, [&] {
      return makeRecordset(held(), held()->openRecordset(fromBstr(source), {}, rowOptions(type, options)));
    });
  }
  STDMETHODIMP Execute(BSTR sql, VARIANT options) override {
    return call([&] {
      checkExecuteOptions(options);
      affected_ = held()->execute(fromBstr(sql));
    });
  }
  STDMETHODIMP get_RecordsAffected(long* rows) override {
    return give(rows, [&] { return std::int32_t{affected_}; });
  }
  STDMETHODIMP get_TableDefs(::ITableDefs** tables) override {
    return give(tables, [&] {
      const auto database = held();
      const auto nameAt = [database](std::size_t i) { return database->tableNames().at(i); };
      return makeCollection<::ITableDefs, ::ITableDef>({
          .count = [database] { return database->tableNames().size(); },
          .item = [database, nameAt](std::size_t i) -> IDispatch* {
            return makeTableDef(database->tableDef(nameAt(i)), database);
          },
          .find =
              [database, nameAt](const std::string& name) {
                return findName(name, database->tableNames().size(), nameAt);
              },
          .append = [database](IDispatch* object) { appendTable(database, object); },
          .remove = [database](const std::string& name) { database->deleteTable(name); },
      });
    });
  }
  STDMETHODIMP get_QueryDefs(::IQueryDefs** queries) override {
    return give(queries, [&] {
      const auto database = held();
      return makeCollection<::IQueryDefs, ::IQueryDef>({
          .count = [database] { return database->queries().size(); },
          .item = [database](std::size_t i) -> IDispatch* {
            return makeQueryDef(database, database->queries().at(i), true);
          },
          .find = [database](const std::string& name) { return findName(name, database->queries()); },
          .append = appendQuery,
          .remove = [database](const std::string& name) { database->deleteQuery(name); },
      });
    });
  }
  STDMETHODIMP get_Relations(::IRelations** relations) override {
    return give(relations, [&] {
      const auto database = held();
      return makeCollection<::IRelations, ::IRelation>({
          .count = [database] { return database->relations().size(); },
          .item = [database](std::size_t i) -> IDispatch* {
            return makeRelation(database->relations().at(i), true);
          },
          .find = [database](const std::string& name) { return findName(name, database->relations()); },
          .append = [database](IDispatch* object) { appendRelation(*database, object); },
          .remove = [database](const std::string& name) { database->deleteRelation(name); },
      });
    });
  }
  STDMETHODIMP get_Errors(::IErrors** errors) override {
    return give(errors, [] { return makeErrors(library().engine()); });
  }
  STDMETHODIMP CreateTableDef(BSTR name, ::ITableDef** table) override {
    return give(table, [&] { return makeTableDef({.name = fromBstr(name), .fields = {}, .indexes = {}}); });
  }
  STDMETHODIMP CreateRelation(BSTR name, BSTR table, BSTR foreignTable, long attributes,
                              ::IRelation** relation) override {
    return give(relation, [&] {
      return makeRelation({.name = fromBstr(name),
                           .table = fromBstr(table),
                           .foreignTable = fromBstr(foreignTable),
                           .fields = {},
                           .cascadeUpdate = (attributes & cascadeUpdateAttribute) != 0,
                           .cascadeDelete = (attributes & cascadeDeleteAttribute) != 0},
                          false);
    });
  }
  STDMETHODIMP CreateQueryDef(BSTR name, BSTR sql, ::IQueryDef** query) override {
    return give(query, [&] {
      const QueryDef query{fromBstr(name), fromBstr(sql)};
      const bool isStored = !query.name.empty() && !query.sql.empty();
      if (isStored) held()->createQuery(query);
      return makeQueryDef(held(), query, isStored);
    });
  }
  STDMETHODIMP CreateProperty(BSTR name, short type, VARIANT value, VARIANT_BOOL,
                              ::IProperty** property) override {
    return give(property, [&] { return makeOwnProperty(fromBstr(name), type, fromVariant(value)); });
  }
  STDMETHODIMP Close() override {
    return call([&] {
      if (isGuest_) {
        database_ = nullptr;
      } else {
        held()->close();
      }
    });
  }
  STDMETHODIMP get__TableDefs(::ITableDefs** tables) override { return get_TableDefs(tables); }
  STDMETHODIMP get_Version(BSTR* version) override {
    return give(version, [] { return std::string("4.0"); });
  }
  STDMETHODIMP get_Connect(BSTR* text) override {
    return give(text, [] { return std::string(); });
  }
  STDMETHODIMP get_Updatable(VARIANT_BOOL* updatable) override {
    return give(updatable, [&] { return held()->updatable(); });
  }
  STDMETHODIMP get_Transactions(VARIANT_BOOL* transactions) override {
    return give(transactions, [] { return true; });
  }
  STDMETHODIMP get_CollatingOrder(long* order) override {
    return give(order, [] { return generalOrder; });
  }
  STDMETHODIMP get_QueryTimeout(short* seconds) override {
    return give(seconds, [&] { return timeout_; });
  }
  STDMETHODIMP put_QueryTimeout(short seconds) override {
    timeout_ = seconds;
    return S_OK;
  }
  STDMETHODIMP get_Parent(::IWorkspace** workspace) override { return give(workspace, workspaceObject); }
  STDMETHODIMP get_Recordsets(::IRecordsets** recordsets) override {
    return give(recordsets, [&] { return openRecordsets(held()); });
  }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return give(properties, [&] { return makeProperties(this, held()); });
  }

 protected:
  ~DatabaseObject() override {
    if (!isGuest_) living().erase(database_.get());
  }

 private:
  [[nodiscard]] const std::shared_ptr<Database>& held() const {
    if (database_ == nullptr) throw Error(err::dbInvalidObject, "The database is closed");
    return database_;
  }

  std::shared_ptr<Database> database_;
  bool isGuest_;
  Microsoft::WRL::ComPtr<::IWorkspace> workspace_{workspaceObject()};
  int affected_ = 0;
  std::int16_t timeout_ = 60;
};

}  // namespace

::IDatabase* databaseObject(const std::shared_ptr<Database>& database) {
  if (database == nullptr) return nullptr;
  const auto found = DatabaseObject::living().find(database.get());
  return found != DatabaseObject::living().end() ? found->second : new DatabaseObject(database, false);
}

::IDatabase* guestObject(const std::shared_ptr<Database>& database) {
  return new DatabaseObject(database, true);
}

}  // namespace voxa::automation
