// How a door works, and what is known of one reader.

#include "reader_settings.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"
#include "work/readers.h"

namespace voxa::cli {

namespace {

struct ShowOptions {
  std::string reader;
  bool json = false;
  bool showPins = false;
};

Cell codeCell(const Value& code, bool shown) {
  if (code.isNull() || shown) return code;
  return {"****", "****"};
}

void show(Session& session, const ShowOptions& options) {
  session.open();
  const ReaderDetails reader = findReader(session.library(), options.reader);
  std::vector<std::string> groups;
  auto forPrograms = nlohmann::ordered_json::array();
  for (const auto& grant : reader.groups) {
    groups.push_back(grant.groupName + " (" + grant.program + ")");
    forPrograms.push_back({{"Group", grant.groupName}, {"Program", grant.program}});
  }
  std::string text;
  for (const std::string& group : groups) text += (text.empty() ? "" : ", ") + group;
  std::vector<std::string> columns = {"Id", "Name", "Station", "Address", "Position", "Type", "Groups"};
  std::vector<Cell> cells = {reader.row.id,
                             reader.row.name,
                             reader.row.station,
                             reader.row.address,
                             reader.row.position,
                             reader.row.type,
                             Cell(text.empty() ? "-" : text, forPrograms)};
  std::vector<std::string> marked;
  for (const ReaderSetting& setting : reader.settings) {
    columns.push_back(setting.name);
    cells.push_back(setting.secret ? codeCell(setting.value, options.showPins) : Cell(setting.value));
    if (setting.marked) marked.push_back(setting.name);
  }
  columns.emplace_back("Marked");
  cells.emplace_back(marked);
  printOne(std::cout, columns, cells, options.json);
  if (options.json) return;
  std::cout << "What stands below the groups is kept for other programs: this system sends no lines for it\n";
}

}  // namespace

void addReaderSettings(Command& command, ReaderSettingTexts& texts) {
  command.add_option("--orientation", texts.orientation, "Direction of passage, a code from 0 to 9");
  command.add_option("--access-criteria", texts.accessCriteria, "Access criteria, a code");
  command.add_option("--antipassback", texts.antipassback, "Anti-passback: yes or no")->offers({"yes", "no"});
  command.add_option("--open-delay", texts.openDelay, "Door open time");
  command.add_option("--close-delay", texts.closeDelay, "Door close time");
  command.add_option("--alarm-mode", texts.alarmMode, "Door alarm mode, a code");
  command.add_option("--door-mode", texts.doorMode, "Door mode, a code of up to 2 characters");
  command.add_option("--program", texts.program,
                     "Weekly program of the door itself, of family C; cards have that of their group");
  command.add_option("--locking-input", texts.lockingInput,
                     "Number of the input that locks the door, 0 to 99; or none");
  command.add_option("--pin", texts.pin, "Code of the door, up to 4 digits; or none");
  command.add_option("--supervisor-mode", texts.supervisorMode, "Supervisor mode, a code");
  command.add_option("--counting", texts.counting, "Counting: yes or no")->offers({"yes", "no"});
}

void addShowReaderCommand(Command& group, Session& session) {
  auto* showing = group.add_subcommand("show", "Show a reader, the groups that open it, and how it works");
  auto options = std::make_shared<ShowOptions>();
  showing->add_option("NAME", options->reader, "Name or number of the reader")->required();
  showing->add_flag("--show-pins", options->showPins, "With the code of the door");
  showing->add_flag("--json", options->json, "As a JSON object");
  showing->footer("Examples:\n  voxa reader show \"Front door\"\n  voxa reader show 3 --json");
  showing->callback([&session, options] { show(session, *options); });
}

}  // namespace voxa::cli
