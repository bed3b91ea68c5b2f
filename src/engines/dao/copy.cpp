// A copy of a file, row by row: the library copies no file that is open.

#include "engines/dao/dao_database.h"
#include "engines/dao/definitions.h"
#include "engines/dao/files.h"
#include "platform/files.h"

namespace voxa {

namespace {

/// A statement that appends a row to a table. Its parameters have the types of the fields.
std::string appending(const TableDef& table) {
  std::string declared;
  std::vector<std::string> parameters;
  for (const FieldDef& field : table.fields) {
    parameters.push_back("value " + std::to_string(parameters.size()));
    declared += (declared.empty() ? "[" : ", [") + parameters.back() + "] " + sqlType(field);
  }
  return "PARAMETERS " + declared + "; INSERT INTO " + dao::quoted(table.name) + " (" +
         nameList(table.fieldNames()) + ") VALUES (" + nameList(parameters) + ")";
}

}  // namespace

void DaoDatabase::copyInto(Database& copy) {
  for (const std::string& name : tableNames()) {
    const TableDef table = tableDef(name);
    copy.createTable(table);
    const auto append = copy.prepare(appending(table));
    visitRows(name,
              [&](const Value* row) {
                (void)append->execute({row, row + table.fields.size()});
                return true;
              },
              {});
  }
  for (const Relation& relation : relations()) copy.createRelation(relation);
  for (const QueryDef& query : queries()) copy.createQuery(query);
  if (const std::size_t version = schemaVersion(); version != 0) copy.setSchemaVersion(version);
}

void DaoDatabase::copyTo(std::string_view path) const {
  session_->guarded([&] {
    (void)opened();
    if (files::exists(path)) throw dao::fileExists(path);
    // Another workspace has no part in the transaction that runs, and sees what is committed.
    const auto session = session_->inTransaction ? session_->apart() : session_;
    const auto source = dao::openFile(session, path_, FileUse::reading);
    // The file is made under another name: a process that is killed meanwhile leaves no half copy.
    const std::string begun = std::string(path) + "~new.mdb";
    (void)files::removeRegular(begun);
    try {
      const auto copy = dao::createFile(session, begun);
      session->inStep([&] { source->copyInto(*copy); });
      copy->close();
      files::rename(begun, path);
    } catch (const Error& error) {
      (void)files::removeRegular(begun);
      if (error.number() == err::fileExists) throw dao::fileExists(path);
      throw;
    }
  });
}

}  // namespace voxa
