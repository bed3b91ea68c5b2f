#include "thing_commands.h"

#include <memory>
#include <nlohmann/json.hpp>

#include "output/command_line.h"
#include "session.h"

namespace voxa::cli {

namespace {

std::string withArticle(const std::string& thing) {
  return (std::string_view("aeiou").find(thing.front()) != std::string_view::npos ? "an " : "a ") + thing;
}

}  // namespace

Command* addShowCommand(Command& group, Session& session, const std::string& argument,
                        const std::string& thing, const std::string& footer,
                        std::function<void(const std::string& name, bool json)> print) {
  auto* show = group.add_subcommand("show", "Show one " + thing + ", and what belongs to it");
  auto name = std::make_shared<std::string>();
  auto json = std::make_shared<bool>(false);
  show->add_option(argument, *name, "Number or name of the " + thing)->required();
  show->add_flag("--json", *json, "As a JSON object");
  show->footer(footer);
  show->callback([&session, name, json, print = std::move(print)] {
    session.open();
    print(*name, *json);
  });
  return show;
}

Command* addRenameCommand(Command& group, Session& session, const std::string& argument,
                          const std::string& thing, const std::string& footer,
                          std::function<void(const std::string& name, const std::string& newName)> rename) {
  auto* renaming = group.add_subcommand("rename", "Give " + withArticle(thing) + " another name");
  auto names = std::make_shared<std::pair<std::string, std::string>>();
  renaming->add_option(argument, names->first, "Number or name of the " + thing)->required();
  renaming->add_option("NEW", names->second, "Its new name")->required();
  renaming->footer(footer);
  renaming->callback([&session, names, rename = std::move(rename)] {
    session.open();
    rename(names->first, names->second);
  });
  return renaming;
}

Command* addDeleteCommand(Command& group, const std::string& argument, const std::string& thing,
                          const std::string& moveTo, const std::string& moveHelp, const std::string& footer,
                          std::function<void(const std::string& name, const std::string& moveTo)> remove) {
  auto* deleting = group.add_subcommand("delete", "Delete " + withArticle(thing));
  auto names = std::make_shared<std::pair<std::string, std::string>>();
  deleting->add_option(argument, names->first, "Number or name of the " + thing)->required();
  if (!moveTo.empty()) deleting->add_option(moveTo, names->second, moveHelp);
  deleting->footer(footer);
  deleting->callback([names, remove = std::move(remove)] { remove(names->first, names->second); });
  return deleting;
}

Cell eachBelow(const std::vector<std::string>& texts, const nlohmann::ordered_json& forPrograms) {
  std::string text;
  for (const std::string& one : texts) text += (text.empty() ? "" : "\n") + one;
  return {text.empty() ? "-" : text, forPrograms};
}

}  // namespace voxa::cli
