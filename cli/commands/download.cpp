// voxa download: what was changed, on its way to the controllers.

#include "work/download.h"
#include "output/command_line.h"

#include <iostream>

#include "commands.h"
#include "component.h"
#include "line_question.h"
#include "output/progress.h"
#include "plan_output.h"
#include "platform/database/database.h"
#include "session.h"
#include "work/carry_out.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

constexpr std::int16_t greatestCardNumber = 9999;

struct DownloadOptions {
  ComponentChoice component;
  bool full = false;
  bool dial = false;
  bool changeIntervals = false;
  std::string card;
  std::string badgeFormat;
};

const char* titleOf(DownloadKind kind) {
  switch (kind) {
    case DownloadKind::dailyPrograms:
      return "Daily programs";
    case DownloadKind::weeklyPrograms:
      return "Weekly programs";
    case DownloadKind::holidays:
      return "Holidays";
    case DownloadKind::groups:
      return "Access groups";
    case DownloadKind::cards:
      break;
  }
  return "Cards";
}

void tell(Session& session, const std::string& title, const Report& report) {
  session.show(report);
  std::cout << title << ": " << report.rowsWith(Outcome::done) << " sent, "
            << report.rowsWith(Outcome::unchanged) << " unchanged, " << report.rowsWith(Outcome::failed)
            << " failed";
  const std::size_t waiting = report.rowsWith(Outcome::waiting);
  if (waiting > 0) std::cout << ", " << waiting << " waiting for lines that are not in use";
  std::cout << '\n';
}

/// The component with the controllers that the person lets be passed over.
DownloadTarget testedTarget(Session& session, const DownloadOptions& options) {
  DownloadTarget target{chosen(session, options.component), options.full};
  std::optional<LineTest> test = testedLines(session, target.component);
  if (!test) throw Refusal("aborted: nothing was sent");
  target.silent = std::move(test->silent);
  return target;
}

/// What became of it all, when not everything was sent everywhere.
void conclude(const Report& all, const DownloadTarget& target) {
  std::string silent = eachOnALine(namesOf(target.silent));
  if (!silent.empty())
    silent = "these controllers did not answer, and what was sent stays marked for them:" + silent;
  if (all.rowsWith(Outcome::failed) > 0) {
    throw Refusal("not everything was sent: what failed stays marked" +
                  (silent.empty() ? "" : "; " + silent));
  }
  if (!silent.empty()) throw Leftover(silent);
  if (all.rowsWith(Outcome::waiting) > 0)
    throw Leftover("not everything was sent: what waits for a line that is not in use stays marked");
}

void downloadTables(Session& session, const std::vector<DownloadKind>& kinds,
                    const DownloadOptions& options) {
  session.openForSending();
  const DownloadTarget target = testedTarget(session, options);
  Report all;
  for (const DownloadKind kind : kinds) {
    Report report;
    {
      Progress progress;
      report = download(session.library(), kind, target, &progress);
    }
    tell(session, titleOf(kind), report);
    all.add(std::move(report));
  }
  conclude(all, target);
}

const char* textOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::silent:
      return "does not answer";
    case Outcome::waiting:
      return "waits";
    case Outcome::failed:
      return "not everything was taken";
    case Outcome::done:
    case Outcome::unchanged:
      break;
  }
  return "";
}

void tell(const CarriedOut& controller) {
  std::cout << controller.name << ": " << controller.sent << " sent";
  if (!controller.missing.empty()) {
    std::cout << ", " << missingOf(controller.missing)
              << " missing: " << (controller.reason.empty() ? textOf(controller.outcome) : controller.reason);
  }
  std::cout << '\n';
  for (const std::string& refused : controller.refused) std::cout << "  not taken: " << refused << '\n';
  for (const PlanRow& row : rowsOf(controller.missing))
    std::cout << "  missing: " << row.action << ' ' << row.what << " (" << row.reason << ")\n";
  for (const LeftOut& row : controller.leftOut) std::cout << "  left out: " << voxa::cli::textOf(row) << '\n';
}

/// Brings every controller to what the rows say.
void downloadPlan(Session& session, const DownloadOptions& options) {
  session.openForSending();
  CarryOut how;
  how.scope.places = placesOf(session.library(), options.component.station, options.component.reader);
  how.scope.full = options.full;
  if (!options.card.empty())
    how.scope.card = numberWithin("the card number", options.card, 1, greatestCardNumber);
  how.dial = options.dial;
  how.changeIntervals = options.changeIntervals;
  CarriedOutPlan carried;
  {
    Progress progress;
    carried = carryOut(session.library(), how, &progress);
  }
  session.show(carried.notices);
  std::size_t unchanged = 0;
  for (const CarriedOut& controller : carried.controllers) {
    const bool quiet = controller.outcome == Outcome::unchanged && controller.leftOut.empty();
    quiet ? static_cast<void>(++unchanged) : tell(controller);
  }
  if (unchanged > 0 || carried.controllers.empty())
    std::cout << unchanged << (unchanged == 1 ? " controller holds" : " controllers hold")
              << " it all already\n";
  for (const LeftOut& row : carried.leftOut) std::cout << "left out: " << voxa::cli::textOf(row) << '\n';
  if (!carried.isComplete())
    throw Leftover("not every controller holds what it should: 'voxa plan' tells what is missing where");
}

void downloadFormat(Session& session, const DownloadOptions& options) {
  session.openForSending();
  const std::string name = badgeFormatNamed(session.library(), options.badgeFormat)->get("Name").toText();
  const DownloadTarget target = testedTarget(session, options);
  const Report report = downloadBadgeFormat(session.library(), options.badgeFormat, target);
  tell(session, "Badge format " + name, report);
  conclude(report, target);
}

/// isMeant: whether no command behind it is meant.
void addPlanDownload(Command& command, Session& session, const std::function<bool()>& isMeant) {
  auto options = std::make_shared<DownloadOptions>();
  addComponentOptions(command, options->component);
  command.add_option("--card", options->card, "Only the card of this number, and no programs and holidays");
  command.add_flag("--full", options->full, "Everything, also what the controllers hold");
  command.add_flag("--dial", options->dial,
                   "Call the stations with a telephone number that miss something, and hang up behind it");
  command.add_flag(
      "--change-intervals", options->changeIntervals,
      "Tell the controllers daily programs of as many intervals as this call has, with --four-zones or "
      "without");
  command.footer(
      "Sends each controller what it misses ('voxa plan'), and tells what is still missing. One that does "
      "not "
      "answer\nor is not in use gets it with the next download.\nExamples:\n  voxa download\n  voxa download "
      "--station "
      "Local");
  command.callback([&session, options, isMeant] {
    if (isMeant()) downloadPlan(session, *options);
  });
}

}  // namespace

void addDownloadCommands(Command& app, Session& session) {
  auto* group = app.add_subcommand("download", "Send what was changed to the controllers");
  addPlanDownload(*group, session, [group] { return !group->hasSubcommand(); });
  const auto add = [&](const std::string& name, const char* what, std::vector<DownloadKind> kinds) {
    auto* command = group->add_subcommand(name, what);
    auto options = std::make_shared<DownloadOptions>();
    const bool toAll = kinds == std::vector{DownloadKind::groups};
    if (!toAll) addComponentOptions(*command, options->component);
    command->add_flag("--full", options->full, "Also those that the controllers have");
    command->footer(
        "A program or holiday counts as sent once one component has taken it, a card when all its "
        "controllers\n"
        "have; groups and deleted cards go to all controllers only.\nExamples:\n  voxa download " +
        name + "\n  voxa download " + name + (toAll ? " --full" : " --station Local --full"));
    command->callback(
        [&session, options, kinds = std::move(kinds)] { downloadTables(session, kinds, *options); });
  };
  add("daily", "Send the daily programs that were changed", {DownloadKind::dailyPrograms});
  add("weekly", "Send the weekly programs that were changed", {DownloadKind::weeklyPrograms});
  add("holidays", "Send the holidays that were changed", {DownloadKind::holidays});
  add("groups", "Send the cards of the access groups that were changed", {DownloadKind::groups});
  add("cards", "Send the cards that were changed", {DownloadKind::cards});
  addPlanDownload(*group->add_subcommand("all", "The same as download without a word behind it"), session,
                  [] { return true; });

  auto* badge = group->add_subcommand("badge", "Send a badge format to readers; it stays marked");
  auto options = std::make_shared<DownloadOptions>();
  badge->add_option("FORMAT", options->badgeFormat, "Number or name of the format")->required();
  addComponentOptions(*badge, options->component);
  badge->add_flag("--full", options->full, "Also when it was not changed");
  badge->footer(
      "A VRMD1 is told the format of each of its readers, another controller one format for all.\n"
      "Examples:\n  voxa download badge \"Site cards\"\n"
      "  voxa download badge \"Site cards\" --reader Garage");
  badge->callback([&session, options] { downloadFormat(session, *options); });
}

}  // namespace voxa::cli
