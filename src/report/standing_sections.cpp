#include <algorithm>

#include "platform/datetime.h"
#include "report/figures.h"
#include "report/page_sections.h"
#include "report/wording.h"

namespace voxa {

namespace {

std::string missingText(const ControllerFigure& controller) {
  std::string text;
  const auto add = [&](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  for (const ControllerFigure::Missing& missing : controller.missing)
    add(counted(missing.count, missing.kind));
  if (controller.leftOut != 0) add(counted(controller.leftOut, "row") + " that cannot be sent");
  return text.empty() ? "nothing" : text;
}

}  // namespace

PageSection controllerSection(const Figures& figures) {
  PageSection section;
  section.id = "controllers";
  section.heading = "Controllers";
  if (!figures.controllersNotKnown.empty()) {
    section.sentences = {"What they miss is not known: " + figures.controllersNotKnown + "."};
    return section;
  }
  if (figures.controllers.empty()) {
    section.sentences = {"There is none."};
    return section;
  }
  section.sentences = {"What each one misses now. Why is told by 'voxa plan', and 'voxa download' sends it."};
  PageTable table{
      "Controllers now", false, {"Controller", "Misses", "Last reached"}, {false, false, false}, {}};
  for (const ControllerFigure& controller : figures.controllers) {
    const std::string reached = controller.lastContact ? momentText(*controller.lastContact) : "never";
    table.rows.push_back(
        {shownName(controller.name),
         {missingText(controller), reached + (controller.inUse ? "" : "; its line is not in use")}});
  }
  section.tables = {std::move(table)};
  return section;
}

std::string expiryText(const Figures& figures) {
  const auto expired = static_cast<std::uint64_t>(std::count_if(
      figures.cards.begin(), figures.cards.end(), [](const auto& card) { return card.expired; }));
  const std::uint64_t near = figures.cards.size() - expired;
  const auto days = " within " + std::to_string(daysOfNotice) + " days.";
  std::string text;
  if (near != 0) text = counted(near, "card") + (near == 1 ? " expires" : " expire") + days;
  if (expired != 0)
    text += (text.empty() ? "" : " ") + counted(expired, "card") + (expired == 1 ? " has" : " have") +
            " expired.";
  return text.empty() ? "No card expires" + days : text;
}

PageSection cardSection(const Figures& figures) {
  constexpr std::size_t mostRows = 200;
  PageSection section;
  section.id = "cards";
  section.heading = "Cards that expire";
  section.sentences = {expiryText(figures)};
  if (figures.cards.empty()) return section;
  const bool named = figures.asked.people;
  PageTable table{"Cards by last day", false, {"Card"}, {false}, {}};
  if (named) table.headings.emplace_back("Name");
  table.headings.insert(table.headings.end(), {"Group", "Last day", "State"});
  table.numbers.assign(table.headings.size(), false);
  // The ones that expire next, and of the others those that expired last.
  const std::size_t passedOver = figures.cards.size() - std::min(figures.cards.size(), mostRows);
  if (passedOver != 0)
    section.sentences.push_back("The last " + grouped(mostRows) + " are shown; a folder of --csv has all.");
  for (auto card = figures.cards.begin() + static_cast<std::ptrdiff_t>(passedOver);
       card != figures.cards.end(); ++card) {
    PageTable::Row row{std::to_string(card->number), {}};
    if (named) row.cells.push_back(shownName(card->name));
    row.cells.insert(row.cells.end(), {shownName(card->group), formatDateTime(card->until, "dd/mm/yyyy"),
                                       card->expired ? "expired" : "expires"});
    table.rows.push_back(std::move(row));
  }
  section.tables = {std::move(table)};
  return section;
}

}  // namespace voxa
