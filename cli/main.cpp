// The command "voxa": the caller application of a person at a terminal.

#include <CLI/CLI.hpp>

#include "commands/session.h"
#include "help/program.h"
#include "help/typed_words.h"
#include "output/command_line.h"
#include "output/terminal_filter.h"
#include "platform/ui/console_prompts.h"
#include "work/refusal.h"

namespace {

/// The command as it was called, "voxa station add".
std::string calledCommand(const CLI::App& app) {
  std::string name = app.get_name();
  for (const CLI::App* command = &app; !command->get_subcommands().empty();) {
    command = command->get_subcommands().front();
    name += " " + command->get_name();
  }
  return name;
}

/// What a caller learns from the exit status; the same in all commands.
enum Status : int {
  done = 0,
  failed = 1,
  misused = 2,
  left = 3  ///< done, with something left that needs a person
};

/// Tells what is wrong with the command line, what may have been meant, and the commands there are when none
/// of them was named.
int explainUsage(const CLI::App& app, const voxa::cli::Command& program, const CLI::ParseError& problem,
                 const std::vector<std::string>& words) {
  if (problem.get_exit_code() == 0) return app.exit(problem) == 0 ? done : misused;
  const voxa::cli::TypedWords typed = voxa::cli::readWords(program, words);
  const std::string called = voxa::cli::calledAs(*typed.command);
  const bool option = !typed.unknown.empty() && typed.unknown.front().starts_with("-");
  if (typed.unknown.empty()) {
    std::cerr << called << ": " << problem.what() << '\n';
  } else {
    std::cerr << called << ": there is no " << (option ? "option" : "command") << " '"
              << typed.unknown.front() << "'" << voxa::cli::meant(program, words) << '\n';
  }
  const auto known = option ? std::vector<const voxa::cli::Command*>() : typed.command->subcommands();
  if (!known.empty()) {
    std::cerr << "Commands of " << called << ":";
    for (const voxa::cli::Command* command : known) std::cerr << ' ' << command->name();
    std::cerr << '\n';
  }
  std::cerr << "'" << called << " --help' tells what it takes"
            << (known.empty() ? "" : ", 'voxa help' how to do things") << '\n';
  return misused;
}

int run(CLI::App& app, const voxa::cli::Command& program, voxa::cli::Session& session, int argc,
        char** argv) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    return explainUsage(app, program, problem, {argv + 1, argv + argc});
  } catch (const voxa::Leftover&) {
    session.explainFailure(calledCommand(app));
    return left;
  } catch (...) {
    session.explainFailure(calledCommand(app));
    return failed;
  }
  if (session.failed()) return failed;
  return session.left() ? left : done;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Door access control: programs of time, their download to the controllers", "voxa");
  try {
    const voxa::cli::TerminalFilter output(std::cout, 1);
    const voxa::cli::TerminalFilter errors(std::cerr, 2);
    voxa::cli::Session session;
    app.set_version_flag("--version", "voxa " VOXA_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(
        "Exit status: 0 done, 1 failed, 2 wrong usage, 3 done, with something left that needs a person.");
    voxa::cli::Command program(app);
    addProgram(program, session, {argv + 1, argv + argc});
    const int status = run(app, program, session, argc, argv);
    std::cout.flush();
    if (std::cout || !voxa::ConsolePrompts::hasOutput()) return status;
    std::cerr << "voxa: the output cannot be written\n";
    return failed;
  } catch (const std::exception& failure) {
    std::cerr << "voxa: " << failure.what() << '\n';
    return failed;
  }
}
