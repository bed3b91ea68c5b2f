#include "data_objects.h"
#include "table_object.h"

namespace voxa::automation {

STDMETHODIMP TableContract::get_Name(BSTR* name) {
  return give(name, [&] { return table_.Name(); });
}

STDMETHODIMP TableContract::put_Name(BSTR name) {
  return call([&] { table_.Name(fromBstr(name)); });
}

STDMETHODIMP TableContract::getDB(::IDatabase** database) {
  return give(database, [&] { return databaseObject(table_.getDB()); });
}

STDMETHODIMP TableContract::create(short* status) {
  return give(status, [&] { return table_.create(); });
}

STDMETHODIMP TableContract::createFields(::ITableDef* td) {
  return call([&] { table_.createFields(definitionBehind(td)); });
}

STDMETHODIMP TableContract::createIndexes(::ITableDef* td) {
  return call([&] { table_.createIndexes(definitionBehind(td)); });
}

STDMETHODIMP TableContract::createRelations(short* status) {
  return give(status, [&] {
    return library().attempt({"msgCantCreateDBRel", table_.Name() + ".createRelations"},
                             [&] { return table_.createRelations(); });
  });
}

STDMETHODIMP TableContract::insertDefaultRecs() {
  return call([&] {
    (void)library().attempt({"msgUnexpecErr", table_.Name() + ".insertDefaultRecs"},
                            [&] { table_.insertDefaultRecs(); });
  });
}

STDMETHODIMP TableContract::setTableFlagsD(VARIANT_BOOL value, short* status) {
  return give(status, [&] { return table_.setTableFlagsD(value != 0); });
}

}  // namespace voxa::automation
