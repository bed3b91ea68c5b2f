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
  CommandOption* offers(
      const std::vector<std::string>& values);  ///< to a person who types, who may type others
  CommandOption* capture_default_str();         ///< shows what its variable holds now as the default

  /// "--move-to" and "--move-cards-to"; "GROUP" when it has its place in the line.
  [[nodiscard]] std::vector<std::string> names() const;
  [[nodiscard]] bool hasPlace() const;      ///< it is no word that begins with --
  [[nodiscard]] bool takesValue() const;    ///< it is no flag
  [[nodiscard]] bool takesSeveral() const;  ///< of one with a place: all words that follow
  [[nodiscard]] const std::vector<std::string>& choices() const { return choices_; }  ///< {}: none are known

 private:
  CLI::Option& option_;
  std::vector<std::string> choices_;
};

/// A command or a group of them. Owns its subcommands and options; the variables are the caller's.
class Command {
 public:
  /// carriesOut: whether commands are run once their words have been read; nullptr: they are. It and the app
  /// outlive this object.
  explicit Command(CLI::App& app, const bool* carriesOut = nullptr) : app_(app), carriesOut_(carriesOut) {}
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  Command* add_subcommand(const std::string& name, const std::string& help);
  Command* require_subcommand(int count);
  CommandOption* add_option(const std::string& name, std::string& variable, const std::string& help);
  CommandOption* add_option(const std::string& name, std::optional<std::string>& variable,
                            const std::string& help);
  /// Each use adds one text; one that has its place takes all words that follow.
  CommandOption* add_option(const std::string& name, std::vector<std::string>& variable,
                            const std::string& help);
  CommandOption* add_flag(const std::string& name, bool& variable, const std::string& help);
  CommandOption* add_flag_callback(const std::string& name, const std::function<void()>& given,
                                   const std::string& help);
  [[nodiscard]] bool hasSubcommand() const;            ///< one was named on the command line
  CommandOption* get_option(const std::string& name);  ///< one that was added
  void footer(const std::string& text);                ///< behind the help
  void callback(const std::function<void()>& run);
  void hide();  ///< in the help

  [[nodiscard]] std::string name() const;
  [[nodiscard]] std::string summary() const;  ///< its line in the help of its group
  [[nodiscard]] std::string help() const;     ///< all of it
  [[nodiscard]] bool isHidden() const;
  /// The subcommand of this name, nullptr when there is none.
  [[nodiscard]] const Command* find(const std::string& name) const;
  [[nodiscard]] const Command* parent() const { return parent_; }
  [[nodiscard]] std::vector<const Command*> subcommands() const;    ///< those that are not hidden
  [[nodiscard]] std::vector<const CommandOption*> options() const;  ///< in the order they were added

 private:
  CommandOption* keep(CLI::Option* option);

  CLI::App& app_;
  const bool* carriesOut_;
  const Command* parent_ = nullptr;
  std::vector<std::unique_ptr<Command>> subcommands_;
  std::vector<std::unique_ptr<CommandOption>> options_;
};

}  // namespace voxa::cli
