#include "app/qdb.h"

#include "access/access_group.h"
#include "access/badge_format.h"
#include "access/cardholder.h"
#include "data_objects.h"
#include "table_object.h"

namespace voxa::automation {

namespace {

/// The ITable interface of a registered table's object.
::ITable* contractOf(const ITable& table) {
  struct Maker {
    const char* name;
    IUnknown* (*object)();
  };
  static constexpr Maker makers[] = {
      {"Stations", [] { return static_cast<IUnknown*>(stationObject()); }},
      {"DailyPrograms", [] { return static_cast<IUnknown*>(dailyProgramObject()); }},
      {"Holidays", [] { return static_cast<IUnknown*>(holidaysObject()); }},
      {"WeeklyPrograms", [] { return static_cast<IUnknown*>(weeklyProgramObject()); }},
      {"Readers", [] { return static_cast<IUnknown*>(readerObject()); }},
      {"AccessGroups", [] { return static_cast<IUnknown*>(accessGroupObject()); }},
      {"Cardholders", [] { return static_cast<IUnknown*>(cardholderObject()); }},
      {"Journal", [] { return static_cast<IUnknown*>(journalObject()); }},
      {"Alarms", [] { return static_cast<IUnknown*>(alarmObject()); }},
  };
  for (const Maker& maker : makers) {
    if (table.Name() != maker.name) continue;
    ::ITable* contract = nullptr;
    IUnknown* const object = maker.object();
    if (SUCCEEDED(object->QueryInterface(__uuidof(::ITable), reinterpret_cast<void**>(&contract))))
      return contract;
  }
  throw Error(err::internalError, "Table " + table.Name() + " has no automation object");
}

class QdbObject final : public Object<::IQDB>, public Shared<QdbObject> {
 public:
  STDMETHODIMP get_DB(::IDatabase** database) override {
    return give(database, [] { return databaseObject(qdb().DB()); });
  }
  STDMETHODIMP get_Cardholders(::ICardholder** table) override { return give(table, cardholderObject); }
  STDMETHODIMP get_Readers(::IReader** table) override { return give(table, readerObject); }
  STDMETHODIMP get_DailyPrograms(::IDailyProgram** table) override { return give(table, dailyProgramObject); }
  STDMETHODIMP get_Holidays(::IHolidays** table) override { return give(table, holidaysObject); }
  STDMETHODIMP get_WeeklyPrograms(::IWeeklyProgram** table) override {
    return give(table, weeklyProgramObject);
  }
  STDMETHODIMP get_AccessGroups(::IAccessGroup** table) override { return give(table, accessGroupObject); }
  STDMETHODIMP get_Stations(::IStation** table) override { return give(table, stationObject); }
  STDMETHODIMP get_Alarms(::IAlarm** table) override { return give(table, alarmObject); }
  STDMETHODIMP get_BadgeFormat(::IBadgeFormat** table) override { return give(table, badgeFormatObject); }
  STDMETHODIMP get_Journal(::IJournal** table) override { return give(table, journalObject); }
  STDMETHODIMP tables(BSTR tableName, ::ITable** table) override {
    if (table == nullptr) return E_POINTER;
    *table = nullptr;
    return call([&] { *table = contractOf(qdb().tables(fromBstr(tableName))); });
  }
  STDMETHODIMP createDB(short* status) override {
    return give(status, [] { return qdb().createDB(); });
  }
  STDMETHODIMP openCommonDB(short* status) override {
    return give(status, [] { return qdb().openCommonDB(); });
  }
  STDMETHODIMP openDB(short* status) override {
    return give(status, [] { return qdb().openDB(); });
  }
  STDMETHODIMP saveDB(short* status) override {
    return give(status, [] { return qdb().saveDB(); });
  }
  STDMETHODIMP restoreDB(short* status) override {
    return give(status, [] { return qdb().restoreDB(); });
  }

 private:
  static QDB& qdb() { return library().QDB(); }
};

}  // namespace

::IQDB* qdbObject() {
  return QdbObject::get();
}

}  // namespace voxa::automation
