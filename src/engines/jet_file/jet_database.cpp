#include "engines/jet_file/jet_database.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "engines/jet_file/reader_process.h"
#include "engines/sqlite/engine.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/text.h"

namespace voxa {

JetSession::JetSession(const Clock& clockOfSession, JetFileOptions optionsOfSession)
    : clock(clockOfSession),
      options(std::move(optionsOfSession)),
      embedded(makeSqliteEngine(clock, {.secrets = options.secrets})) {}

const std::vector<ErrorInfo>& JetSession::lastErrors() const {
  return embedded->lastFailure() > lastFailure ? embedded->errors() : errors;
}

JetDatabase::JetDatabase(std::shared_ptr<JetSession> session, std::string path, std::string_view given)
    : session_(std::move(session)), path_(std::move(path)) {
  const std::string name(given);
  if (!files::exists(given)) throw Error(err::dbFileNotFound, "Could not find the database: " + name);
  // A link leads to somebody else's file, and opening a pipe would wait for its writer.
  if (!files::isPlain(given))
    throw Error(err::dbCannotOpen, "The database cannot be opened: " + name + " is no plain file");
  opened_ = state();
  run({"catalogue"}, [&](jet::Stream& stream) { catalogue_ = readCatalogue(stream); });
  session_->open.push_back(this);
}

JetDatabase::~JetDatabase() {
  close();
}

void JetDatabase::close() {
  if (!std::exchange(open_, false)) return;
  std::erase(session_->open, this);
  if (embedded_) embedded_->close();
  embedded_.reset();
  copy_.reset();
}

bool JetDatabase::updatable() const {
  requireOpen();
  return false;
}

JetDatabase::State JetDatabase::state() const {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void JetDatabase::requireUnchanged() const {
  if (state() == opened_) return;
  throw Error(err::dbLocked, "The database was changed by another program while it was open: " + path_ +
                                 ". Close it there, and open it again");
}

void JetDatabase::requireOpen() const {
  if (!open_) throw Error(err::dbInvalidObject, "The database is closed: " + path_);
}

void JetDatabase::refuse() const {
  const Error error(open_ ? err::dbNotUpdatable : err::dbInvalidObject,
                    open_ ? "The database is a Jet file, which is only read: " + path_ +
                                ". Import it into a database of this system to change it"
                          : "The database is closed: " + path_);
  session_->failed(error);
  throw error;
}

void JetDatabase::note(const std::string& text) {
  std::vector<std::string>& notes = catalogue_.notes;
  if (std::find(notes.begin(), notes.end(), text) == notes.end()) notes.push_back(text);
}

void JetDatabase::run(const std::vector<std::string>& work,
                      const std::function<void(jet::Stream&)>& read) const {
  jet::ReaderProcess process(session_->options, path_, work);
  jet::Stream stream([&](char* to, std::size_t room) { return process.read(to, room); }, path_);
  try {
    read(stream);
  } catch (const Error& error) {
    if (error.number() == err::dbNotADatabase) requireUnchanged();  // amid a change it can look damaged
    throw;
  }
  requireUnchanged();
}

void JetDatabase::visitTable(const TableDef& table, const std::function<bool(const Value* row)>& visit) {
  requireUnchanged();
  run({"rows", table.name}, [&](jet::Stream& stream) {
    for (jet::Frame frame = stream.next(); frame != jet::Frame::end; frame = stream.next()) {
      const jet::StreamTable& sent = stream.table();
      if (frame == jet::Frame::table) {
        const auto alike = [](const jet::StreamColumn& a, const FieldDef& b) {
          return a.field.name == b.name && a.field.type == b.type;
        };
        if (!std::equal(sent.columns.begin(), sent.columns.end(), table.fields.begin(), table.fields.end(),
                        alike)) {
          throw Error(err::dbNotADatabase, "The database file is damaged: " + path_ + ". Table '" +
                                               table.name + "' has other columns than it says");
        }
      } else if (frame == jet::Frame::row) {
        if (!visit(stream.row().data())) return;
      } else if (frame == jet::Frame::tableEnd) {
        if (stream.rows() != sent.rows) {
          note("Table '" + table.name + "' says that it has " + std::to_string(sent.rows) + " rows; " +
               std::to_string(stream.rows()) + " were found");
          catalogue_.damaged = true;
        }
        if (stream.unreadable() != 0) {
          note("Table '" + table.name + "' has " + std::to_string(stream.unreadable()) +
               " values that cannot be read; they are Null");
          catalogue_.damaged = true;
        }
      }
    }
  });
}

Database& JetDatabase::embedded() {
  requireOpen();
  if (!embedded_) {
    requireUnchanged();
    copy_.emplace(
        session_->clock, catalogue_,
        [this](const TableDef& table, const std::function<bool(const Value*)>& visit) {
          visitTable(*catalogue_.table(table.name), visit);
        },
        [this](const std::string& text) { note(text); });
    try {
      embedded_ = session_->embedded->open(copy_->path(), FileUse::reading);
    } catch (const Error&) {
      copy_.reset();
      throw;
    }
  }
  return *embedded_;
}

std::unique_ptr<Recordset> JetDatabase::openRecordset(std::string_view source, const Parameters& parameters,
                                                      RowOptions options) {
  return session_->guarded([&] { return embedded().openRecordset(source, parameters, options); });
}

void JetDatabase::visitRows(std::string_view source, const std::function<bool(const Value* row)>& visit,
                            const Parameters& parameters) {
  session_->guarded([&] {
    requireOpen();
    std::string name = trimmed(std::string(source));
    const TableDef* table = catalogue_.table(name);
    if (table == nullptr && name.size() > 2 && name.front() == '[' && name.back() == ']')
      table = catalogue_.table(std::string_view(name).substr(1, name.size() - 2));
    // What is secret is masked by the statement, not by the reader.
    if (table != nullptr && session_->options.secrets.empty()) {
      visitTable(*table, visit);
    } else {
      embedded().visitRows(source, visit, parameters);
    }
  });
}

QueryInfo JetDatabase::describe(std::string_view source) {
  return session_->guarded([&] { return embedded().describe(source); });
}

std::size_t JetDatabase::schemaVersion() const {
  session_->guarded([&] { requireOpen(); });
  return 0;
}

void JetDatabase::copyTo(std::string_view path) const {
  session_->guarded([&] {
    requireOpen();
    requireUnchanged();
    if (files::exists(path))
      throw Error(err::dbFileExists, "The database exists already: " + std::string(path));
    const std::string begun = std::string(path) + "~new";
    (void)files::removeRegular(begun);
    try {
      files::createNew(begun);
      files::copy(path_, begun);
      requireUnchanged();
      files::rename(begun, path);
    } catch (const Error& error) {
      (void)files::removeRegular(begun);
      if (error.number() == err::fileExists)
        throw Error(err::dbFileExists, "The database exists already: " + std::string(path));
      if (error.number() == err::diskFull) throw Error(err::dbDiskFull, error.description());
      throw;
    }
  });
}

std::vector<std::string> JetDatabase::tableNames() const {
  return session_->guarded([&] {
    requireOpen();
    std::vector<std::string> names;
    for (const TableDef& table : catalogue_.tables) names.push_back(table.name);
    return names;
  });
}

const TableDef& JetDatabase::tableDef(std::string_view table) const {
  return session_->guarded([&]() -> const TableDef& {
    requireOpen();
    const TableDef* const found = catalogue_.table(table);
    if (found == nullptr) throw Error(err::dbUnknownTable, "Unknown table: " + std::string(table));
    return *found;
  });
}

std::vector<Relation> JetDatabase::relations() const {
  return session_->guarded([&] {
    requireOpen();
    return catalogue_.relations;
  });
}

std::vector<QueryDef> JetDatabase::queries() const {
  return session_->guarded([&] {
    requireOpen();
    return catalogue_.queries;
  });
}

int JetDatabase::execute(std::string_view /*sql*/, const Parameters& /*parameters*/) {
  refuse();
}
std::unique_ptr<Command> JetDatabase::prepare(std::string_view /*sql*/) {
  refuse();
}
void JetDatabase::setSchemaVersion(std::size_t /*version*/) {
  refuse();
}
void JetDatabase::createTable(const TableDef& /*definition*/) {
  refuse();
}
void JetDatabase::addField(std::string_view /*table*/, const FieldDef& /*definition*/) {
  refuse();
}
void JetDatabase::deleteTable(std::string_view /*table*/) {
  refuse();
}
void JetDatabase::addIndex(std::string_view /*table*/, const IndexDef& /*index*/) {
  refuse();
}
void JetDatabase::deleteIndex(std::string_view /*table*/, std::string_view /*index*/) {
  refuse();
}
void JetDatabase::alterField(std::string_view /*table*/, const FieldDef& /*definition*/) {
  refuse();
}
void JetDatabase::deleteField(std::string_view /*table*/, std::string_view /*field*/) {
  refuse();
}
void JetDatabase::createRelation(const Relation& /*relation*/) {
  refuse();
}
void JetDatabase::deleteRelation(std::string_view /*name*/) {
  refuse();
}
void JetDatabase::createQuery(const QueryDef& /*query*/) {
  refuse();
}
void JetDatabase::deleteQuery(std::string_view /*name*/) {
  refuse();
}

}  // namespace voxa
