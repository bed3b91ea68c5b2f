#include "work/plan_service.h"

#include "work/controllers.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

namespace {

std::string sentence(const AccessAnswer& answer) {
  return std::string(answer.opens ? "opens: " : "does not open: ") + reasonText(answer) +
         ". The controller knows it: " + knownText(answer);
}

}  // namespace

template <typename Body>
std::int16_t PlanService::attempt(const char* method, Body body) {
  return installation_.attempt({"msgUnexpecErr", method}, [&]() -> std::int16_t {
    try {
      return body();
    } catch (const Refusal& refusal) {
      std::string text = refusal.what();
      if (!refusal.mnemonic().empty()) text = installation_.messages().read(refusal.mnemonic()) + " " + text;
      throw Error(err::invalidArgument, text);
    }
  });
}

void PlanService::take(const std::string& controller, const std::vector<PlanItem>& items,
                       const std::vector<LeftOut>& rows) {
  for (const PlanItem& item : items)
    items_.push_back({controller, nameOf(item.kind, item.number), textOf(item.action), textOf(item.reason)});
  for (const LeftOut& row : rows) items_.push_back({controller, row.row, "leave out", row.reason});
}

std::int32_t PlanService::plan(const std::string& station, const std::string& reader) {
  items_.clear();
  const std::int16_t failed = attempt("Controllers.plan", [&]() -> std::int16_t {
    const WholePlan whole = planAll(installation_, {{}, placesOf(installation_, station, reader), false});
    for (const PlannedController& controller : whole.controllers)
      take(controller.name, controller.plan.items, controller.plan.leftOut);
    take("", {}, whole.leftOut);
    return 0;
  });
  return failed != 0 ? -1 : static_cast<std::int32_t>(items_.size());
}

std::int16_t PlanService::carryOut(const char* method, const CarryOut& how) {
  items_.clear();
  return attempt(method, [&]() -> std::int16_t {
    const CarriedOutPlan carried = voxa::carryOut(installation_, how);
    installation_.show(carried.notices);
    for (const CarriedOut& controller : carried.controllers)
      take(controller.name, controller.missing, controller.leftOut);
    take("", {}, carried.leftOut);
    return carried.isComplete() ? std::int16_t{0} : incomplete;
  });
}

std::int16_t PlanService::download(const std::string& station, const std::string& reader, bool full,
                                   bool dial) {
  CarryOut how;
  const std::int16_t failed = attempt("Controllers.download", [&]() -> std::int16_t {
    how.scope.places = placesOf(installation_, station, reader);
    return 0;
  });
  if (failed != 0) return failed;
  how.scope.full = full;
  how.dial = dial;
  return carryOut("Controllers.download", how);
}

std::int16_t PlanService::downloadCard(std::int32_t number) {
  CarryOut how;
  how.scope.card = number;
  return carryOut("Controllers.downloadCard", how);
}

std::int16_t PlanService::replaced(const std::string& station, std::int16_t address, bool usedElsewhere) {
  return attempt("Controllers.replaced", [&]() -> std::int16_t {
    noteReplaced(installation_, station, std::to_string(address), usedElsewhere);
    return 0;
  });
}

bool PlanService::mayOpen(const std::string& card, const std::string& door, DateTime at) {
  bool opens = false;
  (void)attempt("Controllers.mayOpen", [&]() -> std::int16_t {
    opens = AccessQuestions(installation_).mayOpen(card, door, at).opens;
    return 0;
  });
  return opens;
}

std::string PlanService::whyOpen(const std::string& card, const std::string& door, DateTime at) {
  std::string text;
  (void)attempt("Controllers.whyOpen", [&]() -> std::int16_t {
    text = sentence(AccessQuestions(installation_).mayOpen(card, door, at));
    return 0;
  });
  return text;
}

std::string PlanService::whoOpens(const std::string& door, DateTime at) {
  std::string text;
  (void)attempt("Controllers.whoOpens", [&]() -> std::int16_t {
    for (const AccessAnswer& answer : AccessQuestions(installation_).whoOpens(door, at))
      text += (text.empty() ? "" : "\r\n") + std::to_string(answer.card) + " " + answer.name + ": " +
              sentence(answer);
    return 0;
  });
  return text;
}

std::string PlanService::whatOpens(const std::string& card, DateTime at) {
  std::string text;
  (void)attempt("Controllers.whatOpens", [&]() -> std::int16_t {
    for (const AccessAnswer& answer : AccessQuestions(installation_).whatOpens(card, at))
      text += (text.empty() ? "" : "\r\n") + answer.door + ": " + sentence(answer);
    return 0;
  });
  return text;
}

}  // namespace voxa
