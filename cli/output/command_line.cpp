#include "output/command_line.h"

#include <CLI/CLI.hpp>

namespace voxa::cli {

CommandOption* CommandOption::required() {
  option_.required();
  return this;
}

CommandOption* CommandOption::description(const std::string& text) {
  option_.description(text);
  return this;
}

CommandOption* CommandOption::excludes(const CommandOption* other) {
  option_.excludes(&other->option_);
  return this;
}

CommandOption* CommandOption::excludes(const std::string& name) {
  option_.excludes(name);
  return this;
}

CommandOption* CommandOption::needs(const CommandOption* other) {
  option_.needs(&other->option_);
  return this;
}

CommandOption* CommandOption::isMember(const std::vector<std::string>& values) {
  option_.check(CLI::IsMember(values));
  choices_ = values;
  return this;
}

CommandOption* CommandOption::isMemberInAnyCase(const std::vector<std::string>& values) {
  option_.transform(CLI::IsMember(values, CLI::ignore_case));
  choices_ = values;
  return this;
}

CommandOption* CommandOption::offers(const std::vector<std::string>& values) {
  choices_ = values;
  return this;
}

CommandOption* CommandOption::capture_default_str() {
  option_.capture_default_str();
  return this;
}

std::vector<std::string> CommandOption::names() const {
  std::vector<std::string> all;
  for (const std::string& name : option_.get_lnames()) all.push_back("--" + name);
  if (all.empty()) all.push_back(option_.get_name(true));
  return all;
}

bool CommandOption::hasPlace() const {
  return option_.get_lnames().empty() && option_.get_snames().empty();
}

bool CommandOption::takesValue() const {
  return option_.get_items_expected_max() > 0;
}

bool CommandOption::takesSeveral() const {
  return option_.get_items_expected_max() > 1;
}

Command* Command::add_subcommand(const std::string& name, const std::string& help) {
  auto added = std::make_unique<Command>(*app_.add_subcommand(name, help), carriesOut_);
  added->parent_ = this;
  return subcommands_.emplace_back(std::move(added)).get();
}

Command* Command::require_subcommand(int count) {
  app_.require_subcommand(count);
  return this;
}

CommandOption* Command::keep(CLI::Option* option) {
  return options_.emplace_back(std::make_unique<CommandOption>(*option)).get();
}

CommandOption* Command::add_option(const std::string& name, std::string& variable, const std::string& help) {
  return keep(app_.add_option(name, variable, help));
}

CommandOption* Command::add_option(const std::string& name, std::optional<std::string>& variable,
                                   const std::string& help) {
  return keep(app_.add_option(name, variable, help));
}

CommandOption* Command::add_option(const std::string& name, std::vector<std::string>& variable,
                                   const std::string& help) {
  const bool hasPlace = !name.starts_with("-");
  return keep(app_.add_option(name, variable, help)->allow_extra_args(hasPlace));
}

CommandOption* Command::add_flag(const std::string& name, bool& variable, const std::string& help) {
  return keep(app_.add_flag(name, variable, help));
}

CommandOption* Command::add_flag_callback(const std::string& name, const std::function<void()>& given,
                                          const std::string& help) {
  return keep(app_.add_flag_callback(name, given, help));
}

bool Command::hasSubcommand() const {
  return !app_.get_subcommands().empty();
}

CommandOption* Command::get_option(const std::string& name) {
  return keep(app_.get_option(name));
}

void Command::footer(const std::string& text) {
  app_.footer(text);
}

void Command::callback(const std::function<void()>& run) {
  app_.callback([this, run] {
    if (carriesOut_ == nullptr || *carriesOut_) run();
  });
}

void Command::hide() {
  app_.group("");
}

std::string Command::name() const {
  return app_.get_name();
}

std::string Command::summary() const {
  return app_.get_description();
}

std::string Command::help() const {
  std::string before;
  for (const Command* above = parent_; above != nullptr; above = above->parent_)
    before = above->name() + (before.empty() ? "" : " ") + before;
  return app_.help(before);
}

bool Command::isHidden() const {
  return app_.get_group().empty();
}

const Command* Command::find(const std::string& name) const {
  for (const auto& command : subcommands_) {
    if (command->name() == name) return command.get();
  }
  return nullptr;
}

std::vector<const Command*> Command::subcommands() const {
  std::vector<const Command*> all;
  for (const auto& command : subcommands_) {
    if (!command->isHidden()) all.push_back(command.get());
  }
  return all;
}

std::vector<const CommandOption*> Command::options() const {
  std::vector<const CommandOption*> all;
  for (const auto& option : options_) all.push_back(option.get());
  return all;
}

}  // namespace voxa::cli
