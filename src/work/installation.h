#pragma once

#include "access/access_context.h"
#include "controllers/ledger.h"

namespace voxa {

class BadgeFormat;
class DailyProgram;
class Holidays;
class Journal;
class WeeklyProgram;

/// An opened installation as the work on it sees it: all tables, the lines, the texts.
class Installation : public AccessContext {
 public:
  using AccessContext::AccessContext;

  [[nodiscard]] ::voxa::Ledger& ledger() override = 0;
  [[nodiscard]] virtual DailyProgram& DailyPrograms() = 0;
  [[nodiscard]] virtual WeeklyProgram& WeeklyPrograms() = 0;
  [[nodiscard]] virtual ::voxa::Holidays& Holidays() = 0;
  [[nodiscard]] virtual ::voxa::BadgeFormat& BadgeFormat() = 0;
  [[nodiscard]] virtual ::voxa::Journal& Journal() = 0;
};

}  // namespace voxa
