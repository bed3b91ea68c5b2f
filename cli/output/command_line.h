#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace voxa::cli {

// The commands and their options, as the parser of the command line knows them, and by its own names. Its
// headers take most of the time that a file needs to compile, so that one file alone includes them.

/// An option or flag of a command. What is returned is the option itself.
class CommandOption {
 public:
  explicit CommandOption(CLI::Option& option) : option_(option) {}

  CommandOption* required();
  CommandOption* description(const std::string& text);
  CommandOption* excludes(const CommandOption* other);
  CommandOption* excludes(const std::string& name);
  CommandOption* needs(const CommandOption* other);
  CommandOption* isMember(const std::vector<std::string>& values);           ///< no other value is taken
  CommandOption* isMemberInAnyCase(const std::vector<std::string>& values);  ///< which is stored as here
  CommandOption* capture_default_str();  ///< shows what its variable holds now as the default

 private:
  CLI::Option& option_;
};

/// A command or a group of them. Owns its subcommands and options; the variables are the caller's.
class Command {
 public:
  explicit Command(CLI::App& app) : app_(app) {}
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  Command* add_subcommand(const std::string& name, const std::string& help);
  Command* require_subcommand(int count);
  CommandOption* add_option(const std::string& name, std::string& variable, const std::string& help);
  CommandOption* add_option(const std::string& name, std::optional<std::string>& variable,
                            const std::string& help);
  /// Each use adds one text.
  CommandOption* add_option(const std::string& name, std::vector<std::string>& variable,
                            const std::string& help);
  CommandOption* add_flag(const std::string& name, bool& variable, const std::string& help);
  CommandOption* add_flag_callback(const std::string& name, const std::function<void()>& given,
                                   const std::string& help);
  [[nodiscard]] bool hasSubcommand() const;            ///< one was named on the command line
  CommandOption* get_option(const std::string& name);  ///< one that was added
  void footer(const std::string& text);                ///< behind the help
  void callback(const std::function<void()>& run);

 private:
  CommandOption* keep(CLI::Option* option);

  CLI::App& app_;
  std::vector<std::unique_ptr<Command>> subcommands_;
  std::vector<std::unique_ptr<CommandOption>> options_;
};

}  // namespace voxa::cli
