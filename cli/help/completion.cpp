#include "help/completion.h"

#include <algorithm>

#include "app/database_query.h"
#include "commands/session.h"
#include "help/topics.h"
#include "help/typed_words.h"
#include "platform/text.h"

namespace voxa::cli {

namespace {

/// The statement that gives the cards that a command is for.
std::string cardsFor(const std::string& command) {
  std::string statement = "select Name from Cardholders where Deleted = ";
  statement += command == "restore" || command == "purge" ? "true" : "false";
  return command == "unblock" ? statement + " and Validated = false" : statement;
}

/// The statement that gives the names of what an option or place is about, or "".
std::string namesFor(const Command& command, const CommandOption& option) {
  constexpr std::pair<const char*, const char*> kinds[] = {
      {"reader", "select Name from Readers"},
      {"door", "select Name from Readers"},
      {"group", "select Name from AccessGroups"},
      {"card", "select Name from Cardholders where Deleted = false"},
      {"person", "select Name from Cardholders where Deleted = false"},
      {"station", "select Name from Stations"},
      {"daily", "select Name from DailyPrograms"},
      {"days", "select Name from DailyPrograms"},
      {"holidays", "select Name from DailyPrograms"},
      {"weekly", "select Name from WeeklyPrograms"},
      {"program", "select Name from WeeklyPrograms"},
      {"holiday", "select Name from Holidays"},
      {"badge", "select Name from BadgeFormat"},
      {"format", "select Name from BadgeFormat"},
      {"badge-format", "select Name from BadgeFormat"},
      {"lift", "select Name from Alarms where Type = 'M'"},
      {"alarm", "select Name from Alarms where Type <> 'M'"}};
  const auto statementOf = [&](const std::string& kind) -> std::string {
    for (const auto& [name, statement] : kinds) {
      if (kind == name) return statement;
    }
    return "";
  };
  // The thing that the command is about: of "voxa weekly set PROGRAM", and of "--move-to".
  const std::string thing = command.parent() == nullptr ? "" : command.parent()->name();
  std::string kind = toLower(option.names().front());
  kind.erase(0, kind.find_first_not_of('-'));
  const bool own =
      option.hasPlace() ? kind == "program" || kind == "name" || kind == "other" : kind.starts_with("move-");
  if (option.hasPlace() && own && command.name() == "add") return "";  // a new name
  if (option.hasPlace() && kind == "card") return cardsFor(command.name());
  if (own && !statementOf(thing).empty()) return statementOf(thing);
  return statementOf(kind);
}

std::vector<std::string> namesOfInstallation(Session& session, const std::string& statement) {
  std::vector<std::string> names;
  const DatabaseQuery query(session.clock(), session.openForStatement("", false), {});
  query.select(statement).each([&](const std::vector<Value>& row) {
    if (!row.front().isNull()) names.push_back(row.front().toText());
  });
  return names;
}

std::vector<std::string> valuesOf(Session& session, const Command& command, const CommandOption& option) {
  if (!option.choices().empty()) return option.choices();
  const std::string statement = namesFor(command, option);
  return statement.empty() ? std::vector<std::string>() : namesOfInstallation(session, statement);
}

std::vector<std::string> optionNames(const Command& command) {
  std::vector<std::string> names = {"--help"};
  for (const CommandOption* option : optionsOf(command)) {
    if (!option->hasPlace()) names.push_back(option->names().front());
  }
  return names;
}

std::vector<std::string> namesOf(const Command& command) {
  std::vector<std::string> names;
  for (const Command* below : command.subcommands()) names.push_back(below->name());
  return names;
}

/// What may follow the words behind "voxa help".
std::vector<std::string> helpWords(const Command& program, const std::vector<std::string>& words) {
  const Command* command = &program;
  for (const std::string& word : words) {
    command = command->find(word);
    if (command == nullptr) return {};
  }
  std::vector<std::string> names = namesOf(*command);
  if (!words.empty()) return names;
  for (const Topic& topic : topics()) names.emplace_back(topic.name);
  return names;
}

std::vector<std::string> wordsAt(const Command& program, Session& session, const TypedWords& typed) {
  if (typed.command->parent() == &program && typed.command->name() == "help")
    return helpWords(program, typed.places);
  std::vector<std::string> words = namesOf(*typed.command);
  std::size_t place = 0;
  for (const CommandOption* option : typed.command->options()) {
    if (option->hasPlace() && (place++ == typed.places.size() || option->takesSeveral()))
      return valuesOf(session, *typed.command, *option);
  }
  return words;
}

}  // namespace

std::vector<std::string> completions(const Command& program, Session& session,
                                     const std::vector<std::string>& words) {
  if (words.empty()) return {};
  std::string begun = words.back();
  TypedWords typed = readWords(program, {words.begin(), words.end() - 1});
  session.settings.opening.folder = typed.folder;
  std::string before;  // of the word, which stays
  if (const std::size_t equals = begun.find('='); begun.starts_with("--") && equals != std::string::npos) {
    before = begun.substr(0, equals + 1);
    typed = readWords(program, [&] {
      std::vector<std::string> all(words.begin(), words.end() - 1);
      all.push_back(begun.substr(0, equals));
      return all;
    }());
    begun.erase(0, equals + 1);
    if (typed.option == nullptr) return {};
  }
  // Of several values with commas between the last is begun.
  if (const std::size_t comma = begun.rfind(',');
      typed.option != nullptr && typed.option->names().front() == "--days" && comma != std::string::npos) {
    before += begun.substr(0, comma + 1);
    begun.erase(0, comma + 1);
  }
  std::vector<std::string> all = typed.option != nullptr  ? valuesOf(session, *typed.command, *typed.option)
                                 : begun.starts_with("-") ? optionNames(*typed.command)
                                                          : wordsAt(program, session, typed);
  std::vector<std::string> fitting;
  for (const std::string& each : all) {
    if (toLower(each).starts_with(toLower(begun))) fitting.push_back(before + each);
  }
  std::sort(fitting.begin(), fitting.end());
  fitting.erase(std::unique(fitting.begin(), fitting.end()), fitting.end());
  return fitting;
}

std::vector<std::string> unquotedWords(const std::vector<std::string>& words) {
  std::vector<std::string> all;
  bool joins = false;
  for (const std::string& word : words) {
    std::string text;
    char quote = 0;
    for (std::size_t i = 0; i < word.size(); ++i) {
      const char c = word[i];
      if (quote != 0 ? c == quote : c == '"' || c == '\'') {
        quote = quote != 0 ? '\0' : c;
      } else if (c == '\\' && quote != '\'' && i + 1 < word.size()) {
        text += word[++i];
      } else {
        text += c;
      }
    }
    const bool equals = word == "=" && !all.empty() && all.back().starts_with("--");
    if (equals || joins) {
      all.back() += text;
    } else {
      all.push_back(text);
    }
    joins = equals;
  }
  return all;
}

const char* completionScript(const std::string& shell) {
  if (shell == "bash")
    return R"sh(# Put this into ~/.bashrc:  source <(voxa completion bash)
_voxa() {
  local begun=${COMP_WORDS[COMP_CWORD]} answer
  local option=--*=
  [[ $begun == --*=* ]] && option=  # bash has not taken the value for a word of its own
  COMPREPLY=()
  while IFS= read -r answer; do
    case $begun in
      [\"\']*) COMPREPLY+=("${answer##$option}") ;;  # the quotation mark stays, and covers the blanks
      *) printf -v answer %q "${answer##$option}" && COMPREPLY+=("${answer//\\,/,}") ;;
    esac
  done < <("${COMP_WORDS[0]}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _voxa voxa
)sh";
  if (shell == "zsh")
    return R"sh(#compdef voxa
# Put this into ~/.zshrc, behind compinit:  source <(voxa completion zsh)
_voxa() {
  local -a answers
  answers=("${(@f)$("${words[1]}" complete -- "${(@)words[2,CURRENT]}" 2>/dev/null)}")
  answers=(${answers:#})
  if (( $#answers )); then compadd -a answers; else _files; fi
}
compdef _voxa voxa
)sh";
  return R"sh(# Put this into ~/.config/fish/completions/voxa.fish:  voxa completion fish > THAT_FILE
function __voxa_complete
  set -l words (commandline -opc) (commandline -ct)
  $words[1] complete -- $words[2..-1] 2>/dev/null
end
complete -c voxa -a '(__voxa_complete)'
)sh";
}

}  // namespace voxa::cli
