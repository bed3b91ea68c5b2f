#include "app/convert_database.h"

#include <filesystem>
#include <system_error>

#include "app/file_engine.h"
#include "platform/files.h"
#include "platform/observer.h"
#include "platform/text.h"
#include "work/sql_script.h"
#include "work/table_csv.h"

namespace voxa {

namespace {

/// What is made under another name until it is whole. A name that a kill has left is taken again.
std::string unfinished(const std::string& path) {
  return path + "~unfinished";
}

Transferred convertInto(DatabaseEngine& engine, const std::string& from, const std::string& to, bool script,
                        RefusedRows& refused, Observer& observer) {
  if (script) {
    const auto source = engine.open(from, FileUse::reading);
    Transferred done = writeScript(*source, to, observer);
    done.notes = notesOf(*source);
    source->close();
    return done;
  }
  const auto target = engine.create(to);
  Transferred done;
  if (isScript(from)) {
    done = readScript(from, engine, *target, observer);
  } else {
    const auto source = engine.open(from, FileUse::reading);
    done = transfer(
        *source, engine, *target, [&](const RefusedRow& row) { refused.add(row); }, observer);
    for (const std::string& note : notesOf(*source)) done.notes.push_back(note);
    source->close();
  }
  target->close();
  return done;
}

}  // namespace

Transferred convertDatabase(const Clock& clock, const std::string& from, const std::string& to,
                            RefusedRows& refused, Observer& observer) {
  if (files::exists(to)) throw Error(err::fileExists, "There is a file " + to + " already");
  const std::string made = unfinished(to);
  files::removeRegular(made);
  const auto engine = makeFileEngine(clock, {.write = true, .codes = true});
  try {
    Transferred done = convertInto(*engine, from, made, isScript(to), refused, observer);
    refused.decide();
    files::rename(made, to);
    return done;
  } catch (...) {
    for (const auto& open : engine->databases()) open->close();
    files::removeRegular(made);
    throw;
  }
}

Transferred exportTables(const Clock& clock, const std::string& from, const std::string& folder, bool codes,
                         Observer& observer) {
  namespace fs = std::filesystem;
  if (files::exists(folder)) throw Error(err::fileExists, "There is a file or folder " + folder + " already");
  const std::string made = files::native(unfinished(folder));
  std::error_code failure;
  if (fs::is_directory(fs::symlink_status(made, failure))) fs::remove_all(made, failure);
  files::makeFolder(made);
  const auto engine = makeFileEngine(clock, {.codes = codes});
  const auto database = engine->open(from, FileUse::reading);
  Transferred done;
  std::size_t rows = 0;
  CsvNames names;
  for (const std::string& table : database->tableNames()) {
    TransferredTable& written = done.tables.emplace_back(TransferredTable{table});
    std::vector<std::string> columns;
    for (const FieldDef& field : database->tableDef(table).fields) columns.push_back(field.name);
    TableCsv file(made + "/" + names.of(table), columns);
    database->visitRows("[" + table + "]", [&](const Value* row) {
      file.write(row, columns.size());
      ++written.read;
      observer.progress("Writing row", ++rows, 0);
      return true;
    });
    file.close();
    written.written = written.read;
  }
  fs::rename(made, files::native(folder), failure);
  if (failure) throw Error(err::pathAccess, "The folder " + folder + " cannot be made: " + failure.message());
  return done;
}

}  // namespace voxa
