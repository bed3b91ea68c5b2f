#include "app/controllers.h"

#include "app/library.h"
#include "conversion.h"
#include "platform/clock.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

std::optional<DateTime> optionalMoment(const VARIANT& at) {
  if (isMissing(at)) return {};
  return fromVariant(at).toDateTime(&library().clock());
}

class ControllersObject final : public Object<::IControllers> {
 public:
  STDMETHODIMP plan(BSTR station, BSTR reader, long* count) override {
    return give(count, [&] { return controllers_.plan(fromBstr(station), fromBstr(reader)); });
  }
  STDMETHODIMP itemController(long index, BSTR* text) override {
    return give(text, [&] { return controllers_.item(index).controller; });
  }
  STDMETHODIMP itemThing(long index, BSTR* text) override {
    return give(text, [&] { return controllers_.item(index).thing; });
  }
  STDMETHODIMP itemAction(long index, BSTR* text) override {
    return give(text, [&] { return controllers_.item(index).action; });
  }
  STDMETHODIMP itemReason(long index, BSTR* text) override {
    return give(text, [&] { return controllers_.item(index).reason; });
  }
  STDMETHODIMP download(BSTR station, BSTR reader, VARIANT_BOOL full, VARIANT_BOOL dial,
                        short* status) override {
    return give(status, [&] {
      return controllers_.download(fromBstr(station), fromBstr(reader), full != 0, dial != 0);
    });
  }
  STDMETHODIMP downloadCard(long cardNum, short* status) override {
    return give(status, [&] { return controllers_.downloadCard(cardNum); });
  }
  STDMETHODIMP replaced(BSTR station, short ControllerAddr, VARIANT_BOOL usedElsewhere,
                        short* status) override {
    return give(status,
                [&] { return controllers_.replaced(fromBstr(station), ControllerAddr, usedElsewhere != 0); });
  }
  STDMETHODIMP mayOpen(BSTR card, BSTR door, VARIANT at, VARIANT_BOOL* opens) override {
    return give(opens,
                [&] { return controllers_.mayOpen(fromBstr(card), fromBstr(door), optionalMoment(at)); });
  }
  STDMETHODIMP whyOpen(BSTR card, BSTR door, VARIANT at, BSTR* text) override {
    return give(text,
                [&] { return controllers_.whyOpen(fromBstr(card), fromBstr(door), optionalMoment(at)); });
  }
  STDMETHODIMP whoOpens(BSTR door, VARIANT at, BSTR* text) override {
    return give(text, [&] { return controllers_.whoOpens(fromBstr(door), optionalMoment(at)); });
  }
  STDMETHODIMP whatOpens(BSTR card, VARIANT at, BSTR* text) override {
    return give(text, [&] { return controllers_.whatOpens(fromBstr(card), optionalMoment(at)); });
  }

 private:
  voxa::Controllers controllers_{library()};
};

}  // namespace

IUnknown* makeControllers() {
  return static_cast<::IControllers*>(new ControllersObject);
}

}  // namespace voxa::automation
