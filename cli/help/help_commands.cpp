// voxa help, voxa completion: for a person who looks for a command.

#include "help/help_commands.h"

#include <iostream>
#include <memory>

#include "help/completion.h"
#include "help/topics.h"
#include "help/typed_words.h"
#include "output/command_line.h"
#include "work/refusal.h"
#include "work/suggestions.h"

namespace voxa::cli {

namespace {

void listTopics() {
  constexpr std::size_t width = 14;
  std::cout << "voxa help TOPIC tells how to, voxa help COMMAND what a command takes.\n\n";
  for (const Topic& topic : topics()) {
    std::string name = topic.name;
    name.resize(width, ' ');
    std::cout << "  " << name << topic.summary << '\n';
  }
}

void help(const Command& program, const std::vector<std::string>& words) {
  if (words.empty()) return listTopics();
  for (const Topic& topic : topics()) {
    if (words.size() > 1 || words.front() != topic.name) continue;  // "journal save" is a command
    std::cout << topic.summary << "\n\n" << topic.text;
    return;
  }
  const Command* command = &program;
  std::string known;
  for (const std::string& word : words) {
    std::vector<std::string> names;
    for (const Command* each : command->subcommands()) names.push_back(each->name());
    if (command == &program) {
      for (const Topic& topic : topics()) names.emplace_back(topic.name);
    }
    const Command* next = command->find(word);
    if (next == nullptr)
      throw Refusal("there is no topic or command '" + known + word + "'" + didYouMean(word, names) +
                    ": 'voxa help' lists the topics, 'voxa --help' the commands");
    command = next;
    known += word + " ";
  }
  std::cout << command->help();
}

void complete(const Command& program, Session& session, const std::vector<std::string>& words) {
  try {
    for (const std::string& each : completions(program, session, unquotedWords(words)))
      std::cout << each << '\n';
  } catch (const std::exception&) {
    // Somebody is typing: nothing is said of an installation that cannot be read.
  }
}

}  // namespace

void addHelpCommands(Command& program, Session& session) {
  auto* helping = program.add_subcommand("help", "Tell how to do something, or what a command takes");
  auto words = std::make_shared<std::vector<std::string>>();
  helping->add_option("WORDS", *words, "A topic, or the words of a command");
  helping->footer("Examples:\n  voxa help lost-card\n  voxa help card add");
  helping->callback([&program, words] { help(program, *words); });

  auto* completing = program.add_subcommand(
      "completion", "Print what a shell needs to complete commands, options and names");
  auto shell = std::make_shared<std::string>();
  completing->add_option("SHELL", *shell, "bash, zsh or fish")->required()->isMember({"bash", "zsh", "fish"});
  completing->footer(
      "It says in its first line where to put it.\n"
      "Examples:\n  voxa completion bash > ~/.voxa-completion\n  voxa completion fish");
  completing->callback([shell] { std::cout << completionScript(*shell); });

  auto* answering = program.add_subcommand("complete", "What may follow the words, a line each");
  answering->hide();
  auto typed = std::make_shared<std::vector<std::string>>();
  answering->add_option("WORDS", *typed, "The words, the last one begun");
  answering->callback([&program, &session, typed] { complete(program, session, *typed); });
}

}  // namespace voxa::cli
