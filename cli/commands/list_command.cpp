#include "list_command.h"

#include <memory>
#include "output/command_line.h"

namespace voxa::cli {

void addListCommand(Command& group, Session& session, const std::string& name, const std::string& help,
                    const std::string& example, void (*print)(Session& session, bool json)) {
  auto* list = group.add_subcommand(name, help);
  auto json = std::make_shared<bool>(false);
  list->add_flag("--json", *json, "As a JSON array");
  const bool hasJson = example.find("--json") != std::string::npos;
  list->footer("Examples:\n  " + example + (hasJson ? "" : "\n  " + example + " --json"));
  list->callback([&session, json, print] { print(session, *json); });
}

}  // namespace voxa::cli
