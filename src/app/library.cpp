#include "app/library.h"

#include "app/qdb.h"
#include "comm/com.h"
#include "controllers/ledger.h"
#include "controllers/ledger_driver.h"
#include "engines/sqlite/engine.h"
#include "files/command_file.h"
#include "messages/strings.h"

namespace voxa {

Library::Library(const Seams& seams)
    : Installation(seams),
      ledgerEngine_(makeSqliteEngine(seams.clock, {.journal = SqliteOptions::Journal::ahead})),
      ledger_(std::make_unique<Ledger>(*this, *ledgerEngine_)),
      ledgerDriver_(std::make_unique<LedgerDriver>(seams.driver, *ledger_)) {}

Library::~Library() = default;

::voxa::Strings& Library::Strings() {
  if (!strings_) strings_ = std::make_unique<::voxa::Strings>(*this);
  return *strings_;
}

::voxa::Com& Library::Com() {
  if (!com_) com_ = std::make_unique<::voxa::Com>(*this);
  return *com_;
}

::voxa::CommandFile& Library::CommandFile() {
  if (!commandFile_) commandFile_ = std::make_unique<::voxa::CommandFile>(*this);
  return *commandFile_;
}

::voxa::QDB& Library::QDB() {
  if (!qdb_) qdb_ = std::make_unique<::voxa::QDB>(*this);
  return *qdb_;
}

Driver& Library::driver() {
  return *ledgerDriver_;
}

Ledger& Library::ledger() {
  return *ledger_;
}

Messages& Library::messages() {
  return Strings();
}

const Paths& Library::paths() {
  return Com();
}

std::shared_ptr<Database> Library::DB() {
  return QDB().DB();
}

Station& Library::Stations() {
  return QDB().Stations();
}

Reader& Library::Readers() {
  return QDB().Readers();
}

AccessGroup& Library::AccessGroups() {
  return QDB().AccessGroups();
}

Cardholder& Library::Cardholders() {
  return QDB().Cardholders();
}

DailyProgram& Library::DailyPrograms() {
  return QDB().DailyPrograms();
}

WeeklyProgram& Library::WeeklyPrograms() {
  return QDB().WeeklyPrograms();
}

::voxa::Holidays& Library::Holidays() {
  return QDB().Holidays();
}

::voxa::BadgeFormat& Library::BadgeFormat() {
  return QDB().BadgeFormat();
}

::voxa::Journal& Library::Journal() {
  return QDB().Journal();
}

}  // namespace voxa
