#include "report/standing.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "controllers/ledger.h"
#include "controllers/ledger_view.h"
#include "platform/clock.h"
#include "platform/database/recordset.h"
#include "report/figures.h"
#include "work/cards.h"
#include "work/carry_out.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"

namespace voxa {

namespace {

ControllerFigure figureOf(const PlannedController& planned) {
  ControllerFigure figure;
  figure.name = planned.name;
  figure.inUse = planned.inUse;
  figure.leftOut = planned.plan.leftOut.size();
  std::map<ThingKind, std::size_t> missing;
  for (const PlanItem& item : planned.plan.items) {
    if (item.action != PlanItem::Action::shutMeanwhile) ++missing[item.kind];
  }
  for (const auto& [kind, count] : missing) figure.missing.push_back({kindName(kind), count});
  return figure;
}

/// The controllers of the door; all without one, and when the door is gone.
std::optional<std::set<ControllerPlace>> placesAsked(Installation& installation, const std::string& door) {
  try {
    return placesOf(installation, "", door);
  } catch (const Refusal&) {
    return std::set<ControllerPlace>();
  }
}

}  // namespace

void addControllers(Installation& installation, Figures& figures) {
  try {
    const WholePlan whole = planAll(installation, {{}, placesAsked(installation, figures.asked.door), false});
    (void)installation.ledger().look([&](const LedgerView& ledger) {
      for (const PlannedController& planned : whole.controllers) {
        ControllerFigure& figure = figures.controllers.emplace_back(figureOf(planned));
        const LedgerController* known = ledger.controllers().find(planned.plan.place);
        if (known != nullptr) figure.lastContact = known->lastContact;
      }
    });
  } catch (const Refusal& refusal) {
    figures.controllersNotKnown = refusal.what();
  }
}

void addExpiringCards(Installation& installation, Figures& figures) {
  const std::string& group = figures.asked.group;
  const double today = std::floor(installation.clock().now().days);
  CardFilter filter;
  if (!group.empty()) filter.group = group;
  for (const CardRow& card : listCards(installation, filter)) {
    if (card.until.isNull() || card.code.isNull() || !card.valid.toBool()) continue;
    const DateTime until = card.until.toDateTime();
    if (until.days >= today + daysOfNotice) continue;
    figures.cards.push_back({card.number.isNull() ? 0 : card.number.toInt32(),
                             figures.asked.people ? card.name.toText() : "",
                             card.group.isNull() ? "" : card.group.toText(), until, until.days < today});
  }
  std::stable_sort(figures.cards.begin(), figures.cards.end(),
                   [](const auto& one, const auto& other) { return one.until.days < other.until.days; });
}

}  // namespace voxa
