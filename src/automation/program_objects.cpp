#include "journal/journal.h"
#include "programs/daily_program.h"
#include "programs/holidays.h"
#include "programs/weekly_program.h"
#include "table_object.h"

namespace voxa::automation {

namespace {

class WeeklyProgramObject final
    : public TableObject<WeeklyProgramObject, ::IWeeklyProgram, &QDB::WeeklyPrograms> {
 public:
  STDMETHODIMP get_DefaultName(BSTR* name) override {
    return give(name, [] { return table().DefaultName(); });
  }
  STDMETHODIMP get_NeverName(BSTR* name) override {
    return give(name, [] { return table().NeverName(); });
  }
  STDMETHODIMP getFreeId(BSTR ProgType, short* ProgNum) override {
    return give(ProgNum, [&] { return table().getFreeId(fromBstr(ProgType)); });
  }
  STDMETHODIMP getName(BSTR ProgType, short ProgNum, BSTR* name) override {
    return give(name, [&] { return table().getName(fromBstr(ProgType), ProgNum); });
  }
  STDMETHODIMP getProgNum(BSTR ProgType, BSTR Name, short* ProgNum) override {
    return give(ProgNum, [&] { return table().getProgNum(fromBstr(ProgType), fromBstr(Name)); });
  }
  STDMETHODIMP download(BSTR ProgType, short ProgNum, ::ComponentType compType, BSTR compName, short Params,
                        VARIANT_BOOL* AlreadyComTested, short* status) override {
    return give(status, [&] {
      Flag tested(AlreadyComTested);
      return table().download(fromBstr(ProgType), ProgNum, componentOf(compType), fromBstr(compName), Params,
                              &tested.value());
    });
  }
  STDMETHODIMP generalDownload(::ComponentType compType, BSTR compName, BSTR whereExpr,
                               VARIANT_BOOL* AlreadyComTested, short* status) override {
    return give(status, [&] {
      Flag tested(AlreadyComTested);
      return table().generalDownload(componentOf(compType), fromBstr(compName), fromBstr(whereExpr),
                                     &tested.value());
    });
  }
};

class DailyProgramObject final
    : public TableObject<DailyProgramObject, ::IDailyProgram, &QDB::DailyPrograms> {
 public:
  STDMETHODIMP getFreeId(short* Id) override {
    return give(Id, [] { return table().getFreeId(); });
  }
  STDMETHODIMP download(short Id, ::ComponentType compType, BSTR compName, short Params,
                        VARIANT_BOOL* AlreadyComTested, short* status) override {
    return give(status, [&] {
      Flag tested(AlreadyComTested);
      return table().download(Id, componentOf(compType), fromBstr(compName), Params, &tested.value());
    });
  }
  STDMETHODIMP generalDownload(::ComponentType compType, BSTR compName, VARIANT_BOOL* AlreadyComTested,
                               short* status) override {
    return give(status, [&] {
      Flag tested(AlreadyComTested);
      return table().generalDownload(componentOf(compType), fromBstr(compName), &tested.value());
    });
  }
};

class HolidaysObject final : public TableObject<HolidaysObject, ::IHolidays, &QDB::Holidays> {
 public:
  STDMETHODIMP getFreeId(VARIANT_BOOL* withNewVRMD1, short* Id) override {
    return give(Id, [&] {
      Flag newModel(withNewVRMD1);
      return table().getFreeId(newModel.value());
    });
  }
  STDMETHODIMP download(short Id, ::ComponentType compType, BSTR compName, short Params,
                        short* status) override {
    return give(status,
                [&] { return table().download(Id, componentOf(compType), fromBstr(compName), Params); });
  }
  STDMETHODIMP delete_(short Id, short* status) override {
    return give(status, [&] { return table().delete_(Id); });
  }
  STDMETHODIMP generalDownload(::ComponentType compType, BSTR compName, VARIANT_BOOL* AlreadyComTested,
                               short* status) override {
    return give(status, [&] {
      Flag tested(AlreadyComTested);
      return table().generalDownload(componentOf(compType), fromBstr(compName), &tested.value());
    });
  }
};

class JournalObject final : public TableObject<JournalObject, ::IJournal, &QDB::Journal> {
 public:
  STDMETHODIMP readTransactions(short compType, BSTR compName, short* status) override {
    return give(status, [&] {
      return table().readTransactions(static_cast<ComponentType>(compType), fromBstr(compName));
    });
  }
  STDMETHODIMP readAuto(short* status) override {
    return give(status, [] { return table().readAuto(); });
  }
  STDMETHODIMP getLastCardCode(BSTR readerName, BSTR* code) override {
    return give(code, [&] { return table().getLastCardCode(fromBstr(readerName)); });
  }
  STDMETHODIMP openDB(short* status) override {
    return give(status, [] { return table().openDB(); });
  }
  STDMETHODIMP createDB(short* status) override {
    return give(status, [] { return table().createDB(); });
  }
  STDMETHODIMP getFreeId(short* Id) override {
    return give(Id, [] { return table().getFreeId(); });
  }
};

}  // namespace

::IWeeklyProgram* weeklyProgramObject() {
  return WeeklyProgramObject::get();
}
::IDailyProgram* dailyProgramObject() {
  return DailyProgramObject::get();
}
::IHolidays* holidaysObject() {
  return HolidaysObject::get();
}
::IJournal* journalObject() {
  return JournalObject::get();
}

}  // namespace voxa::automation
