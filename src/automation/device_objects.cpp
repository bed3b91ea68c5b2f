#include "access/alarm.h"
#include "comm/reader.h"
#include "comm/station.h"
#include "table_object.h"

namespace voxa::automation {

namespace {

class StationObject final : public TableObject<StationObject, ::IStation, &QDB::Stations> {
 public:
  STDMETHODIMP getFreeId(short* Id) override {
    return give(Id, [] { return table().getFreeId(); });
  }
  STDMETHODIMP getId(BSTR stationName, VARIANT_BOOL* isActive, short* Id) override {
    return give(Id, [&] {
      Flag active(isActive);
      return table().getId(fromBstr(stationName), &active.value());
    });
  }
  STDMETHODIMP getName(short Id, VARIANT_BOOL noMessage, BSTR* name) override {
    return give(name, [&] { return table().getName(Id, noMessage != 0); });
  }
  STDMETHODIMP isActive(short StationID, VARIANT_BOOL* value) override {
    return give(value, [&] { return table().isActive(StationID); });
  }
  STDMETHODIMP getActiveStationOnPort(short comPort, BSTR* name) override {
    return give(name, [&] { return table().getActiveStationOnPort(comPort); });
  }
  STDMETHODIMP setActive(short Id, VARIANT_BOOL active) override {
    return call([&] { table().setActive(Id, active != 0); });
  }
  STDMETHODIMP findConnected(BSTR* name) override {
    return give(name, [] { return table().findConnected(); });
  }
  STDMETHODIMP GetCompar(short Id, short* ControllerAddr, BSTR* text) override {
    if (ControllerAddr == nullptr) return E_POINTER;
    return give(text, [&] { return table().GetCompar(Id, *ControllerAddr); });
  }
  STDMETHODIMP createIniFile(short Id, short timeOutDelay, long Speed, short* status) override {
    return give(status, [&] { return table().createIniFile(Id, timeOutDelay, Speed); });
  }
  STDMETHODIMP SendSpeed(short* StationID, long* Speed) override {
    if (StationID == nullptr || Speed == nullptr) return E_POINTER;
    return call([&] { table().SendSpeed(*StationID, *Speed); });
  }
};

class ReaderObject final : public TableObject<ReaderObject, ::IReader, &QDB::Readers> {
 public:
  STDMETHODIMP getFreeId(short* Id) override {
    return give(Id, [] { return table().getFreeId(); });
  }
  STDMETHODIMP getControllerAddr(BSTR readerName, short* StationID, short* ControllerAddr,
                                 short* status) override {
    if (StationID == nullptr || ControllerAddr == nullptr) return E_POINTER;
    return give(status,
                [&] { return table().getControllerAddr(fromBstr(readerName), *StationID, *ControllerAddr); });
  }
  STDMETHODIMP getControllerAddrID(long readerId, short* StationID, short* ControllerAddr,
                                   short* status) override {
    if (StationID == nullptr || ControllerAddr == nullptr) return E_POINTER;
    return give(status, [&] { return table().getControllerAddrID(readerId, *StationID, *ControllerAddr); });
  }
  STDMETHODIMP getId(short StationID, short ControllerAddr, short readerPos, VARIANT_BOOL noMessage,
                     short* Id) override {
    return give(Id, [&] { return table().getId(StationID, ControllerAddr, readerPos, noMessage != 0); });
  }
  STDMETHODIMP getIdByName(BSTR Name, short* Id) override {
    return give(Id, [&] { return table().getIdByName(fromBstr(Name)); });
  }
  STDMETHODIMP getName(short Id, VARIANT_BOOL noMessage, BSTR* name) override {
    return give(name, [&] { return table().getName(Id, noMessage != 0); });
  }
};

class AlarmObject final : public TableObject<AlarmObject, ::IAlarm, &QDB::Alarms> {
 public:
  STDMETHODIMP getFreeId(short* Id) override {
    return give(Id, [] { return table().getFreeId(); });
  }
};

}  // namespace

::IStation* stationObject() {
  return StationObject::get();
}
::IReader* readerObject() {
  return ReaderObject::get();
}
::IAlarm* alarmObject() {
  return AlarmObject::get();
}

}  // namespace voxa::automation
