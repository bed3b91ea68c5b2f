#include "journal/journal.h"

#include "journal/journal_rows.h"
#include "platform/database/database.h"
#include "platform/database/schema_version.h"

namespace voxa {

namespace {

SchemaSteps schemaSteps() {
  return {SchemaStep()};  // 1: files have a number
}

}  // namespace

std::int16_t Journal::openDB() {
  return context_.attempt({"msgCantLoad", dbName}, [&] {
    auto opened = context_.engine().open(dbName);
    bringForward(context_.engine(), *opened, schemaSteps());
    database_ = std::move(opened);
  });
}

std::int16_t Journal::createDB() {
  return context_.attempt({"msgCantCreateDB", "Journal.createDB"}, [&] { createFile(); });
}

void Journal::createFile() {
  database_ = context_.engine().create(dbName);
  context_.showLater([&] {
    Transaction transaction(context_.engine(), *database_);
    create();
    (void)database_->tableDef(Name());  // raises what create tells of and passes over: a journal is its table
    database_->setSchemaVersion(schemaSteps().size());
    transaction.commit();
  });
}

void Journal::createFields(TableDef& td) {
  addField(td, "Id", DataType::Long);
  td.fields.back().autoIncrement = true;
  addField(td, "Date", DataType::Date);
  addField(td, "StationId", DataType::Long);
  addField(td, "StationName", DataType::Text, 50);
  addField(td, "ReaderId", DataType::Long);
  addField(td, "ReaderName", DataType::Text, 50);
  addField(td, "TransactionType", DataType::Text, 2);
  addField(td, "CardholderName", DataType::Text, cardholderNameSize);
  addField(td, "TransactionData", DataType::Text, 8);
}

void Journal::createIndexes(TableDef& td) {
  addIndex(td, "Id", {"Id"}, IndexKind::primary);
}

}  // namespace voxa
