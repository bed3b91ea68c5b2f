// voxa plan: what the controllers miss.

#include <iostream>

#include "commands.h"
#include "component.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "plan_output.h"
#include "session.h"
#include "work/carry_out.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct PlanOptions {
  ComponentChoice component;
  bool json = false;
};

void printJson(const WholePlan& whole) {
  TableOutput table(
      {"Station", "Controller", "Name", "InUse", "Kind", "Number", "Action", "Reason", "CreditAnew"});
  const auto add = [&](const PlannedController& controller, const Value& kind, std::int32_t number,
                       const char* action, const std::string& reason, bool anew) {
    table.add({controller.station, controller.plan.place.address, controller.name, controller.inUse, kind,
               number, action, reason, anew});
  };
  for (const PlannedController& controller : whole.controllers) {
    for (const PlanItem& item : controller.plan.items)
      add(controller, kindName(item.kind), item.number, voxa::textOf(item.action), voxa::textOf(item.reason),
          item.creditAnew);
    for (const LeftOut& row : controller.plan.leftOut)
      add(controller, kindName(row.kind), row.number, "leave out", textOf(row), false);
  }
  for (const LeftOut& row : whole.leftOut)
    table.add({Value(), Value(), Value(), Value(), kindName(row.kind), row.number, "leave out", textOf(row),
               false});
  table.print(std::cout, true);
}

void printTable(const WholePlan& whole) {
  TableOutput table({"Controller", "Action", "What", "Reason"});
  for (const PlannedController& controller : whole.controllers) {
    const std::string name = controller.name + (controller.inUse    ? ""
                                                : controller.dialUp ? " (hung up)"
                                                                    : " (not in use)");
    for (const PlanRow& row : rowsOf(controller.plan.items))
      table.add({name, row.action, row.what, row.reason});
    for (const LeftOut& row : controller.plan.leftOut) table.add({name, "leave out", row.row, row.reason});
  }
  for (const LeftOut& row : whole.leftOut) table.add({"-", "leave out", row.row, row.reason});
  if (table.empty()) {
    std::cout << "Every controller holds what it should\n";
  } else {
    table.print(std::cout, false);
  }
}

}  // namespace

void showPlan(const WholePlan& whole, bool json) {
  json ? printJson(whole) : printTable(whole);
}

void addPlanCommand(Command& app, Session& session) {
  auto* command = app.add_subcommand("plan", "Tell what each controller misses, and why");
  auto options = std::make_shared<PlanOptions>();
  addComponentOptions(*command, options->component);
  command->add_flag("--json", options->json, "As a JSON array, an object for each thing");
  command->footer(
      "Nothing is sent: 'voxa download' carries the plan out. A controller that is not in use is named, "
      "too.\n"
      "Examples:\n  voxa plan\n  voxa plan --reader \"Front door\" --json");
  command->callback([&session, options] {
    session.open();
    const auto places = placesOf(session.library(), options->component.station, options->component.reader);
    showPlan(planAll(session.library(), {{}, places, false}), options->json);
  });
}

}  // namespace voxa::cli
