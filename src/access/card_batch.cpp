// Cardholder::createGroup: a block of consecutive cards, in the table and on the controllers, all or nothing.

#include <algorithm>
#include <limits>
#include <optional>

#include "access/access_context.h"
#include "access/card_block.h"
#include "access/card_doors.h"
#include "access/card_download.h"
#include "access/cardholder.h"
#include "comm/com.h"
#include "comm/send_ledger.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/notice.h"
#include "platform/text.h"

namespace voxa {

namespace {

constexpr int codeLength = 8;
constexpr std::int16_t isInUse = 1;
constexpr std::int16_t notTaken = -1;

std::string addToCardCode(const std::string& code, std::int32_t n) {
  const bool digits = !code.empty() && code.size() <= codeLength &&
                      std::all_of(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits)
    throw Error(err::typeMismatch, "Type mismatch: the card code '" + code + "' is not 1 to 8 digits");
  std::string sum = zeroPadded(std::stoll(code) + n, codeLength);
  if (sum.size() > codeLength) {
    throw Error(err::overflow, "Overflow: the card code " + sum + " has more than 8 digits");
  }
  return sum;
}

std::int16_t cardNumber(std::int64_t number) {
  if (number < 1 || number > std::numeric_limits<std::int16_t>::max()) {
    throw Error(err::overflow, "Overflow: the card number " + std::to_string(number));
  }
  return static_cast<std::int16_t>(number);
}

class Batch {
 public:
  Batch(AccessContext& context, std::int32_t firstNum, std::string firstCode, std::int16_t cards,
        std::int16_t group)
      : context_(context),
        firstNum_(firstNum),
        firstCode_(std::move(firstCode)),
        cards_(cards),
        group_(group) {
    if (cards < 1) throw Error(err::invalidArgument, "Invalid argument: a group has one card or more");
    lastNum_ = cardNumber(std::int64_t{cardNumber(firstNum)} + cards - 1);
    lastCode_ = addToCardCode(firstCode_, cards - 1);
    firstCode_ = addToCardCode(firstCode_, 0);
    numbers_ = numbersOf(firstNum_, lastNum_);
  }

  /// The number or code of the block that is in use, if there is one.
  std::optional<FailureMessage> clash() {
    if (auto number = inUse("CardNum", numbers(), "msgCardNumInUse")) return number;
    return inUse("CardCode", "cardCode between '" + firstCode_ + "' and '" + lastCode_ + "'",
                 "msgCardCodeInUse");
  }
  void insert(bool groupMode);
  /// 0, or notTaken at the first controller that does not take the block.
  std::int16_t send();
  /// The block is in the table: nothing of it is to be taken back any more.
  void settle();
  /// Takes the block back from the controllers that have it, or part of it.
  void takeBack();
  [[nodiscard]] std::vector<Notice> leftOut() const { return noticesOf(twoPrograms_, inactiveStations_); }
  /// Whether all the group's controllers have it.
  [[nodiscard]] bool everywhere() const { return everywhere_; }

 private:
  std::int16_t send(const std::vector<PlannedSend>& sends);
  [[nodiscard]] Database& database() { return context_.database(); }
  [[nodiscard]] std::string numbers() const {
    return "cardNum between " + std::to_string(firstNum_) + " and " + std::to_string(lastNum_);
  }
  std::optional<FailureMessage> inUse(const std::string& column, const std::string& condition,
                                      std::string_view mnemonic);
  [[nodiscard]] std::vector<std::string> blockLines(const GrantedController& controller,
                                                    const std::vector<std::int16_t>& lifts) const;

  AccessContext& context_;
  std::int32_t firstNum_;
  std::int16_t lastNum_ = 0;
  std::string firstCode_;
  std::string lastCode_;
  std::int16_t cards_;
  std::int16_t group_;
  std::vector<std::int32_t> numbers_;
  std::vector<UnfinishedCards> noted_;
  std::vector<ControllerPlace> reached_;
  Names inactiveStations_;
  Names twoPrograms_;
  bool everywhere_ = true;
};

std::optional<FailureMessage> Batch::inUse(const std::string& column, const std::string& condition,
                                           std::string_view mnemonic) {
  const auto rows = database().openRecordset("select id, " + column + " from Cardholders where " + condition);
  if (rows->eof()) return std::nullopt;
  return FailureMessage{mnemonic, "", Value("(" + rows->get(column).toText() + ")")};
}

void Batch::insert(bool groupMode) {
  const std::string prefix = groupMode ? "" : context_.messages().read("nameGroupCard") + " ";
  const auto insert = database().prepare(
      "parameters pName memo, pNumber long, pCode memo, pGroup long; insert into Cardholders (Name, cardNum, "
      "CardCode, AccessGroupId) values (pName, pNumber, pCode, pGroup)");
  for (std::int16_t i = 0; i < cards_; ++i) {
    const std::int16_t number = cardNumber(firstNum_ + i);
    const std::string code = addToCardCode(firstCode_, i);
    insert->execute({groupMode ? code : prefix + zeroPadded(number, 4), number, code, group_});
  }
}

std::vector<std::string> Batch::blockLines(const GrantedController& controller,
                                           const std::vector<std::int16_t>& lifts) const {
  CardRecord card;
  for (const CardPart part : {cardCodePart, accessGroupPart, validatedPart}) card.parts.set(part);
  const CardRights rights = controller.rights();
  const DateTime today = context_.clock().now();
  std::vector<std::string> block;
  for (std::int16_t i = 0; i < cards_; ++i) {
    card.number = firstNum_ + i;
    card.code = addToCardCode(firstCode_, i);
    for (std::string& line : cardLines(card, rights, lifts, controller.type, today))
      block.push_back(std::move(line));
  }
  return block;
}

std::int16_t Batch::send() {
  const auto first = database().openRecordset(
      "select id from Cardholders where cardNum = " + std::to_string(firstNum_) + " and Deleted = false");
  const std::int32_t firstId = first->get("id").toInt32();
  Com& com = context_.Com();
  std::vector<PlannedSend> sends;
  for (const GrantedController& controller : controllersOf(database(), group_)) {
    if (!controller.active) inactiveStations_.add(controller.stationName);
    const std::string fault = controller.active ? faultOf(database(), group_, controller) : "";
    if (!fault.empty()) throw Error(err::invalidArgument, "Invalid argument: " + fault);
    if (!controller.active || !com.TestSend(controller.station, controller.address)) {
      everywhere_ = false;
      continue;
    }
    if (controller.twoPrograms()) twoPrograms_.add(shutSides(database(), group_, controller));
    const ControllerPlace& place = controller;
    sends.push_back({place, blockLines(controller, liftOutputs(database(), firstId, controller))});
  }
  if (const std::int16_t failed = send(sends); failed != 0) return failed;
  if (!everywhere_) {  // for the download to those that were left out
    database().execute(
        "update Cardholders set CardCodeFlagD = True, AccessGroupIdFlagD = True, ValidatedFlagD = True "
        "where " +
        numbers());
  }
  return 0;
}

std::int16_t Batch::send(const std::vector<PlannedSend>& sends) {
  SendLedger& ledger = context_.ledger();
  if (!context_.Com().inhibitCom) {
    for (const PlannedSend& send : sends) noted_.push_back({send.place, numbers_});
    if (!ledger.noteUnfinished(noted_, true)) {
      throw Error(err::internalError,
                  "It cannot be noted which cards are going to be sent, so none was: see that the working "
                  "folder can be written, and create them again");
    }
  }
  const ExpectedSends expected(ledger, context_.Com().inhibitCom ? std::vector<PlannedSend>{} : sends);
  for (const PlannedSend& send : sends) {
    reached_.push_back(send.place);
    if (context_.Com().sendLines(send.lines, send.place) != 0) return notTaken;
  }
  return 0;
}

void Batch::settle() {
  context_.ledger().forgetUnfinished(noted_);
}

void Batch::takeBack() {
  std::vector<UnfinishedCards> open;
  for (const ControllerPlace& place : reached_) {
    if (!eraseCards(context_, place, numbers_)) open.push_back({place, numbers_});
  }
  if (noted_.empty()) return;
  // First those that stay, for the next time: a process that is killed in between forgets none.
  if (!context_.ledger().noteUnfinished(open, false)) return;  // those of the beginning stay
  std::erase_if(noted_, [&](const UnfinishedCards& cards) {
    return std::any_of(open.begin(), open.end(), [&](const auto& left) { return left.place == cards.place; });
  });
  context_.ledger().forgetUnfinished(noted_);
}

}  // namespace

std::int16_t Cardholder::createGroup(std::int32_t firstCardNum, const std::string& firstCardCode,
                                     std::int16_t nCards, std::int16_t accessGroupId, bool GroupMode) {
  const CreatedCards created = createCards(firstCardNum, firstCardCode, nCards, accessGroupId, GroupMode);
  context_.show(created.notices);
  return created.status;
}

CreatedCards Cardholder::createCards(std::int32_t firstCardNum, const std::string& firstCardCode,
                                     std::int16_t nCards, std::int16_t accessGroupId, bool GroupMode) {
  std::vector<Notice> notices = finishUnfinishedBlocks(access_);
  CreatedCards created;
  // What a failing send shows waits: its cards are not to stay on the controllers until somebody has read it.
  context_.showLater(
      [&] { created = createBatch(firstCardNum, firstCardCode, nCards, accessGroupId, GroupMode); });
  created.notices.insert(created.notices.begin(), notices.begin(), notices.end());
  return created;
}

CreatedCards Cardholder::createBatch(std::int32_t firstCardNum, const std::string& firstCardCode,
                                     std::int16_t nCards, std::int16_t accessGroupId, bool GroupMode) {
  CreatedCards created;
  std::optional<Batch> batch;
  created.status = context_.attempt([&]() -> std::int16_t {
    batch.emplace(access_, firstCardNum, firstCardCode, nCards, accessGroupId);
    if (const auto clash = batch->clash()) {
      created.notices.push_back({Notice::Kind::failure, *clash});
      return isInUse;
    }
    Transaction transaction(context_.engine(), database());
    batch->insert(GroupMode);
    if (const std::int16_t failed = batch->send(); failed != 0) return failed;
    transaction.commit();
    return 0;
  });
  if (created.status == 0) {
    batch->settle();
    created.notices = batch->leftOut();
    created.everywhere = batch->everywhere();
  }
  if (created.status == 0 || !created.notices.empty()) return created;
  const ErrorInfo error = context_.error();
  if (batch) batch->takeBack();
  context_.error() = error;
  tell(context_, into(created.notices),
       {"msgCantDownload", "Cardholders.createGroup", Value(access_.Com().popErrorList())});
  return created;
}

}  // namespace voxa
