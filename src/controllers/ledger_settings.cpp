#include "controllers/ledger_settings.h"

#include "platform/database/database.h"

namespace voxa {

namespace {

constexpr const char* query = "select * from Settings where Name = 'Intervals'";

}  // namespace

std::optional<bool> fourIntervalsOf(Database& ledger) {
  const auto row = ledger.openRecordset(query);
  if (row->eof()) return std::nullopt;
  return row->get("Content").toText() == "4";
}

void storeFourIntervals(Database& ledger, bool four) {
  const auto row = ledger.openRecordset(query);
  if (row->eof()) {
    row->addNew();
    row->set("Name", "Intervals");
  } else {
    row->edit();
  }
  row->set("Content", four ? "4" : "2");
  row->update();
}

}  // namespace voxa
