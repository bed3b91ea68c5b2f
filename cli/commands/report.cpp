// voxa report: what happened at the doors, as a page to look at.

#include <iostream>

#include "commands.h"
#include "may_write.h"
#include "output/command_line.h"
#include "platform/files.h"
#include "report/csv.h"
#include "report/figures.h"
#include "report/html.h"
#include "report/page.h"
#include "report/wording.h"
#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct ReportOptions {
  ReportQuestion question;
  std::string page;
  std::string folder;  // of the CSV files; "": none
  bool force = false;
};

void write(const std::string& path, const std::string& text) {
  files::Stream file(path, files::Stream::Mode::write, files::Stream::Kind::any);
  file.write(text);
  file.close();
}

void makeReport(Session& session, const ReportOptions& options) {
  session.open();
  const std::string page = session.callersFile(options.page);
  const std::string folder = options.folder.empty() ? "" : session.callersFolder(options.folder);
  requireMayWrite(session, page, options.force);
  if (folder == session.callersFolder(options.page))
    throw Refusal("the page and the folder of the tables need different names");
  const Figures figures = gatherFigures(session.library(), options.question);
  const std::vector<CsvFile> tables = folder.empty() ? std::vector<CsvFile>() : csvOf(figures);
  for (const CsvFile& table : tables) requireMayWrite(session, folder + "/" + table.name, options.force);
  // First, so that a folder that cannot be leaves no page in the way of the corrected command.
  if (!folder.empty() && !files::folderExists(folder)) files::makeFolder(folder);
  write(page, htmlOf(pageOf(figures)));
  for (const CsvFile& table : tables) write(folder + "/" + table.name, table.text);
  std::cout << counted(figures.all.presentations(), "presentation") << ' ' << timeText(figures) << ": open "
            << options.page << " in a browser\n";
}

}  // namespace

void addReportCommand(Command& app, Session& session) {
  auto* report =
      app.add_subcommand("report", "Make a page of what happened at the doors, for a browser or paper");
  auto options = std::make_shared<ReportOptions>();
  report->add_option("FILE", options->page, "The page, an HTML file that needs no other")->required();
  report->add_option("--since", options->question.since,
                     "From this day or minute on, as in 'voxa journal': monday, -7d; without it 30 days");
  report->add_option("--until", options->question.until,
                     "Up to this day or minute, it included; without it up to today");
  report->add_option("--door,--reader", options->question.door,
                     "Only what happened at this reader, under the names it had, too");
  report->add_option("--group", options->question.group, "Only cards that are in this access group now");
  report->add_flag("--people", options->question.people,
                   "With names of people, and when a door let each in first and last on each day");
  report->add_option("--csv", options->folder, "Write the figures as tables into this folder, too");
  report->add_flag("--force", options->force, "Replace files that exist");
  report->footer(
      "The page needs no net and no script. Names of people are on it only with --people.\n"
      "Examples:\n"
      "  voxa report week.html --since -7d\n"
      "  voxa report november.html --since 2026-11-01 --until 2026-11-30\n"
      "  voxa report laboratory.html --door Laboratory --people --csv figures");
  report->callback([&session, options] { makeReport(session, *options); });
}

}  // namespace voxa::cli
