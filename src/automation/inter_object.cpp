#include "app/library.h"
#include "comm/inter.h"

#include "service_objects.h"

namespace voxa::automation {

namespace {

class InterObject final : public Object<::IInter> {
 public:
  STDMETHODIMP readDate(short StationID, short ControllerAddr, short* result) override {
    return give(result, [&] { return inter_.readDate(StationID, ControllerAddr); });
  }
  STDMETHODIMP connect(short StationID, short* result) override {
    return give(result, [&] { return inter_.connect(StationID); });
  }
  STDMETHODIMP disconnect(short StationID, short* result) override {
    return give(result, [&] { return inter_.disconnect(StationID); });
  }
  STDMETHODIMP sendDate(short StationID, short ControllerAddr, short* result) override {
    return give(result, [&] { return inter_.sendDate(StationID, ControllerAddr); });
  }
  STDMETHODIMP readStatus(short StationID, short ControllerAddr, short* result) override {
    return give(result, [&] { return inter_.readStatus(StationID, ControllerAddr); });
  }
  STDMETHODIMP sendClear(short StationID, short ControllerAddr, short* result) override {
    return give(result, [&] { return inter_.sendClear(StationID, ControllerAddr); });
  }
  STDMETHODIMP sendCommand(short StationID, short ControllerAddr, short* result) override {
    return give(result, [&] { return inter_.sendCommand(StationID, ControllerAddr); });
  }
  STDMETHODIMP resetReadingPointer(short StationID, short ControllerAddr, short* result) override {
    return give(result, [&] { return inter_.resetReadingPointer(StationID, ControllerAddr); });
  }
  STDMETHODIMP readMemory(short StationID, short ControllerAddr, short* result) override {
    return give(result, [&] { return inter_.readMemory(StationID, ControllerAddr); });
  }

 private:
  Inter inter_{library()};
};

}  // namespace

IUnknown* makeInter() {
  return static_cast<::IInter*>(new InterObject);
}

}  // namespace voxa::automation
