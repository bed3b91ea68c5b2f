// voxa import and voxa export: cards as a table in a text file, and what came from an old installation.

#include <iostream>
#include <optional>

#include "app/import_installation.h"
#include "card_differences.h"
#include "commands.h"
#include "convert.h"
#include "loss_question.h"
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

/// As they are: the encoding is found later.
std::string bytesOf(const std::string& path) {
  std::string bytes;
  files::Stream file(path, files::Stream::Mode::read, files::Stream::Kind::any);
  for (std::string some; !(some = file.readSome()).empty();) bytes += some;
  return bytes;
}

struct ImportOptions {
  std::string path;
  std::optional<std::string> delimiter, encoding;
  CardTableFormat format;
  bool dryRun = false;
};

CardTableFormat formatOf(const ImportOptions& options) {
  CardTableFormat format = options.format;
  if (options.encoding && !(format.encoding = encodingNamed(*options.encoding)))
    throw Refusal("the encoding is utf-8, utf-16 or cp1252, not " + *options.encoding);
  if (options.delimiter && !(format.delimiter = delimiterNamed(*options.delimiter)))
    throw Refusal("the delimiter is one character, or tab, not " + *options.delimiter);
  return format;
}

void requireGood(const CardImport& import) {
  constexpr std::size_t shownLines = 20;
  const std::size_t bad = import.badLines.size();
  for (std::size_t i = 0; i < std::min(bad, shownLines); ++i) {
    std::cerr << "line " << import.badLines[i].line << ": " << import.badLines[i].reason << '\n';
  }
  if (bad > shownLines) std::cerr << "and " << bad - shownLines << " more lines\n";
  if (bad > 0) throw Refusal("nothing is imported: " + std::to_string(bad) + " bad lines");
}

std::string countsOf(const CardImport& import) {
  std::string counts = std::to_string(import.changes.added()) + " new cards";
  if (import.changes.changed() > 0) counts += ", " + std::to_string(import.changes.changed()) + " changed";
  if (import.unchanged > 0) counts += ", " + std::to_string(import.unchanged) + " as they are";
  return counts;
}

void importTable(Session& session, const ImportOptions& options) {
  session.openForSending();
  CardImport import =
      readCardTable(session.library(), bytesOf(session.callersFile(options.path)), formatOf(options));
  requireGood(import);
  if (options.dryRun) {
    printDifferences(import.changes);
    std::cout << "Nothing is changed: it would be " << countsOf(import) << '\n';
    return;
  }
  if (options.format.update && import.changes.empty()) {
    std::cout << "Nothing is to be changed: " << countsOf(import) << '\n';
    return;
  }
  if (import.changes.changed() > 0) requireYes(session, "Import " + countsOf(import) + "?");
  {
    Progress progress;
    import.changes.carryOut(&progress);
  }
  if (options.format.update) {
    std::cout << countsOf(import) << "; to be sent with 'voxa download'\n";
  } else {
    std::cout << import.changes.added() << " cards imported, to be sent with 'voxa download'\n";
  }
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
  auto* importing = reading->add_subcommand("cards", "Add or change the cards of a table, all or none");
  auto table = std::make_shared<ImportOptions>();
  importing->add_option("FILE", table->path, "The table: a text file with separators")->required();
  importing->add_flag("--update", table->format.update, "Change the cards that there are already");
  importing->add_flag("--dry-run", table->dryRun, "Only show what would change, card by card");
  importing->add_flag("--transliterate", table->format.transliterate,
                      "Letters that the database cannot hold are written as Latin ones");
  importing->add_option("--delimiter", table->delimiter,
                        "Comma, semicolon, tab, or another character; found unless given");
  importing->add_option("--encoding", table->encoding, "utf-8, utf-16 or cp1252; found unless given");
  importing->footer(
      "The header line names the columns: name, code and group, and what there is of number, pin, until,\n"
      "credit, supervisor and valid. An empty field is not given; none takes a value away.\n"
      "With --update a line changes the card of its number, else of its code, and of its name when it has\n"
      "neither; it asks first. What 'voxa export cards' wrote changes nothing where it came from.\n"
      "Examples:\n  voxa import cards staff.csv\n  voxa import cards staff.csv --update --dry-run");
  importing->callback([&session, table] { importTable(session, *table); });

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
  exporting->footer(
      "Examples:\n  voxa export cards staff.csv\n  voxa export cards staff.csv --force --show-pins");
  exporting->callback([&session, options] { exportTable(session, *options); });
  addExportDatabaseCommands(*writing, session);
}

}  // namespace voxa::cli
