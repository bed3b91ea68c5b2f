// What the help says of the commands, and what becomes of mistyped ones.

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <sstream>

#include "commands/session.h"
#include "help/completion.h"
#include "help/program.h"
#include "help/topics.h"
#include "help/typed_words.h"
#include "output/command_line.h"

using namespace voxa::cli;

namespace {

/// The commands, whose words are read and which are not run.
struct Program {
  explicit Program(const std::vector<std::string>& words = {}) {
    app.require_subcommand(1);
    app.fallthrough();
    addProgram(program, session, words);
  }
  bool runs = false;
  CLI::App app{"", "voxa"};
  Session session;
  Command program{app, &runs};
};

/// The words of a line behind "voxa", up to a redirection.
std::vector<std::string> wordsOf(const std::string& line) {
  std::vector<std::string> words(1);
  char quote = 0;
  for (const char c : line) {
    if (quote == 0 && c == '>') break;
    if (c == '"' || c == '\'') quote = quote == 0 ? c : quote == c ? '\0' : quote;
    if (c == ' ' && quote == 0) {
      if (!words.back().empty()) words.emplace_back();
    } else {
      words.back() += c;
    }
  }
  if (words.back().empty()) words.pop_back();
  return unquotedWords({words.begin() + 1, words.end()});
}

/// How many examples a text has; each is read.
int examplesOf(const std::string& text) {
  int count = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("  voxa ")) continue;
    ++count;
    auto words = wordsOf(line);
    Program fresh(words);
    std::reverse(words.begin(), words.end());
    try {
      fresh.app.parse(words);
    } catch (const CLI::ParseError& problem) {
      ADD_FAILURE() << line << ": " << problem.what();
    }
  }
  return count;
}

void examine(const Command& command) {
  const std::string help = command.help();
  const auto examples = help.find("Examples:\n");
  if (command.subcommands().empty()) {
    EXPECT_NE(examples, std::string::npos) << calledAs(command);
    EXPECT_GE(examplesOf(help.substr(std::min(examples, help.size()))), 2) << calledAs(command);
  }
  for (const Command* below : command.subcommands()) examine(*below);
}

TEST(Commands, EachHasTwoExamplesThatCanBeTyped) {
  const Program all;
  examine(all.program);
  for (const Topic& topic : topics()) EXPECT_GE(examplesOf(topic.text), 2) << topic.name;
}

TEST(Commands, TheOneThatIsNamedIsMadeAlone) {
  const Program all;
  for (const Command* command : all.program.subcommands()) {
    const Program one({"--dir", "card", "--yes", command->name(), "list"});
    const auto made = one.program.subcommands();
    EXPECT_NE(one.program.find(command->name()), nullptr) << command->name();
    const bool isHelp = command->name() == "help" || command->name() == "completion";
    EXPECT_EQ(made.size() < 3, !isHelp) << command->name();
  }
}

TEST(Commands, MistypedWordsHaveASuggestion) {
  const Program all;
  const std::pair<std::vector<std::string>, std::string> typed[] = {
      {{"car", "lst"}, " (did you mean 'voxa card list'?)"},
      {{"--dir", "plant", "door", "ls", "--json"}, " (did you mean 'voxa reader list'?)"},
      {{"card", "list", "--grup", "A"}, " (did you mean --group?)"},
      {{"card", "list", "--group", "lsit"}, ""},
      {{"journal", "--lst", "3"}, " (did you mean --last?)"},
      {{"journal", "-last", "3"}, " (did you mean --last?)"},
      {{"--verson"}, " (did you mean --version?)"},
      {{"xyzzy"}, ""}};
  for (const auto& [words, expected] : typed) EXPECT_EQ(meant(all.program, words), expected) << words.back();
}

}  // namespace
