#include "access/card_download.h"

#include <algorithm>
#include <utility>

#include "access/access_context.h"
#include "access/card_doors.h"
#include "access/card_record.h"
#include "access/cardholder.h"
#include "comm/com.h"
#include "comm/send_ledger.h"
#include "files/conversions.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/notice.h"

namespace voxa {

namespace {

// So many cards are sent as a block: the disk is waited for before and behind it alone, and a download that
// is killed sends no more than these again.
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
  if (std::optional<Prepared> card = prepare(cardholderId, anyway)) prepared_.push_back(std::move(*card));
  if (prepared_.size() >= batch) finish();
}

// None when there is nothing to send.
std::optional<CardDownload::Prepared> CardDownload::prepare(std::int32_t id, const CardParts& anyway) {
  Prepared card;
  card.sent.id = id;
  bool needed = false;
  card.status = context_.attempt([&]() -> std::int16_t {
    const Reading reading(context_.database());  // of one moment, and the file locked once
    if (cards_.openWhere("Id = " + std::to_string(id))) {
      tell(context_, into(failures_), {"msgCantFindCardholder", "Cardholder.downloadI", Value(id)});
      return -1;
    }
    const Recordset& row = *cards_.currentRecordset();
    CardRecord record = cardRecord(row);
    card.flagged = record.parts.any();
    record.parts |= anyway;
    needed = record.parts.any();
    if (!needed) return 0;
    card.sent.values = cards_.currentValues();
    card.sent.parts = record.parts;
    card.sent.everywhere = true;
    if (isNobodys(record)) return 0;
    const std::int16_t group = nullToInt(row.get("AccessGroupId"));
    for (const GrantedController& controller : controllersOf(context_.database(), group)) {
      const bool planned = plan(card, record, group, controller);
      card.sent.everywhere = planned && card.sent.everywhere;
    }
    return 0;
  });
  card.error = std::exchange(context_.error(), {});
  const bool failed = card.status != 0;
  return needed || failed ? std::optional(std::move(card)) : std::nullopt;
}

// Whether the controller will have it all when it takes its lines, or needs nothing.
bool CardDownload::plan(Prepared& card, const CardRecord& record, std::int16_t group,
                        const GrantedController& controller) {
  // Of a card that is sent to some controllers only, the flags stay as they are for the others.
  if (!covers(scope_, controller)) return true;
  if (!controller.active) {
    inactiveStations_.add(controller.stationName);
    return complete_ = false;
  }
  const ControllerPlace& place = controller;
  Database& database = context_.database();
  if (std::string fault = faultOf(database, group, controller); !fault.empty()) {
    card.steps.push_back({place, {}, std::move(fault)});
    return false;
  }
  if (controller.twoPrograms()) tellOfTwoPrograms(controller, group);
  if (!context_.Com().TestSend(controller.station, controller.address)) return complete_ = false;
  card.steps.push_back(
      {place,
       cardLines(record, controller.rights(), liftOutputs(database, card.sent.id, controller),
                 controller.type, context_.clock().now()),
       {}});
  return true;
}

// Sends what was prepared, and notes what became of it.
void CardDownload::sendPrepared() {
  if (prepared_.empty()) return;
  std::vector<PlannedSend> sends;
  if (!context_.Com().inhibitCom) {
    for (const Prepared& card : prepared_) {
      for (const Step& step : card.steps) {
        if (!step.lines.empty()) sends.push_back({step.place, step.lines});
      }
    }
  }
  const ExpectedSends expected(context_.ledger(), sends);
  for (Prepared& card : std::exchange(prepared_, {})) sendCard(card);
}

void CardDownload::sendCard(Prepared& card) {
  Com& com = context_.Com();
  const std::string name = "\r\nCardholder " + std::to_string(card.sent.id) + ": ";
  std::int16_t status = 0;  // the first failure
  const std::int16_t failed = context_.attempt([&] {
    for (const Step& step : card.steps) {
      std::int16_t result = err::invalidArgument;
      if (step.fault.empty()) {
        const Reading reading(context_.database());  // which the send ends before the driver is called
        result = com.sendLinesTested(step.lines, step.place);
      } else {
        com.errorList += name + step.fault;
        complete_ = false;
      }
      if (status == 0) status = result;
      card.sent.everywhere = card.sent.everywhere && result == 0;
    }
  });
  ErrorInfo error = std::exchange(context_.error(), {});
  if (error.number == 0) error = card.error;
  if (error.number != 0) com.errorList += name + error.description;
  if (failed != 0) status = failed;
  if (card.status != 0) status = card.status;
  if (status != 0) fail(status);
  const bool whole = failed == 0 && card.status == 0;
  if (whole && (card.flagged || !card.sent.everywhere)) sent_.push_back(std::move(card.sent));
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
  sendPrepared();
  if (sent_.empty()) return;
  std::vector<std::int32_t> credits;
  const std::int16_t status = context_.attempt([&] {
    Transaction transaction(context_.engine(), context_.database());
    for (const Sent& card : sent_) writeFlags(card, credits);
    transaction.commit();
  });
  if (status != 0) {
    fail(status);
    tell(context_, into(failures_), {"msgUnexpecErr", "Cardholder.downloadI"});
  }
  if (status == 0) context_.ledger().endCredits(credits);
  sent_.clear();
}

// credits: gets the number of a card whose marked credit has been given.
void CardDownload::writeFlags(const Sent& card, std::vector<std::int32_t>& credits) {
  if (cards_.openWhere("Id = " + std::to_string(card.id))) return;  // deleted meanwhile
  Recordset& row = *cards_.currentRecordset();
  if (card.everywhere) {
    if (scope_ || cards_.currentValues() != card.values) return;
    const Value number = row.get("CardNum");
    if (row.get(flagColumn(creditPart)).toBool() && !number.isNull()) credits.push_back(number.toInt32());
  }
  row.edit();
  for (std::size_t part = 0; part < cardPartCount; ++part) {
    if (card.everywhere || card.parts[part]) row.set(flagColumn(part), !card.everywhere);
  }
  row.update();
}

}  // namespace voxa
