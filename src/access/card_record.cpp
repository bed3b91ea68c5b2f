#include "access/card_record.h"

#include <array>

#include "files/conversions.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

constexpr std::array<std::string_view, cardPartCount> flagColumns = {
    "CardCodeFlagD",   "AccessGroupIdFlagD",  "ValidatedFlagD", "PINCodeFlagD",
    "SupervisorFlagD", "ValidationDateFlagD", "CreditFlagD"};

}  // namespace

std::string_view flagColumn(std::size_t part) {
  return flagColumns.at(part);
}

CardRecord cardRecord(const Recordset& row) {
  const Value number = row.get("CardNum");
  const Value code = row.get("CardCode");
  CardRecord card;
  card.number = number.isNull() ? 0 : number.toInt32();
  card.code = code.isNull() ? "" : code.toText();
  card.deleted = row.get("Deleted").toBool();
  card.validated = row.get("Validated").toBool();
  card.pinCode = nullToInt(row.get("PINCode"));
  card.supervisor = row.get("Supervisor").toBool();
  if (const Value date = row.get("ValidationDate"); !date.isNull()) card.validationDate = date.toDateTime();
  card.credit = nullToInt(row.get("Credit"));
  for (std::size_t part = 0; part < cardPartCount; ++part) {
    card.parts[part] = row.get(flagColumn(part)).toBool();
  }
  return card;
}

}  // namespace voxa
