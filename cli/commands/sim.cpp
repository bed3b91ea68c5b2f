// voxa sim: the simulated controllers that the driver finds in the folder "site" of the installation.

#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "commands.h"
#include "held_programs.h"
#include "output/command_line.h"
#include "output/hidden_pins.h"
#include "output/table_output.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "session.h"
#include "sim_commands.h"
#include "site/site.h"
#include "work/readers.h"
#include "work/refusal.h"
#include "work/stations.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

struct ControllerOptions {
  std::string station, address, speed;
  std::string type = "QSX3";
  bool showPins = false;
  bool json = false;
};

struct FaultOptions {
  bool none = false;
  bool silent = false;
  bool loseAnswer = false;
  bool forgets = false;
  std::optional<std::string> refuse, after, cut, refuseClear, resultFile, stopBehind, times;
};

ControllerPlace placeOf(Session& session, const ControllerOptions& options) {
  return {findStation(session.library(), options.station).id, controllerAddress(options.address)};
}

std::vector<std::string> faultTexts(const site::Faults& faults) {
  std::vector<std::string> texts;
  const auto add = [&](const std::string& fault) { texts.push_back(fault); };
  if (faults.silent) add("silent");
  if (faults.refuse) add("refuses with " + std::to_string(*faults.refuse));
  if (faults.goodCalls) add("silent after " + std::to_string(*faults.goodCalls) + " calls");
  if (faults.cutAfter) add("cut after " + std::to_string(*faults.cutAfter) + " records");
  if (faults.refuseClear) add("refuses a clear with " + std::to_string(*faults.refuseClear));
  if (faults.resultFile == site::ResultFileFault::garbage) add("garbage in the result file");
  if (faults.resultFile == site::ResultFileFault::truncated) add("truncates the result file");
  if (faults.forgets) add("forgets what it acknowledges");
  const std::string left = faults.times ? " (" + std::to_string(*faults.times) + " more)" : "";
  if (faults.loseAnswer) add("loses its answer to a command file" + left);
  if (faults.stopBehind) {
    add("stops behind line " + std::to_string(*faults.stopBehind) + " of a command file" + left);
  }
  return texts;
}

Value valueOf(std::optional<int> number) {
  return number ? Value(*number) : Value();
}

Cell doorsOf(const site::Card& card) {
  std::vector<std::int32_t> doors;
  if (card.door1) doors.push_back(1);
  if (card.door2) doors.push_back(2);
  return {doors.empty() ? "none" : doors.size() == 2 ? "1 2" : std::to_string(doors.front()), doors};
}

Value dayOf(const std::optional<site::Date>& date) {
  return date ? Value(toDateTime({date->year, date->month, date->day, 0, 0, 0})) : Value();
}

Value momentOf(const site::Moment& at) {
  return toDateTime({at.date.year, at.date.month, at.date.day, at.hour, at.minute, at.second});
}

/// "--12-25" is that day of every year.
Cell dateOf(const site::Holiday& holiday) {
  const std::string year = holiday.year ? zeroPadded(*holiday.year, 4) : "-";
  return {dateText(holiday), year + "-" + zeroPadded(holiday.month, 2) + "-" + zeroPadded(holiday.day, 2)};
}

Cell faultsOf(const site::Faults& faults) {
  const std::vector<std::string> texts = faultTexts(faults);
  return texts.empty() ? Cell("none", texts) : Cell(texts);
}

void addController(Session& session, site::Site& site, const ControllerOptions& options) {
  const StationRow station = findStation(session.library(), options.station);
  site::ControllerInfo info;
  info.station = station.id;
  info.address = controllerAddress(options.address);
  info.type = options.type;
  info.speed = options.speed.empty() ? station.speed.toInt32() : number32("the speed", options.speed);
  site.addController(info);
}

void listControllers(Session& session, site::Site& site, const ControllerOptions& options) {
  std::map<int, std::string> names;
  for (const StationRow& station : listStations(session.library())) names[station.id] = station.name;
  TableOutput table({"Station", "Address", "Type", "Speed", "Faults"});
  for (const site::ControllerInfo& info : site.list()) {
    const auto name = names.find(info.station);
    const site::Faults faults = site.snapshot(info.station, info.address).faults;
    table.add({name == names.end() ? Value() : name->second, info.address, info.type, info.speed,
               faultsOf(faults)});
  }
  table.print(std::cout, options.json);
}

void showController(Session& session, site::Site& site, const ControllerOptions& options) {
  const ControllerPlace place = placeOf(session, options);
  const site::Snapshot snapshot = site.snapshot(place.station, place.address);
  TableOutput daily({"Number", "Intervals"});
  for (const auto& program : snapshot.dailyPrograms)
    daily.add({program.number, Cell(intervalsText(program), intervalTexts(program))});
  std::vector<std::string> columnsOfWeek = {"Family", "Number", "Days"};
  if (options.json) columnsOfWeek.emplace_back("Holidays");
  TableOutput weekly(columnsOfWeek);
  for (const auto& program : snapshot.weeklyPrograms) {
    weekly.add({std::string(1, program.family), program.number, Cell(daysText(program), program.days),
                program.holiday});
  }
  TableOutput holidays({"Slot", "Date"});
  for (const auto& holiday : snapshot.holidays) holidays.add({holiday.slot, dateOf(holiday)});
  TableOutput cards({"Number", "Code", "Weekly", "Doors", "Pin", "Supervisor", "Until", "Credit", "Lifts"});
  for (const auto& card : snapshot.cards) {
    const std::string pin = options.showPins || card.pin.empty() ? card.pin : "****";
    cards.add({card.number, card.code, valueOf(card.weekly), doorsOf(card),
               pin.empty() ? Value() : Value(pin), card.supervisor, dayOf(card.validUntil),
               valueOf(card.credit), std::vector<Value>(card.lifts.begin(), card.lifts.end())});
  }
  TableOutput badges(
      {"Reader", "Technology", "SitePosition", "SiteLength", "CardPosition", "CardType", "Site"});
  for (const auto& format : snapshot.badgeFormats) {
    badges.add({format.reader == 0 ? Cell("all", 0) : Cell(format.reader), format.technology,
                format.sitePosition, format.siteLength, format.cardPosition, format.cardType,
                format.siteCode});
  }
  TableOutput received({"Received", "Line", "Refused"});
  for (const auto& line : snapshot.received) {
    const std::string text = options.showPins ? line.text : withoutPin(line.text);
    received.add({momentOf(line.at), text, line.reason.empty() ? Value() : Value(line.reason)});
  }
  const std::pair<const char*, const TableOutput*> tables[] = {
      {"Daily programs", &daily}, {"Weekly programs", &weekly}, {"Holidays", &holidays},
      {"Cards", &cards},          {"Badge formats", &badges},   {"Lines received", &received}};
  if (options.json) {
    printJson(std::cout, {{"Station", options.station},
                          {"Address", place.address},
                          {"Type", snapshot.info.type},
                          {"Speed", snapshot.info.speed},
                          {"Faults", faultsOf(snapshot.faults).json()},
                          {"DailyPrograms", daily.json()},
                          {"WeeklyPrograms", weekly.json()},
                          {"Holidays", holidays.json()},
                          {"Cards", cards.json()},
                          {"BadgeFormats", badges.json()},
                          {"ReceivedLines", received.json()}});
    return;
  }
  std::cout << "Controller " << place.address << " of " << options.station << ": " << snapshot.info.type
            << ", " << snapshot.info.speed << " bit/s, faults: " << faultsOf(snapshot.faults).text() << '\n';
  for (const auto& [title, table] : tables) {
    std::cout << '\n' << title << '\n';
    table->print(std::cout, false);
  }
}

void setFaults(Session& session, site::Site& site, const ControllerOptions& options,
               const FaultOptions& chosenFaults) {
  const ControllerPlace place = placeOf(session, options);
  site::Faults faults;
  faults.silent = chosenFaults.silent;
  if (chosenFaults.refuse) faults.refuse = number16("--refuse", *chosenFaults.refuse);
  if (chosenFaults.after) faults.goodCalls = number16("--after", *chosenFaults.after);
  if (chosenFaults.cut) faults.cutAfter = number16("--cut", *chosenFaults.cut);
  if (chosenFaults.refuseClear) faults.refuseClear = number16("--refuse-clear", *chosenFaults.refuseClear);
  if (chosenFaults.resultFile) {
    faults.resultFile = *chosenFaults.resultFile == "garbage" ? site::ResultFileFault::garbage
                                                              : site::ResultFileFault::truncated;
  }
  faults.forgets = chosenFaults.forgets;
  faults.loseAnswer = chosenFaults.loseAnswer;
  if (chosenFaults.stopBehind) faults.stopBehind = number16("--stop-behind", *chosenFaults.stopBehind);
  if (chosenFaults.times) faults.times = number16("--times", *chosenFaults.times);
  const bool any = faults != site::Faults{};
  if (any == chosenFaults.none) throw Refusal("name the faults that the controller has now, or --none");
  site.setFaults(place.station, place.address, faults);
}

// An action on the site of the installation; what the site says against it becomes a Refusal.
template <typename Action>
std::function<void()> onSite(Session& session, Action action) {
  return [&session, action] {
    session.open();
    try {
      site::Site site;
      action(session, site);
    } catch (const site::Failure& failure) {
      throw Refusal(failure.what());
    }
  };
}

void addPlaceOptions(Command& command, ControllerOptions& options) {
  command.add_option("--station", options.station, "Station of the controller")->required();
  command.add_option("--address", options.address, "Its address on the line, 1 to 16")->required();
}

void addFaultCommand(Command& group, Session& session) {
  auto* fault = group.add_subcommand("fault", "Set the faults of a controller, in place of those it has");
  auto place = std::make_shared<ControllerOptions>();
  auto faults = std::make_shared<FaultOptions>();
  addPlaceOptions(*fault, *place);
  fault->add_flag("--none", faults->none, "It works again");
  fault->add_flag("--silent", faults->silent, "It receives nothing and answers nothing");
  fault->add_option("--refuse", faults->refuse, "It answers every call with this code");
  fault->add_option("--after", faults->after, "It turns silent after so many calls");
  fault->add_option("--cut", faults->cut, "A memory read breaks after so many records");
  fault->add_option("--refuse-clear", faults->refuseClear, "It answers a clear with this code");
  fault->add_option("--result-file", faults->resultFile, "What becomes of its part of the result file")
      ->isMember({"garbage", "truncated"});
  fault->add_flag("--forgets", faults->forgets, "It acknowledges command files and stores nothing");
  fault->add_flag("--lose-answer", faults->loseAnswer,
                  "It carries command files out, but its answers are lost");
  fault->add_option("--stop-behind", faults->stopBehind,
                    "The line breaks behind so many lines of a longer command file");
  fault->add_option("--times", faults->times,
                    "So many command files meet --lose-answer or --stop-behind; all unless given");
  fault->footer(
      "Examples:\n  voxa sim controller fault --station Local --address 2 --silent\n"
      "  voxa sim controller fault --station Local --address 2 --none");
  fault->callback(onSite(
      session, [place, faults](Session& i, site::Site& site) { setFaults(i, site, *place, *faults); }));
}

// A command that does one thing with the controller at a place.
void addPlaceCommand(Command& group, Session& session, const std::string& name, const std::string& help,
                     void (site::Site::*action)(int station, int address)) {
  auto* command = group.add_subcommand(name, help);
  auto options = std::make_shared<ControllerOptions>();
  addPlaceOptions(*command, *options);
  command->footer("Examples:\n  voxa sim controller " + name +
                  " --station Local --address 1\n  voxa sim controller " + name +
                  " --station Annex --address 2");
  command->callback(onSite(session, [options, action](Session& i, site::Site& site) {
    const ControllerPlace place = placeOf(i, *options);
    (site.*action)(place.station, place.address);
  }));
}

}  // namespace

void addSimulatorCommands(Command& app, Session& session) {
  auto* sim = app.add_subcommand("sim", "Simulated controllers")->require_subcommand(1);
  auto* group = sim->add_subcommand("controller", "Simulated controllers")->require_subcommand(1);

  auto* add = group->add_subcommand("add", "Put a controller on a line");
  auto added = std::make_shared<ControllerOptions>();
  addPlaceOptions(*add, *added);
  add->add_option("--type", added->type, "Its type")->isMember({"QSX3", "VRMD1"})->capture_default_str();
  add->add_option("--speed", added->speed, "Line speed it listens at; that of the station unless given");
  add->footer(
      "Examples:\n  voxa sim controller add --station Local --address 1\n"
      "  voxa sim controller add --station Annex --address 2 --type VRMD1");
  add->callback(onSite(session, [added](Session& i, site::Site& site) { addController(i, site, *added); }));

  auto* list = group->add_subcommand("list", "List the controllers of the site");
  auto listed = std::make_shared<ControllerOptions>();
  list->add_flag("--json", listed->json, "As a JSON array");
  list->footer("Examples:\n  voxa sim controller list\n  voxa sim controller list --json");
  list->callback(
      onSite(session, [listed](Session& i, site::Site& site) { listControllers(i, site, *listed); }));

  auto* show = group->add_subcommand("show", "Show what a controller holds");
  auto shown = std::make_shared<ControllerOptions>();
  addPlaceOptions(*show, *shown);
  show->add_flag("--show-pins", shown->showPins, "With the personal codes");
  show->add_flag("--json", shown->json, "As a JSON object");
  show->footer(
      "Examples:\n  voxa sim controller show --station Local --address 1\n"
      "  voxa sim controller show --station Local --address 1 --show-pins --json");
  show->callback(onSite(session, [shown](Session& i, site::Site& site) { showController(i, site, *shown); }));

  addFaultCommand(*group, session);

  addPlaceCommand(*group, session, "replace", "Put a new controller, which holds nothing, in its place",
                  &site::Site::replace);
  addPlaceCommand(*group, session, "remove", "Take a controller off the line, with all it holds",
                  &site::Site::removeController);

  addSwipeCommand(*sim, session);
}

}  // namespace voxa::cli
