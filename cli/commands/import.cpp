// voxa import and voxa export: cards as a table in a text file, and what came from an old installation.

#include <iostream>
#include <optional>

#include "app/import_installation.h"
#include "commands.h"
#include "convert.h"
#include "may_write.h"
#include "output/command_line.h"
#include "output/progress.h"
#include "platform/files.h"
#include "session.h"
#include "work/card_export.h"
#include "work/card_import.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

std::string contentsOf(const std::string& path) {
  std::string text;
  files::Stream file(path, files::Stream::Mode::read, files::Stream::Kind::any);
  while (!file.atEnd()) text += file.readLine() + "\n";
  return text;
}

void importTable(Session& session, const std::string& path) {
  constexpr std::size_t shownLines = 20;
  session.openForSending();
  CardImport import;
  {
    Progress progress;
    import = importCards(session.library(), contentsOf(session.callersFile(path)), progress);
  }
  const std::size_t bad = import.badLines.size();
  for (std::size_t i = 0; i < std::min(bad, shownLines); ++i) {
    std::cerr << "line " << import.badLines[i].line << ": " << import.badLines[i].reason << '\n';
  }
  if (bad > shownLines) std::cerr << "and " << bad - shownLines << " more lines\n";
  if (bad > 0) throw Refusal("nothing is imported: " + std::to_string(bad) + " bad lines");
  std::cout << import.cards << " cards imported, to be sent with 'voxa download'\n";
}

struct ExportOptions {
  std::string path;
  bool force = false;
  bool showPins = false;
};

void exportTable(Session& session, const ExportOptions& options) {
  session.open();
  const auto [text, cards] = exportCards(session.library(), options.showPins);
  if (options.path.empty()) {
    std::cout << text;
    return;
  }
  const std::string path = session.callersFile(options.path);
  requireMayWrite(session, path, options.force);
  files::Stream file(path, files::Stream::Mode::write, files::Stream::Kind::any);
  file.write(text);
  file.close();
  std::cout << cards << " cards exported\n";
}

struct OldOptions {
  OldFiles files;
  bool trial = false;
  bool keepGoing = false;
};

void importOld(Session& session, const OldOptions& options) {
  const auto full = [&](const std::string& named) { return named.empty() ? "" : session.callersFile(named); };
  const OldFiles old{full(options.files.main), full(options.files.journal), full(options.files.texts)};
  Opening how = session.settings.opening;
  how.folder = session.callersFolder(how.folder);
  RefusedRows refused(how.folder + ".refused", options.keepGoing && !options.trial);
  Transferred done;
  {
    Progress progress;
    done = importInstallation(session.prompts(), how, old, refused, options.trial, progress);
  }
  printTransferred(done);
  if (options.trial) {
    std::cout << "Nothing was made: this was a trial\n";
    return;
  }
  std::cout << "Made an installation in " << how.folder
            << ". What its controllers miss is told by 'voxa plan', and sent by 'voxa download'\n";
  refused.tell();
}

}  // namespace

void addImportCommands(Command& app, Session& session) {
  auto* reading = app.add_subcommand("import", "Bring cards, or an old installation")->require_subcommand(1);
  auto* importing = reading->add_subcommand("cards", "Add the cards of a table, all or none");
  auto source = std::make_shared<std::string>();
  importing->add_option("FILE", *source, "The table: UTF-8, fields separated by commas")->required();
  importing->footer(
      "The header line names the columns: name, code and group, and what there is of number, pin, until,\n"
      "credit, supervisor and valid. An empty field is not given.\n"
      "Example:\n  voxa import cards staff.csv");
  importing->callback([&session, source] { importTable(session, *source); });

  auto* old = reading->add_subcommand("mdb", "Make an installation of an old one's database files");
  auto files = std::make_shared<OldOptions>();
  old->add_option("MAIN", files->files.main, "The old main database")->required();
  old->add_option("--journal", files->files.journal, "The old journal");
  old->add_option("--texts", files->files.texts, "The old message texts");
  auto* trial = old->add_flag("--dry-run", files->trial, "Only tell what would come of it");
  old->add_flag("--keep-going", files->keepGoing, "Leave out rows that break a rule, and write them beside")
      ->excludes(trial);
  old->footer(
      "The installation is made in the folder of --dir, which must not hold one. The old files are only "
      "read.\n"
      "Columns and tables that this system does not know are kept.\n"
      "Examples:\n"
      "  voxa --dir plant import mdb old/KRV.mdb --journal old/Journal.MDB --dry-run\n"
      "  voxa --dir plant import mdb old/KRV.mdb --journal old/Journal.MDB");
  old->callback([&session, files] { importOld(session, *files); });

  auto* writing = app.add_subcommand("export", "Write cards, or the whole database, for other programs")
                      ->require_subcommand(1);
  auto* exporting = writing->add_subcommand("cards", "Write the cards as a table that import reads");
  auto options = std::make_shared<ExportOptions>();
  exporting->add_option("FILE", options->path, "File of the table; standard output without one");
  exporting->add_flag("--show-pins", options->showPins, "With the personal codes");
  exporting->add_flag("--force", options->force, "Replace the file when it exists");
  exporting->footer("Example:\n  voxa export cards staff.csv");
  exporting->callback([&session, options] { exportTable(session, *options); });
  addExportDatabaseCommands(*writing, session);
}

}  // namespace voxa::cli
