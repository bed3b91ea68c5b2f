#pragma once

#include <memory>

#include "controllers/ledger.h"
#include "files/line_span.h"
#include "work/installation.h"

namespace voxa {

class QDB;
class Strings;

/// What knows everybody: the context of all rooms, with the four service objects, each created at first use
/// and kept until the context ends.
class Library : public Installation {
 public:
  explicit Library(const Seams& seams);
  ~Library() override;

  [[nodiscard]] ::voxa::Strings& Strings();
  [[nodiscard]] ::voxa::Com& Com() override;
  [[nodiscard]] ::voxa::CommandFile& CommandFile() override;
  /// The driver, with the ledger of what it has sent over it.
  [[nodiscard]] Driver& driver() override;
  [[nodiscard]] ::voxa::Ledger& ledger() override;
  [[nodiscard]] ::voxa::QDB& QDB();

  [[nodiscard]] Messages& messages() override;
  [[nodiscard]] const Paths& paths() override;
  [[nodiscard]] LineLock& lineLock() override { return lineLock_; }
  [[nodiscard]] std::shared_ptr<Database> DB() override;
  [[nodiscard]] Station& Stations() override;
  [[nodiscard]] Reader& Readers() override;
  [[nodiscard]] AccessGroup& AccessGroups() override;
  [[nodiscard]] Cardholder& Cardholders() override;
  [[nodiscard]] DailyProgram& DailyPrograms() override;
  [[nodiscard]] WeeklyProgram& WeeklyPrograms() override;
  [[nodiscard]] ::voxa::Holidays& Holidays() override;
  [[nodiscard]] ::voxa::BadgeFormat& BadgeFormat() override;
  [[nodiscard]] ::voxa::Journal& Journal() override;

 private:
  LineLock lineLock_;
  std::unique_ptr<DatabaseEngine> ledgerEngine_;
  std::unique_ptr<::voxa::Ledger> ledger_;
  std::unique_ptr<Driver> ledgerDriver_;
  // Destroyed from the last to the first: the table objects go before what they use.
  std::unique_ptr<::voxa::Strings> strings_;
  std::unique_ptr<::voxa::Com> com_;
  std::unique_ptr<::voxa::CommandFile> commandFile_;
  std::unique_ptr<::voxa::QDB> qdb_;
};

}  // namespace voxa
