#include "comm/com.h"

#include "app/library.h"
#include "enumerations.h"
#include "local_server.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

/// An optional 16-bit argument in a variant.
std::optional<std::int16_t> optionalNumber(const VARIANT* variant) {
  if (variant == nullptr || isMissing(*variant)) return {};
  return fromVariant(*variant).toInt16();
}

class ComObject final : public Object<::ICom>, public Shared<ComObject> {
 public:
  STDMETHODIMP get_errorList(BSTR* text) override {
    return give(text, [] { return com().errorList; });
  }
  STDMETHODIMP put_errorList(BSTR text) override {
    return call([&] { com().errorList = fromBstr(text); });
  }
  STDMETHODIMP get_pDailyPrograms4Zones(short* value) override {
    return give(value, [] { return com().pDailyPrograms4Zones; });
  }
  STDMETHODIMP put_pDailyPrograms4Zones(short value) override {
    return call([&] { com().pDailyPrograms4Zones = value; });
  }
  STDMETHODIMP get_CheckDelay(short* value) override {
    return give(value, [] { return com().CheckDelay; });
  }
  STDMETHODIMP put_CheckDelay(short value) override {
    return call([&] { com().CheckDelay = value; });
  }
  STDMETHODIMP get_Chemin(BSTR* path) override {
    return give(path, [] { return com().Chemin; });
  }
  STDMETHODIMP put_Chemin(BSTR path) override {
    return call([&] { setWorkingFolder(com().Chemin, fromBstr(path)); });
  }
  STDMETHODIMP get_MustShowComStatus(VARIANT_BOOL* value) override {
    return give(value, [] { return com().MustShowComStatus; });
  }
  STDMETHODIMP put_MustShowComStatus(VARIANT_BOOL value) override {
    return call([&] { com().MustShowComStatus = value != 0; });
  }
  STDMETHODIMP get_IniFile(BSTR* path) override {
    return give(path, [] { return com().IniFile; });
  }
  STDMETHODIMP put_IniFile(BSTR path) override {
    return call([&] { setPath(com().IniFile, fromBstr(path)); });
  }
  STDMETHODIMP get_AppDB(BSTR* path) override {
    return give(path, [] { return com().AppDB; });
  }
  STDMETHODIMP put_AppDB(BSTR path) override {
    return call([&] { setPath(com().AppDB, fromBstr(path)); });
  }
  STDMETHODIMP get_logFileName(BSTR* path) override {
    return give(path, [] { return com().logFileName; });
  }
  STDMETHODIMP put_logFileName(BSTR path) override {
    return call([&] { setPath(com().logFileName, fromBstr(path)); });
  }
  STDMETHODIMP get_inhibitCom(VARIANT_BOOL* value) override {
    return give(value, [] { return com().inhibitCom; });
  }
  STDMETHODIMP put_inhibitCom(VARIANT_BOOL value) override {
    return call([&] { com().inhibitCom = value != 0; });
  }
  STDMETHODIMP get_writeLog(VARIANT_BOOL* value) override {
    return give(value, [] { return com().writeLog; });
  }
  STDMETHODIMP put_writeLog(VARIANT_BOOL value) override {
    return call([&] { com().writeLog = value != 0; });
  }

  STDMETHODIMP Send(::ComCommandsEnum command, short StationID, short ControllerAddr, VARIANT_BOOL* Silence,
                    VARIANT_BOOL* Autodetection, short* result) override {
    return give(result, [&] {
      Flag silence(Silence);
      Flag autodetection(Autodetection);
      return com().Send(commandOf(command), StationID, ControllerAddr, silence.value(),
                        autodetection.value());
    });
  }
  STDMETHODIMP TestSend(short StationID, short controllerID, VARIANT_BOOL* value) override {
    return give(value, [&] { return com().TestSend(StationID, controllerID); });
  }
  STDMETHODIMP TestCom(::ComponentType compType, BSTR compName, VARIANT_BOOL* value) override {
    return give(value, [&] { return com().TestCom(componentOf(compType), fromBstr(compName)); });
  }
  STDMETHODIMP MsgChooseAbort(::ComponentType compType, BSTR compName, VARIANT_BOOL* value) override {
    return give(value, [&] { return com().MsgChooseAbort(componentOf(compType), fromBstr(compName)); });
  }
  STDMETHODIMP UpdateComStatus(VARIANT* StationID, VARIANT* controllerID) override {
    return call([&] { com().UpdateComStatus(optionalNumber(StationID), optionalNumber(controllerID)); });
  }
  STDMETHODIMP updateDBComStatus(short StationID, short controllerID, short Status, DATE mDate) override {
    return call([&] { com().updateDBComStatus(StationID, controllerID, Status, DateTime{mDate}); });
  }
  STDMETHODIMP getName(short StationID, short ControllerAddr, BSTR* name) override {
    return give(name, [&] { return com().getName(StationID, ControllerAddr); });
  }
  STDMETHODIMP ResetRSOUT(short StationID, short ControllerAddr, short* result) override {
    return give(result, [&] { return com().ResetRSOUT(StationID, ControllerAddr); });
  }
  STDMETHODIMP popErrorList(BSTR* text) override {
    return give(text, [] { return com().popErrorList(); });
  }
  STDMETHODIMP sendToReader(::ComCommandsEnum command, BSTR readerName, short* result) override {
    return give(result, [&] { return com().sendToReader(commandOf(command), fromBstr(readerName)); });
  }
  STDMETHODIMP sendToStation(::ComCommandsEnum command, BSTR stationName, short* result) override {
    return give(result, [&] { return com().sendToStation(commandOf(command), fromBstr(stationName)); });
  }
  STDMETHODIMP sendBrodcast(::ComCommandsEnum command, short* result) override {
    return give(result, [&] { return com().sendBrodcast(commandOf(command)); });
  }
  STDMETHODIMP sendToActiveStations(::ComCommandsEnum command, short* result) override {
    return give(result, [&] { return com().sendToActiveStations(commandOf(command)); });
  }
  STDMETHODIMP sendToComp(::ComCommandsEnum command, ::ComponentType compType, BSTR compName,
                          short* result) override {
    return give(result, [&] {
      return com().sendToComp(commandOf(command), componentOf(compType), fromBstr(compName));
    });
  }
  STDMETHODIMP sendCommand(BSTR commandCode, ::ComponentType compType, BSTR compName,
                           short* result) override {
    return give(result, [&] {
      return com().sendCommand(fromBstr(commandCode), componentOf(compType), fromBstr(compName));
    });
  }

 private:
  static Com& com() { return library().Com(); }
};

}  // namespace

::ICom* comObject() {
  return ComObject::get();
}

}  // namespace voxa::automation
