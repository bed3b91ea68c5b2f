#include "report/page.h"

#include <algorithm>

#include "report/figures.h"
#include "report/page_sections.h"
#include "report/wording.h"

namespace voxa {

namespace {

std::uint64_t count(std::size_t size) {
  return size;
}

void addPresentations(const Figures& figures, std::vector<std::string>& summary) {
  const std::uint64_t all = figures.all.presentations();
  const std::string time = timeText(figures);
  if (all == 0) {
    summary.push_back("No card was presented " + time + ".");
    if (figures.journalFrom)
      summary.push_back("The journal has transactions from " + momentText(*figures.journalFrom) + " to " +
                        momentText(*figures.journalTo) +
                        ": a report of another time has --since and --until.");
    return;
  }
  summary.push_back(counted(all, "presentation") + " of cards at " +
                    counted(count(figures.doors.size()), "door") + " " + time + "; " +
                    share(figures.all.of(TransactionMeaning::granted), all) + " were granted.");
  const auto worst = std::max_element(
      figures.doors.begin(), figures.doors.end(),
      [](const auto& one, const auto& other) { return one.outcomes.refused() < other.outcomes.refused(); });
  if (worst->outcomes.refused() != 0 && figures.doors.size() > 1)
    summary.push_back("Most refusals: " + within(shownDoor(worst->name)) + ", " +
                      grouped(worst->outcomes.refused()) + " of " +
                      counted(worst->outcomes.presentations(), "presentation") + ".");
}

void addStanding(const Figures& figures, std::vector<std::string>& summary) {
  const auto behind =
      std::count_if(figures.controllers.begin(), figures.controllers.end(),
                    [](const auto& each) { return !each.missing.empty() || each.leftOut != 0; });
  if (!figures.controllersNotKnown.empty()) {
    summary.emplace_back("What the controllers miss is not known.");
  } else if (behind != 0) {
    summary.push_back(grouped(static_cast<std::uint64_t>(behind)) + " of " +
                      counted(count(figures.controllers.size()), "controller") +
                      " do not hold all that they should.");
  } else if (!figures.controllers.empty()) {
    summary.emplace_back("Every controller holds what it should.");
  }
  if (!figures.cards.empty()) summary.push_back(expiryText(figures));
}

std::vector<Page::Tile> tilesOf(const Figures& figures) {
  const std::uint64_t all = figures.all.presentations();
  const auto tile = [&](const char* label, std::uint64_t number) {
    return Page::Tile{label, grouped(number), all == 0 ? "" : share(number, all)};
  };
  using Meaning = TransactionMeaning;
  return {{"Presentations", grouped(all), ""},
          tile("Granted", figures.all.of(Meaning::granted)),
          tile("Refused by time", figures.all.of(Meaning::refusedByTime)),
          tile("Refused by rights", figures.all.of(Meaning::refusedByRights)),
          tile("Unknown card", figures.all.of(Meaning::unknownCard))};
}

}  // namespace

Page pageOf(const Figures& figures) {
  Page page;
  page.title = "Doors " + timeText(figures);
  const ReportQuestion& asked = figures.asked;
  if (!asked.door.empty()) page.scope.push_back("Only the door " + within(shownName(asked.door)) + ".");
  if (!asked.group.empty())
    page.scope.push_back("Only cards that are in the access group " + within(shownName(asked.group)) +
                         " now.");
  addPresentations(figures, page.summary);
  addStanding(figures, page.summary);
  page.tiles = tilesOf(figures);
  const bool any = figures.all.presentations() != 0;
  if (any)
    page.sections = {daySection(figures), hourSection(figures), doorSection(figures),
                     refusalSection(figures)};
  if (!figures.unknownCards.empty()) page.sections.push_back(unknownSection(figures));
  if (asked.people && any) page.sections.push_back(peopleSection(figures));
  page.sections.push_back(controllerSection(figures));
  page.sections.push_back(cardSection(figures));
  page.made =
      "Made on " + momentText(figures.made) +
      " of the transactions that have been read from the controllers. Times are those of their clocks. "
      "Doors have the names that they had when they were read.";
  if (figures.others != 0)
    page.made += " " + counted(figures.others, "other transaction") +
                 ", such as a button that was pressed, " + (figures.others == 1 ? "is" : "are") +
                 " not counted.";
  return page;
}

}  // namespace voxa
