#include "access/card_download.h"

#include <algorithm>

#include "access/card_doors.h"
#include "access/cardholder.h"
#include "app/library.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "files/command_file.h"
#include "platform/clock.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

// Flags are written for so many cards at once: the disk is waited for once, and a download that is killed
// sends no more than these again.
constexpr std::size_t batch = 100;

}  // namespace

void Names::add(const std::string& name) {
  if (std::find(names_.begin(), names_.end(), name) == names_.end()) names_.push_back(name);
}

std::string Names::inParentheses() const {
  std::string text;
  for (const std::string& name : names_) text += (text.empty() ? "(" : ", ") + name;
  return text + ")";
}

bool CardScope::covers(const GrantedController& controller) const {
  return (!station || *station == controller.station) && (!address || *address == controller.address);
}

CardDownload::CardDownload(Library& library, const CardScope& scope)
    : library_(library), cards_(library, library.QDB().Cardholders()), scope_(scope) {}

void CardDownload::fail(std::int16_t status) {
  if (status_ == 0) status_ = status;
  complete_ = false;
}

void CardDownload::send(std::int32_t cardholderId, const CardParts& anyway) {
  const std::int16_t status = library_.attempt([&] { return sendCard(cardholderId, anyway); });
  if (const ErrorInfo error = library_.error(); error.number != 0) {
    library_.Com().errorList += "\r\nCardholder " + std::to_string(cardholderId) + ": " + error.description;
    library_.error().clear();
  }
  if (status != 0) fail(status);
  if (sent_.size() >= batch) finish();
}

std::int16_t CardDownload::sendCard(std::int32_t id, const CardParts& anyway) {
  if (cards_.openWhere("Id = " + std::to_string(id))) {
    library_.report({"msgCantFindCardholder", "Cardholder.downloadI", Value(id)});
    reported_ = true;
    return -1;
  }
  const Recordset& row = *cards_.currentRecordset();
  CardRecord card(row);
  const bool flagged = card.parts.any();
  card.parts |= anyway;
  if (card.parts.none()) return 0;
  const auto group = row.get("AccessGroupId");
  Sent sent{id, true, cards_.currentValues(), card.parts};
  // The number of a deleted card that another card has now is that one's business.
  std::int16_t status = 0;
  if (!card.deleted || !numberIsTaken(card)) {
    for (const GrantedController& controller :
         controllersOf(library_.QDB().database(), group.isNull() ? std::int16_t{0} : group.toInt16())) {
      sent.everywhere = sendTo(controller, id, card, status) && sent.everywhere;
    }
  }
  if (flagged || !sent.everywhere) sent_.push_back(std::move(sent));
  return status;
}

// Whether the controller has it all now, or needs nothing; keeps the first failure in `status`.
bool CardDownload::sendTo(const GrantedController& controller, std::int32_t id, const CardRecord& card,
                          std::int16_t& status) {
  // Of a card that is sent to some controllers only, the flags stay as they are for the others.
  if (!scope_.covers(controller)) return true;
  Com& com = library_.Com();
  if (!controller.active) {
    inactiveStations_.add(controller.stationName);
    return complete_ = false;
  }
  if (controller.twoPrograms()) twoPrograms_.add(com.getName(controller.station, controller.address));
  // Of one moment, and the file locked once; the send ends it before the driver is called.
  const Reading reading(library_.QDB().database());
  if (!com.TestSend(controller.station, controller.address)) return complete_ = false;
  CommandFile& file = library_.CommandFile();
  file.fopen();
  writeCardRecord(card, controller.rights(), liftOutputs(library_.QDB().database(), id, controller),
                  controller.type, library_.clock().now(), file);
  file.fclose();
  const std::int16_t result = com.sendTested(controller.station, controller.address);
  if (status == 0) status = result;
  return result == 0;
}

bool CardDownload::numberIsTaken(const CardRecord& deleted) {
  return !library_.QDB()
              .database()
              .openRecordset("select id from Cardholders where cardNum = " + std::to_string(deleted.number) +
                             " and Deleted = false")
              ->eof();
}

void CardDownload::finish() {
  if (sent_.empty()) return;
  const std::int16_t status = library_.attempt({"msgUnexpecErr", "Cardholder.downloadI"}, [&] {
    Transaction transaction(library_.engine(), library_.QDB().database());
    for (const Sent& card : sent_) writeFlags(card);
    transaction.commit();
  });
  if (status != 0) {
    fail(status);
    reported_ = true;
  }
  sent_.clear();
}

void CardDownload::writeFlags(const Sent& card) {
  if (cards_.openWhere("Id = " + std::to_string(card.id))) return;  // deleted meanwhile
  Recordset& row = *cards_.currentRecordset();
  if (card.everywhere) {
    if (!scope_.everywhere() || cards_.currentValues() != card.values) return;
  }
  row.edit();
  for (std::size_t part = 0; part < cardPartCount; ++part) {
    if (card.everywhere || card.parts[part]) row.set(flagColumn(part), !card.everywhere);
  }
  row.update();
}

}  // namespace voxa
