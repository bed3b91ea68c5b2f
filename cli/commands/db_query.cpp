// voxa db query: a statement of the database language on the main database or another file.

#include "db_query.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "app/database_query.h"
#include "output/command_line.h"
#include "output/table_output.h"
#include "session.h"

namespace voxa::cli {

namespace {

struct QueryOptions {
  std::string statement, file;
  bool write = false;
  bool showPins = false;
  bool json = false;
  bool csv = false;
};

void print(const std::vector<std::string>& columns, const QueryOptions& options, const ListRows& rows) {
  options.csv ? printCsv(std::cout, columns, rows) : printList(std::cout, columns, options.json, rows);
}

void change(const DatabaseQuery& query, const QueryOptions& options) {
  const int touched = query.change(options.statement);
  if (options.json || options.csv) {
    print({"Rows"}, options, [&](const auto& row) { row({Cell(touched)}); });
    return;
  }
  std::cout << touched << (touched == 1 ? " row" : " rows") << " changed\n";
}

void query(Session& session, const QueryOptions& options) {
  const std::string file = session.openForStatement(options.file, options.write);
  const DatabaseQuery query(session.clock(), file, {.write = options.write, .codes = options.showPins});
  if (options.write) return change(query, options);
  const DatabaseQuery::Rows rows = query.select(options.statement);
  std::vector<Cell> cells(rows.columns().size());
  print(rows.columns(), options, [&](const auto& row) {
    rows.each([&](const std::vector<Value>& values) {
      for (std::size_t i = 0; i < values.size(); ++i) cells[i].set(values[i]);
      row(cells);
    });
  });
}

}  // namespace

void addQueryCommand(Command& group, Session& session) {
  auto* querying = group.add_subcommand("query", "Run one statement of the database language");
  auto options = std::make_shared<QueryOptions>();
  querying->add_option("TEXT", options->statement, "The statement, or the name of a table or stored query")
      ->required();
  querying->add_option("--file", options->file, "A database file instead of the main database");
  auto* csv = querying->add_flag("--csv", options->csv, "As a table with commas");
  querying->add_flag("--json", options->json, "As a JSON array")->excludes(csv);
  querying->add_flag("--write", options->write, "Carry out a statement that changes rows or tables");
  querying->add_flag("--show-pins", options->showPins, "Let it use the personal codes");
  querying->footer(
      "Without --write nothing is changed, not even an older file. With it only the rules of the tables are\n"
      "checked: 'voxa plan' tells what the controllers miss afterwards. A ledger is never written.\n"
      "Personal codes are masked in the columns of a star (*); no other use of them is taken without\n"
      "--show-pins.\n"
      "Examples:\n"
      "  voxa db query \"select CardNum, Name from Cardholders where Name like 'a*' order by Name\"\n"
      "  voxa db query \"select * from Journal where Date >= #12/24/2026#\" --file Journal.MDB --csv\n"
      "  voxa db query \"update Stations set Name = 'Annex' where Id = 2\" --write");
  querying->callback([&session, options] { query(session, *options); });
}

}  // namespace voxa::cli
