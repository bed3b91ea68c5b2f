#include "controllers/ledger_file.h"

#include "platform/database/schema_version.h"
#include "platform/files.h"

namespace voxa {

namespace {

constexpr const char* damagedSuffix = ".damaged";

TableDef table(const char* name) {
  TableDef definition{name, {}, {}};
  FieldDef id;
  id.name = "Id";
  id.type = DataType::Long;
  id.autoIncrement = true;
  definition.fields.push_back(id);
  addIndex(definition, "Id", {"Id"}, IndexKind::primary);
  return definition;
}

void addText(TableDef& definition, const char* name, DataType type, int size = 0) {
  FieldDef field;
  field.name = name;
  field.type = type;
  field.size = size;
  field.allowZeroLength = true;
  definition.fields.push_back(field);
}

// What the plan keeps.
void addPlan(Database& database) {
  FieldDef contact;
  contact.name = "LastContact";
  contact.type = DataType::Date;
  database.addField("Controllers", contact);
  TableDef digests = table("Digests");
  addText(digests, "Digest", DataType::Text, 16);
  TableDef settings{"Settings", {}, {}};
  addText(settings, "Name", DataType::Text, 50);
  addText(settings, "Content", DataType::Text, 50);
  addIndex(settings, "Name", {"Name"}, IndexKind::primary);
  TableDef dialled = table("Dialled");
  addField(dialled, "Owner", DataType::Integer);
  for (const TableDef& definition : {digests, settings, dialled, table("CreditsSent")}) {
    database.createTable(definition);
  }
}

SchemaSteps schemaSteps() {
  return {SchemaStep(),  // 1: files have a number
          addPlan};      // 2: the plan
}

}  // namespace

LedgerFile::Opened LedgerFile::open(const std::string& folder, const std::function<void()>& begin) {
  if (isCurrent(folder)) return Opened::before;
  close();
  if (folder.empty() || !files::folderExists(folder)) return Opened::none;
  if (folder == impossible_ && !files::exists(pathIn(folder))) return Opened::none;
  folder_ = folder;
  if (!files::exists(path())) {
    try {
      database_ = engine_.create(path());
    } catch (const Error& error) {
      // Nobody can keep account here, and nobody did: nothing is claimed of any controller.
      if (error.number() == err::dbCannotOpen) {
        impossible_ = folder;
        return Opened::none;
      }
      if (error.number() != err::dbFileExists) throw;  // else another process was first
    }
  }
  native_ = files::native(path());
  identity_ = files::identity(native_);
  if (!database_) database_ = engine_.open(path());
  try {
    if (database_->tableNames().empty()) createTables(begin);
    bringForward(engine_, *database_, schemaSteps());
    prepare();
  } catch (...) {
    close();
    throw;
  }
  return Opened::now;
}

bool LedgerFile::isCurrent(const std::string& folder) const {
  return isOpen() && folder == folder_ && files::identity(native_) == identity_;
}

void LedgerFile::prepare() {
  insertThing_ = database_->prepare(
      "parameters pId long, pState memo; insert into Things (Id, State) values (pId, pState)");
  updateThing_ =
      database_->prepare("parameters pState memo, pId long; update Things set State = pState where Id = pId");
  noteChanges_ = database_->prepare(
      "parameters pChanges long, pId long; update Controllers set Changes = pChanges where Id = pId");
  noteContact_ = database_->prepare(
      "parameters pNow datetime, pId long; update Controllers set LastContact = pNow where Id = pId");
  insertDigest_ = database_->prepare(
      "parameters pId long, pDigest text; insert into Digests (Id, Digest) values (pId, pDigest)");
  deleteDigests_ = database_->prepare(
      "parameters pFirst long, pLast long; delete from Digests where Id between pFirst and pLast");
}

void LedgerFile::close() {
  insertThing_.reset();
  updateThing_.reset();
  noteChanges_.reset();
  noteContact_.reset();
  insertDigest_.reset();
  deleteDigests_.reset();
  if (database_) database_->close();
  database_.reset();
}

bool LedgerFile::wasDamaged(const std::string& folder) {
  return files::exists(pathIn(folder) + damagedSuffix + "1");
}

std::string LedgerFile::setAside() {
  close();
  if (files::identity(path()) != identity_) return "";
  for (int n = 1;; ++n) {
    std::string aside = path() + damagedSuffix + std::to_string(n);
    if (files::exists(aside)) continue;
    files::rename(path(), aside);
    for (const char* rest : {"-wal", "-shm"}) (void)files::removeRegular(path() + rest);
    return aside;
  }
}

void LedgerFile::createTables(const std::function<void()>& begin) {
  TableDef controllers = table("Controllers");
  addField(controllers, "Station", DataType::Integer);
  addField(controllers, "Address", DataType::Integer);
  addText(controllers, "Type", DataType::Text, 10);
  addText(controllers, "StationName", DataType::Text, 50);
  addField(controllers, "ComPort", DataType::Integer);
  addText(controllers, "Phone", DataType::Text, 25);
  addField(controllers, "Since", DataType::Date);
  addField(controllers, "Retired", DataType::Date);
  addField(controllers, "Changes", DataType::Long, 0, 0);
  TableDef things = table("Things");
  addText(things, "State", DataType::Memo);
  TableDef sends = table("Sends");
  addField(sends, "Owner", DataType::Integer);
  addText(sends, "Lines", DataType::Memo);
  TableDef unfinished = table("Unfinished");
  addField(unfinished, "Owner", DataType::Integer);
  TableDef notUnderstood = table("NotUnderstood");
  addField(notUnderstood, "ControllerId", DataType::Long);
  addText(notUnderstood, "Line", DataType::Text, 255);
  addField(notUnderstood, "Sent", DataType::Date);
  Transaction transaction(engine_, *database_);
  if (!database_->tableNames().empty()) return;  // another process was first
  for (const TableDef& definition : {controllers, things, sends, unfinished, notUnderstood}) {
    database_->createTable(definition);
  }
  addPlan(*database_);
  database_->setSchemaVersion(schemaSteps().size());
  prepare();
  begin();
  transaction.commit();
}

}  // namespace voxa
