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

/// What is made has another name until it is whole. What has that name already may be somebody's.
std::string unfinished(const std::string& path) {
  std::string name = path + "~unfinished";
  if (files::exists(name)) {
    throw Error(err::fileExists,
                "There is " + name +
                    " already, which a command that was broken off has left, or which is still made: "
                    "delete it, or name another target");
  }
  return name;
}

Transferred convertInto(DatabaseEngine& engine, const std::string& from, const std::string& to, bool script,
                        RefusedRows& refused, Observer& observer) {
  if (script) {
    const auto source = engine.open(from, FileUse::reading);
    Transferred done = writeScript(*source, to, observer);
    addReaderNotes(*source, done, &refused);
    source->close();
    return done;
  }
  const auto target = engine.create(to);
  Transferred done;
  const OnRefused note = [&](const RefusedRow& row) { refused.add(row); };
  if (isScript(from)) {
    done = readScript(from, engine, *target, note, observer);
  } else {
    const auto source = engine.open(from, FileUse::reading);
    done = transfer(*source, engine, *target, note, observer);
    addReaderNotes(*source, done, &refused);
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
  const auto engine = makeFileEngine(clock, {.write = true, .codes = true});
  try {
    Transferred done = convertInto(*engine, from, made, isScript(to), refused, observer);
    refused.decide();
    files::rename(made, to);
    return done;
  } catch (...) {
    for (const auto& open : engine->databases()) open->close();
    files::removeRegular(made);
    files::removeRegular(made + "-journal");
    throw;
  }
}

Transferred exportTables(const Clock& clock, const std::string& from, const std::string& folder, bool codes,
                         Observer& observer) {
  namespace fs = std::filesystem;
  if (files::exists(folder)) throw Error(err::fileExists, "There is a file or folder " + folder + " already");
  const auto engine = makeFileEngine(clock, {.codes = codes});
  const auto database = engine->open(from, FileUse::reading);
  const std::string made = files::native(unfinished(folder));
  files::makeFolder(made);
  std::error_code failure;
  try {
    Transferred done;
    CsvNames names;
    std::size_t rows = 0;
    for (const std::string& table : database->tableNames()) {
      TransferredTable& written = done.tables.emplace_back(TransferredTable{table});
      const std::vector<std::string> columns = database->tableDef(table).fieldNames();
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
    addReaderNotes(*database, done, nullptr);
    fs::rename(made, files::native(folder), failure);
    if (failure)
      throw Error(err::pathAccess, "The folder " + folder + " cannot be made: " + failure.message());
    return done;
  } catch (...) {
    fs::remove_all(made, failure);
    throw;
  }
}

}  // namespace voxa
