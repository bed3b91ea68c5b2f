#include "access/card_download.h"

#include <algorithm>

#include "access/access_context.h"
#include "access/card_doors.h"
#include "access/card_record.h"
#include "access/cardholder.h"
#include "comm/com.h"
#include "files/conversions.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/notice.h"

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

std::vector<Notice> noticesOf(const Names& twoPrograms, const Names& inactiveStations) {
  using Kind = Notice::Kind;
  std::vector<Notice> notices;
  const auto tell = [&](Kind kind, std::string_view mnemonic, const Names& names) {
    if (!names.empty()) notices.push_back({kind, {mnemonic, "", Value(names.inParentheses())}});
  };
  tell(Kind::warning, "msgTwoWeeklyProgOnController", twoPrograms);
  tell(Kind::leftover, "msgDownloadToUnactive", inactiveStations);
  return notices;
}

namespace {

bool covers(const CardScope& scope, const ControllerPlace& controller) {
  if (!scope) return true;
  const bool wholeStation = scope->address == CmToEachController;
  return scope->station == controller.station && (wholeStation || scope->address == controller.address);
}

}  // namespace

CardDownload::CardDownload(AccessContext& context, const CardScope& scope)
    : context_(context), cards_(context, context.Cardholders()), scope_(scope) {}

void CardDownload::fail(std::int16_t status) {
  if (status_ == 0) status_ = status;
  complete_ = false;
}

void CardDownload::send(std::int32_t cardholderId, const CardParts& anyway) {
  const std::int16_t status = context_.attempt([&] { return sendCard(cardholderId, anyway); });
  if (const ErrorInfo error = context_.error(); error.number != 0) {
    context_.Com().errorList += "\r\nCardholder " + std::to_string(cardholderId) + ": " + error.description;
    context_.error().clear();
  }
  if (status != 0) fail(status);
  if (sent_.size() >= batch) finish();
}

std::int16_t CardDownload::sendCard(std::int32_t id, const CardParts& anyway) {
  if (cards_.openWhere("Id = " + std::to_string(id))) {
    tell(context_, into(failures_), {"msgCantFindCardholder", "Cardholder.downloadI", Value(id)});
    return -1;
  }
  const Recordset& row = *cards_.currentRecordset();
  Sending sending{id, nullToInt(row.get("AccessGroupId")), cardRecord(row)};
  const bool flagged = sending.card.parts.any();
  sending.card.parts |= anyway;
  if (sending.card.parts.none()) return 0;
  Sent sent{id, true, cards_.currentValues(), sending.card.parts};
  if (!isNobodys(sending.card)) {
    for (const GrantedController& controller : controllersOf(context_.database(), sending.group)) {
      sent.everywhere = sendTo(controller, sending) && sent.everywhere;
    }
  }
  if (flagged || !sent.everywhere) sent_.push_back(std::move(sent));
  return sending.status;
}

void CardDownload::refuse(Sending& sending, const std::string& why) {
  context_.Com().errorList += "\r\nCardholder " + std::to_string(sending.id) + ": " + why;
  if (sending.status == 0) sending.status = err::invalidArgument;
  complete_ = false;
}

// Whether the controller has it all now, or needs nothing.
bool CardDownload::sendTo(const GrantedController& controller, Sending& sending) {
  // Of a card that is sent to some controllers only, the flags stay as they are for the others.
  if (!covers(scope_, controller)) return true;
  Com& com = context_.Com();
  if (!controller.active) {
    inactiveStations_.add(controller.stationName);
    return complete_ = false;
  }
  Database& database = context_.database();
  if (const std::string fault = faultOf(database, sending.group, controller); !fault.empty()) {
    refuse(sending, fault);
    return false;
  }
  if (controller.twoPrograms()) tellOfTwoPrograms(controller, sending.group);
  // Of one moment, and the file locked once; the send ends it before the driver is called.
  const Reading reading(database);
  if (!com.TestSend(controller.station, controller.address)) return complete_ = false;
  const std::vector<std::string> lines =
      cardLines(sending.card, controller.rights(), liftOutputs(database, sending.id, controller),
                controller.type, context_.clock().now());
  const std::int16_t result = com.sendLinesTested(lines, controller);
  if (sending.status == 0) sending.status = result;
  return result == 0;
}

void CardDownload::tellOfTwoPrograms(const GrantedController& controller, std::int16_t group) {
  if (!conflicts_.emplace(group, controller).second) return;
  twoPrograms_.add(shutSides(context_.database(), group, controller));
}

// Whether there is nothing to send of it: a deleted card whose number another card has now, which is that
// one's business, or none that a controller could know. Raises what two live cards have in common.
bool CardDownload::isNobodys(const CardRecord& card) {
  if (card.deleted && card.number == 0) return true;
  const auto holders = context_.database().openRecordset(
      "select Name from Cardholders where CardNum = " + std::to_string(card.number) + " and Deleted = false");
  if (card.deleted) return !holders->eof();
  std::string names;
  for (; !holders->eof(); holders->moveNext()) {
    names += (names.empty() ? "" : " and ") + holders->get("Name").toText();
  }
  if (holders->recordCount() <= 1) return false;
  throw Error(err::invalidArgument, "the card number " + std::to_string(card.number) + " is that of " +
                                        names + ": none of them is sent until each has a number of its own");
}

std::vector<Notice> CardDownload::notices() const {
  std::vector<Notice> all = failures_;
  for (Notice& notice : noticesOf(twoPrograms_, inactiveStations_)) all.push_back(std::move(notice));
  return all;
}

void CardDownload::finish() {
  if (sent_.empty()) return;
  const std::int16_t status = context_.attempt([&] {
    Transaction transaction(context_.engine(), context_.database());
    for (const Sent& card : sent_) writeFlags(card);
    transaction.commit();
  });
  if (status != 0) {
    fail(status);
    tell(context_, into(failures_), {"msgUnexpecErr", "Cardholder.downloadI"});
  }
  sent_.clear();
}

void CardDownload::writeFlags(const Sent& card) {
  if (cards_.openWhere("Id = " + std::to_string(card.id))) return;  // deleted meanwhile
  Recordset& row = *cards_.currentRecordset();
  if (card.everywhere) {
    if (scope_ || cards_.currentValues() != card.values) return;
  }
  row.edit();
  for (std::size_t part = 0; part < cardPartCount; ++part) {
    if (card.everywhere || card.parts[part]) row.set(flagColumn(part), !card.everywhere);
  }
  row.update();
}

}  // namespace voxa
