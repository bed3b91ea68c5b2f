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
  return this;
}

CommandOption* CommandOption::isMemberInAnyCase(const std::vector<std::string>& values) {
  option_.transform(CLI::IsMember(values, CLI::ignore_case));
  return this;
}

CommandOption* CommandOption::capture_default_str() {
  option_.capture_default_str();
  return this;
}

Command* Command::add_subcommand(const std::string& name, const std::string& help) {
  return subcommands_.emplace_back(std::make_unique<Command>(*app_.add_subcommand(name, help))).get();
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
  return keep(app_.add_option(name, variable, help)->allow_extra_args(false));
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
  app_.callback(run);
}

}  // namespace voxa::cli
