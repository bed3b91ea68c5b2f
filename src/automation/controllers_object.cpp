#include "app/library.h"
#include "conversion.h"
#include "platform/clock.h"
#include "service_objects.h"
#include "work/plan_service.h"

namespace voxa::automation {

namespace {

DateTime momentOf(const VARIANT& at) {
  return isMissing(at) ? library().clock().now() : fromVariant(at).toDateTime();
}

class ControllersObject final : public Object<::IControllers> {
 public:
  STDMETHODIMP plan(BSTR station, BSTR reader, long* count) override {
    return give(count, [&] { return service_.plan(fromBstr(station), fromBstr(reader)); });
  }
  STDMETHODIMP itemController(long index, BSTR* text) override {
    return give(text, [&] { return item(index).controller; });
  }
  STDMETHODIMP itemThing(long index, BSTR* text) override {
    return give(text, [&] { return item(index).thing; });
  }
  STDMETHODIMP itemAction(long index, BSTR* text) override {
    return give(text, [&] { return item(index).action; });
  }
  STDMETHODIMP itemReason(long index, BSTR* text) override {
    return give(text, [&] { return item(index).reason; });
  }
  STDMETHODIMP download(BSTR station, BSTR reader, VARIANT_BOOL full, VARIANT_BOOL dial,
                        short* status) override {
    return give(status,
                [&] { return service_.download(fromBstr(station), fromBstr(reader), full != 0, dial != 0); });
  }
  STDMETHODIMP downloadCard(long cardNum, short* status) override {
    return give(status, [&] { return service_.downloadCard(cardNum); });
  }
  STDMETHODIMP replaced(BSTR station, short ControllerAddr, VARIANT_BOOL usedElsewhere,
                        short* status) override {
    return give(status,
                [&] { return service_.replaced(fromBstr(station), ControllerAddr, usedElsewhere != 0); });
  }
  STDMETHODIMP mayOpen(BSTR card, BSTR door, VARIANT at, VARIANT_BOOL* opens) override {
    return give(opens, [&] { return service_.mayOpen(fromBstr(card), fromBstr(door), momentOf(at)); });
  }
  STDMETHODIMP whyOpen(BSTR card, BSTR door, VARIANT at, BSTR* text) override {
    return give(text, [&] { return service_.whyOpen(fromBstr(card), fromBstr(door), momentOf(at)); });
  }
  STDMETHODIMP whoOpens(BSTR door, VARIANT at, BSTR* text) override {
    return give(text, [&] { return service_.whoOpens(fromBstr(door), momentOf(at)); });
  }
  STDMETHODIMP whatOpens(BSTR card, VARIANT at, BSTR* text) override {
    return give(text, [&] { return service_.whatOpens(fromBstr(card), momentOf(at)); });
  }

 private:
  [[nodiscard]] PlanService::Item item(long index) const {
    const auto& items = service_.items();
    const bool there = index >= 0 && static_cast<std::size_t>(index) < items.size();
    return there ? items[static_cast<std::size_t>(index)] : PlanService::Item();
  }

  PlanService service_{library()};
};

}  // namespace

IUnknown* makeControllers() {
  return static_cast<::IControllers*>(new ControllersObject);
}

}  // namespace voxa::automation
