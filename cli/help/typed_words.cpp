#include "help/typed_words.h"

#include <algorithm>

#include "work/suggestions.h"
#include "work/words.h"

namespace voxa::cli {

namespace {

/// Also one with a hyphen too few, "-last", but no time that ends in one: "-7d".
bool isOption(const std::string& word) {
  if (word.starts_with("--")) return word.size() > 2;
  return word.starts_with("-") && word.size() > 1 && !isNumber(word.substr(1, 1));
}

const CommandOption* optionNamed(const Command& command, const std::string& name) {
  for (const CommandOption* option : optionsOf(command)) {
    const auto names = option->names();
    if (std::find(names.begin(), names.end(), name) != names.end()) return option;
  }
  return nullptr;
}

std::vector<std::string> namesOf(const std::vector<const Command*>& commands) {
  std::vector<std::string> names;
  for (const Command* command : commands) names.push_back(command->name());
  return names;
}

/// What people call things that have another name here.
std::string otherName(const std::string& word) {
  constexpr std::pair<const char*, const char*> known[] = {
      {"door", "reader"},   {"doors", "reader"},  {"person", "card"},     {"people", "card"},
      {"user", "card"},     {"users", "card"},    {"badge", "card"},      {"line", "station"},
      {"lines", "station"}, {"remove", "delete"}, {"del", "delete"},      {"rm", "delete"},
      {"ls", "list"},       {"create", "add"},    {"new", "add"},         {"change", "set"},
      {"edit", "set"},      {"info", "show"},     {"events", "journal"},  {"backup", "db"},
      {"send", "download"}, {"sync", "download"}, {"schedule", "weekly"}, {"lost", "block"}};
  for (const auto& [name, here] : known) {
    if (word == name) return here;
  }
  return "";
}

const Command* commandMeant(const Command& in, const std::string& word) {
  if (const Command* exact = in.find(word); exact != nullptr) return exact;
  if (const Command* other = in.find(otherName(word)); other != nullptr) return other;
  const auto near = nearest(word, namesOf(in.subcommands()), 1);
  return near.empty() ? nullptr : in.find(near.front());
}

std::string optionMeant(const Command& command, const std::string& typed) {
  std::vector<std::string> names = {"--help", "--version"};
  for (const CommandOption* option : optionsOf(command)) {
    if (!option->hasPlace()) names.push_back(option->names().front());
  }
  return didYouMean(typed, names);
}

}  // namespace

std::vector<const CommandOption*> optionsOf(const Command& command) {
  std::vector<const CommandOption*> all = command.options();
  for (const Command* above = command.parent(); above != nullptr; above = above->parent()) {
    for (const CommandOption* option : above->options()) {
      if (!option->hasPlace()) all.push_back(option);
    }
  }
  return all;
}

std::string calledAs(const Command& command) {
  return command.parent() == nullptr ? command.name() : calledAs(*command.parent()) + " " + command.name();
}

TypedWords readWords(const Command& program, const std::vector<std::string>& words) {
  TypedWords read;
  read.command = &program;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (read.option != nullptr) {
      if (read.option->names().front() == "--dir") read.folder = word;
      read.option = nullptr;
    } else if (isOption(word)) {
      const std::string name = word.substr(0, word.find('='));
      const CommandOption* option = optionNamed(*read.command, name);
      const bool everywhere = name == "--help" || name == "-h" || name == "--version";
      if (option == nullptr && !everywhere && read.unknown.empty()) read.unknown = {name};
      if (name == "--dir" && name != word) read.folder = word.substr(name.size() + 1);
      if (option != nullptr && option->takesValue() && name == word) read.option = option;
    } else if (const Command* next = read.command->find(word); next != nullptr && read.places.empty()) {
      read.command = next;
    } else if (!read.command->subcommands().empty()) {
      if (read.unknown.empty())  // else it is the value of an option that there is not
        read.unknown.assign(words.begin() + static_cast<std::ptrdiff_t>(i), words.end());
      return read;
    } else {
      read.places.push_back(word);
    }
  }
  return read;
}

std::string meant(const Command& program, const std::vector<std::string>& words) {
  const TypedWords read = readWords(program, words);
  if (read.unknown.empty()) return "";
  if (isOption(read.unknown.front())) return optionMeant(*read.command, read.unknown.front());
  const Command* command = read.command;
  for (const std::string& word : read.unknown) {
    const Command* next = command->subcommands().empty() ? nullptr : commandMeant(*command, word);
    if (next == nullptr) break;
    command = next;
  }
  return command == read.command ? "" : " (did you mean '" + calledAs(*command) + "'?)";
}

}  // namespace voxa::cli
