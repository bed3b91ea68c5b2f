// voxa db convert, voxa export sql and csv: whole databases in other forms.

#include "convert.h"

#include <iostream>
#include <memory>

#include "app/convert_database.h"
#include "output/command_line.h"
#include "output/progress.h"
#include "output/table_output.h"
#include "session.h"
#include "work/refusal.h"
#include "work/sql_script.h"

namespace voxa::cli {

void printTransferred(const Transferred& done) {
  TableOutput table({"Table", "Read", "Written", "Refused"});
  const auto number = [](std::size_t count) { return Value(static_cast<double>(count)); };
  for (const TransferredTable& row : done.tables)
    table.add({row.table, number(row.read), number(row.written), number(row.refused)});
  table.print(std::cout, false);
  for (const std::string& note : done.notes) std::cout << note << '\n';
}

namespace {

struct ConvertOptions {
  std::string from, to;
  bool keepGoing = false;
};

void convert(Session& session, const ConvertOptions& options) {
  const std::string from = session.openForStatement(options.from, false);
  const std::string to = session.callersFile(options.to);
  RefusedRows refused(to + ".refused", options.keepGoing);
  Transferred done;
  {
    Progress progress;
    done = convertDatabase(session.clock(), from, to, refused, progress);
  }
  printTransferred(done);
  std::cout << "Made " << options.to << '\n';
  refused.tell();
}

struct ExportOptions {
  std::string to, file;
  bool showPins = false;
};

void exportScript(Session& session, const ExportOptions& options) {
  if (!isScript(options.to)) throw Refusal("name a file that ends in .sql, as files of statements do");
  convert(session, {options.file, options.to});
}

void exportCsv(Session& session, const ExportOptions& options) {
  const std::string from = session.openForStatement(options.file, false);
  Transferred done;
  {
    Progress progress;
    done = exportTables(session.clock(), from, session.callersFolder(options.to), options.showPins, progress);
  }
  printTransferred(done);
  if (done.damaged) throw Leftover("the file is damaged, and some of it is lost");
}

}  // namespace

void addConvertCommand(Command& group, Session& session) {
  auto* converting = group.add_subcommand("convert", "Make a database file of another one");
  auto options = std::make_shared<ConvertOptions>();
  converting->add_option("FROM", options->from, "A database file, or statements (.sql)")->required();
  converting->add_option("TO", options->to, "The new file; of statements when its name ends in .sql")
      ->required();
  converting->add_flag("--keep-going", options->keepGoing,
                       "Leave out rows that break a rule, and write them beside");
  converting->footer(
      "Tables, rows, indexes, relations and stored queries are copied, and compared with what was read. The\n"
      "new file holds the personal codes, as the old one does.\n"
      "Examples:\n"
      "  voxa db convert visitors.mdb visitors-new.mdb\n"
      "  voxa db convert plant.sql plant.mdb");
  converting->callback([&session, options] { convert(session, *options); });
}

void addExportDatabaseCommands(Command& group, Session& session) {
  auto* script = group.add_subcommand("sql", "Write the main database as statements");
  auto scriptOptions = std::make_shared<ExportOptions>();
  script->add_option("FILE", scriptOptions->to, "The new file, whose name ends in .sql")->required();
  script->add_option("--file", scriptOptions->file, "A database file instead of the main database");
  script->footer(
      "'voxa db convert' makes a database of them again. The personal codes are in the file.\n"
      "Examples:\n  voxa export sql plant.sql\n  voxa --dir plant export sql plant.sql");
  script->callback([&session, scriptOptions] { exportScript(session, *scriptOptions); });

  auto* csv = group.add_subcommand("csv", "Write each table of the main database for spreadsheets");
  auto csvOptions = std::make_shared<ExportOptions>();
  csv->add_option("FOLDER", csvOptions->to, "A new folder")->required();
  csv->add_option("--file", csvOptions->file, "A database file instead of the main database");
  csv->add_flag("--show-pins", csvOptions->showPins, "With the personal codes, which are masked otherwise");
  csv->footer("Examples:\n  voxa export csv tables\n  voxa export csv tables --show-pins");
  csv->callback([&session, csvOptions] { exportCsv(session, *csvOptions); });
}

}  // namespace voxa::cli
