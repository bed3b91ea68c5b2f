// voxa daily: the intervals of a day.

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <optional>

#include "app/qdb.h"
#include "comm/com.h"
#include "commands.h"
#include "component.h"
#include "output/table_output.h"
#include "programs/daily_program.h"
#include "session.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

constexpr std::size_t mostIntervals = 4;
constexpr const char* endOfDay = "23:59";  // as an end; an interval that also starts there is absent

struct IntervalColumns {
  const char* option;
  const char* title;
  const char* start;
  const char* end;
};
constexpr IntervalColumns columns[mostIntervals] = {
    {"--first", "First", "StartFirstInterval", "EndFirstInterval"},
    {"--second", "Second", "StartSecondInterval", "EndSecondInterval"},
    {"--third", "Third", "Start3Interval", "End3Interval"},
    {"--fourth", "Fourth", "Start4Interval", "End4Interval"}};

struct DailyOptions {
  std::string name;
  std::optional<std::string> newName;
  std::array<std::optional<std::string>, mostIntervals> intervals;
};

std::string timeOfDay(const std::string& text) {
  if (text == "24:00") return endOfDay;
  const auto digit = [&](std::size_t i) { return text[i] >= '0' && text[i] <= '9'; };
  const bool shaped = text.size() == 5 && digit(0) && digit(1) && text[2] == ':' && digit(3) && digit(4);
  if (!shaped || text.substr(0, 2) > "23" || text.substr(3) > "59") {
    throw Refusal("'" + text + "' is no time of day: write hours and minutes as 08:30");
  }
  return text;
}

struct Interval {
  std::string start = endOfDay;
  std::string end = endOfDay;
};

Interval interval(const std::string& text) {
  if (text == "none") return {};
  const std::size_t dash = text.find('-');
  if (dash == std::string::npos) throw Refusal("'" + text + "' is no interval: write 08:00-12:00, or none");
  Interval read{timeOfDay(text.substr(0, dash)), timeOfDay(text.substr(dash + 1))};
  if (read.start > read.end) {
    throw Refusal("the interval " + text + " ends before it starts: split it at midnight, as " + read.start +
                  "-24:00 and 00:00-" + read.end);
  }
  return read;
}

bool setIntervals(Session& session, Recordset& row, const DailyOptions& options) {
  bool changed = false;
  for (std::size_t i = 0; i < mostIntervals; ++i) {
    if (!options.intervals[i]) continue;
    if (i >= 2 && session.com().pDailyPrograms4Zones != 1) {
      throw Refusal(std::string(columns[i].option) + " needs controllers with four intervals: --four-zones");
    }
    const Interval read = interval(*options.intervals[i]);
    row.set(columns[i].start, read.start);
    row.set(columns[i].end, read.end);
    changed = true;
  }
  return changed;
}

void addDaily(Session& session, DailyOptions options) {
  session.open();
  const std::int16_t id = session.qdb().DailyPrograms().getFreeId();
  if (id == -1) throw Refusal("the installation holds all the daily programs it can (99)");
  if (!options.intervals[1]) options.intervals[1] = "none";
  const auto rows = session.rows("select * from DailyPrograms");
  rows->addNew();
  rows->set("Id", id);
  rows->set("Name", checkedName(options.name));
  setIntervals(session, *rows, options);
  rows->set("DailyProgramFlagD", true);
  storeRow(session.library(), *rows, "DailyPrograms", "daily program");
  std::cout << "Daily program " << id << ": " << options.name << '\n';
}

void setDaily(Session& session, const DailyOptions& options) {
  session.open();
  const auto row = session.rows("select * from DailyPrograms");
  moveToNumberOrName(*row, "Id", options.name, "msgCantFindDailyProg");
  row->edit();
  if (options.newName) row->set("Name", checkedName(*options.newName));
  const bool builtIn = row->get("Id").toInt16() <= 1;
  if (setIntervals(session, *row, options) && builtIn) {
    throw Refusal("the times of the built-in programs 0 (never) and 1 (the whole day) are fixed");
  }
  row->set("DailyProgramFlagD", true);
  storeRow(session.library(), *row, "DailyPrograms", "daily program");
}

std::string shownInterval(const Recordset& row, const IntervalColumns& of) {
  const Value start = row.get(of.start);
  const Value end = row.get(of.end);
  if (start == end) return "none";
  return start.toText() + "-" + (end == Value(endOfDay) ? "24:00" : end.toText());
}

void listDaily(Session& session, bool json) {
  session.open();
  const std::size_t intervals = session.com().pDailyPrograms4Zones == 1 ? mostIntervals : 2;
  std::vector<std::string> titles = {"Id", "Name"};
  for (std::size_t i = 0; i < intervals; ++i) titles.emplace_back(columns[i].title);
  titles.emplace_back("ToSend");
  TableOutput table(titles);
  const auto rows = session.rows("select * from DailyPrograms order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    std::vector<Value> cells = {rows->get("Id"), rows->get("Name")};
    for (std::size_t i = 0; i < intervals; ++i) cells.emplace_back(shownInterval(*rows, columns[i]));
    cells.push_back(rows->get("DailyProgramFlagD"));
    table.add(std::move(cells));
  }
  table.print(std::cout, json);
}

void addIntervalOptions(CLI::App& command, DailyOptions& options) {
  constexpr const char* help[mostIntervals] = {"First interval, as 08:00-12:00, or none", "Second interval",
                                               "Third interval (with --four-zones)",
                                               "Fourth interval (with --four-zones)"};
  for (std::size_t i = 0; i < mostIntervals; ++i) {
    command.add_option(columns[i].option, options.intervals[i], help[i]);
  }
}

}  // namespace

void addDailyCommands(CLI::App& app, Session& session) {
  auto* group = app.add_subcommand("daily", "Daily programs")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Add a daily program");
  auto added = std::make_shared<DailyOptions>();
  add->add_option("NAME", added->name, "Name of the new program")->required();
  addIntervalOptions(*add, *added);
  add->get_option("--first")->required();
  add->footer("Example:\n  voxa daily add Office --first 08:00-12:00 --second 13:00-17:00");
  add->callback([&session, added] { addDaily(session, *added); });

  auto* list = group->add_subcommand("list", "List the daily programs");
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  list->footer("Example:\n  voxa daily list");
  list->callback([&session, json] { listDaily(session, *json); });

  auto* set = group->add_subcommand("set", "Change a daily program; it is to be sent again then");
  auto changed = std::make_shared<DailyOptions>();
  set->add_option("PROGRAM", changed->name, "Number or name of the program")->required();
  set->add_option("--name", changed->newName, "Its new name");
  addIntervalOptions(*set, *changed);
  set->footer("Example:\n  voxa daily set Office --second 13:00-18:00");
  set->callback([&session, changed] { setDaily(session, *changed); });
}

}  // namespace voxa::cli
