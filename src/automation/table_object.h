#pragma once

#include "app/library.h"
#include "app/qdb.h"
#include "enumerations.h"
#include "service_objects.h"
#include "tables/itable.h"

namespace voxa::automation {

/// The second interface of a table object: ITable.
class TableContract final : public Dual<::ITable> {
 public:
  /// object: the object that this interface belongs to. table: the table behind both.
  TableContract(IUnknown& object, voxa::ITable& table) : object_(object), table_(table) {}

  STDMETHODIMP QueryInterface(REFIID wanted, void** out) override {
    return object_.QueryInterface(wanted, out);
  }
  STDMETHODIMP_(ULONG) AddRef() override { return object_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return object_.Release(); }

  STDMETHODIMP get_Name(BSTR* name) override;
  STDMETHODIMP put_Name(BSTR name) override;
  STDMETHODIMP getDB(::IDatabase** database) override;
  STDMETHODIMP create(short* status) override;
  STDMETHODIMP createFields(::ITableDef* td) override;
  STDMETHODIMP createIndexes(::ITableDef* td) override;
  STDMETHODIMP createRelations(short* status) override;
  STDMETHODIMP insertDefaultRecs() override;
  STDMETHODIMP setTableFlagsD(VARIANT_BOOL value, short* status) override;

 private:
  IUnknown& object_;
  voxa::ITable& table_;
};

/// A table object. It has its own interface and ITable, over the table that an accessor of QDB hands out. Its
/// own has the members of ITable, too, since a caller by names sees that one alone.
template <typename Class, typename Interface, auto accessor>
class TableObject : public Object<Interface>, public Shared<Class> {
 public:
  STDMETHODIMP get_Name(BSTR* name) override {
    return this->give(name, [] { return table().Name(); });
  }
  STDMETHODIMP setTableFlagsD(VARIANT_BOOL flagD, short* status) override {
    return this->give(status, [&] { return table().setTableFlagsD(flagD != 0); });
  }
  STDMETHODIMP put_Name(BSTR name) override { return contract_.put_Name(name); }
  STDMETHODIMP getDB(::IDatabase** database) override { return contract_.getDB(database); }
  STDMETHODIMP create(short* status) override { return contract_.create(status); }
  STDMETHODIMP createFields(::ITableDef* td) override { return contract_.createFields(td); }
  STDMETHODIMP createIndexes(::ITableDef* td) override { return contract_.createIndexes(td); }
  STDMETHODIMP createRelations(short* status) override { return contract_.createRelations(status); }
  STDMETHODIMP insertDefaultRecs() override { return contract_.insertDefaultRecs(); }

 protected:
  [[nodiscard]] static auto& table() { return (library().QDB().*accessor)(); }

  void* furtherInterface(REFIID wanted) override {
    return wanted == __uuidof(::ITable) ? static_cast<::ITable*>(&contract_) : nullptr;
  }

 private:
  TableContract contract_{*static_cast<Interface*>(this), table()};
};

// The table objects, without a counted reference. A caller creates them by name or finds them in QDB.
[[nodiscard]] ::ICardholder* cardholderObject();
[[nodiscard]] ::IReader* readerObject();
[[nodiscard]] ::IDailyProgram* dailyProgramObject();
[[nodiscard]] ::IHolidays* holidaysObject();
[[nodiscard]] ::IWeeklyProgram* weeklyProgramObject();
[[nodiscard]] ::IAccessGroup* accessGroupObject();
[[nodiscard]] ::IStation* stationObject();
[[nodiscard]] ::IAlarm* alarmObject();
[[nodiscard]] ::IBadgeFormat* badgeFormatObject();
[[nodiscard]] ::IJournal* journalObject();

}  // namespace voxa::automation
