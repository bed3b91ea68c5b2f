#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "platform/value.h"
#include "work/door_decision.h"

namespace voxa {

/// Why a door opens to a card, the first two, or stays shut. Of several reasons the first one counts.
enum class AccessReason : std::uint8_t {
  always,
  inHours,
  deleted,
  sharedNumber,  ///< another live card has its number: none of them is sent
  noCode,
  cannotBeSent,  ///< the card's row has what no command line can hold
  notValid,
  expired,         ///< its last valid day is past
  notConnected,    ///< the reader
  badLink,         ///< the group's cards cannot be sent to the controller
  notGranted,      ///< neither the reader nor the other side of its door
  twoPrograms,     ///< the door stays shut, as GrantedController::rights has it
  missingProgram,  ///< weekly or daily
  outsideHours,
  holiday  ///< outside the hours of holidays
};

/// Whether a card opens a door at a moment, and whether its controller knows that yet.
struct AccessAnswer {
  std::int32_t card = 0;       ///< its number; 0 when it has none
  std::string name;            ///< of its holder
  std::string door;            ///< name of the reader
  std::string controllerName;  ///< "Local Controller 1"
  ControllerPlace controller;
  bool lineInUse = false;  ///< if not, the controller is told of no change
  DateTime at;

  // By the rows:
  bool opens = false;
  AccessReason reason = AccessReason::notGranted;
  std::string fault;          ///< what is wrong with a row, in words
  bool otherSide = false;     ///< the reader is not granted, but the other side of its door is
  bool personalCode = false;  ///< the card has one, for which a reader may ask
  std::int16_t credit = 0;    ///< so many times it opens, 0 without limit; the controller alone counts them
  /// What decided, by name; "" when it did not come to that.
  std::string weeklyProgram, dailyProgram, holiday;
  std::string hours;  ///< of the daily program: "08:00-12:00 13:00-18:00", or "none"

  // By the ledger:
  Sure known = Sure::yes;               ///< whether the controller holds all that decides; unsaid: in doubt
  std::vector<std::string> missing;     ///< what it may lack: "the card", "weekly program Staff"
  Sure controllerOpens = Sure::unsaid;  ///< what it does by what it certainly holds
  /// Another code under the card's number to which it opens the door: that of the card before. "" for none.
  std::string oldCode;
  Sure oldCodeOpens = Sure::no;
};

/// "Ann (card 7) opens Front door: always".
[[nodiscard]] std::string sentenceOf(const AccessAnswer& answer);
/// What follows "known at": "Local Controller 1: yes", or ", whose line is not in use: " between.
[[nodiscard]] std::string whereKnown(const AccessAnswer& answer);
/// The reason in plain words: "outside the hours of Staff, Office (08:00-12:00)".
[[nodiscard]] std::string reasonText(const AccessAnswer& answer);
/// "yes", "in doubt (weekly program Staff)" or "not yet (the card)"; and what the controller does, or may do,
/// when that is not what the rows say.
[[nodiscard]] std::string knownText(const AccessAnswer& answer);

}  // namespace voxa
