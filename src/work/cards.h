#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/card_values.h"

namespace voxa {

// The cards as rows. What erases them on controllers is in card_erasing.h, what creates many at once in
// card_batch.h.

/// Adds a card, marked to be sent; its number. Without a number it gets the lowest that no card has or had.
/// A Refusal when a value is wrong, or when another card has it. texts: name, code and group are needed.
std::int16_t addCard(Installation& installation, const CardTexts& texts);

/// Changes a card and marks it. card: its number or name. A card that gets another number or code is first
/// erased on all its controllers, one that gets another group on those that it loses (ForgetCards): one that
/// kept it would open to whoever has the number, or the card of that code, next. A Refusal when a value is
/// wrong, when another card has it, or when a controller that is to erase it does not answer: then the row
/// stays as it is.
void changeCard(Installation& installation, const std::string& card, const CardTexts& texts);

/// A card of a list. Values as the table has them, Null where it has none.
struct CardRow {
  Value number, name, code;
  Value group;  ///< its name
  Value valid, supervisor, until, credit;
  std::string pin;      ///< four digits, "" for none
  bool toSend = false;  ///< whether a controller has yet to be told of a change
};

/// The cards by number. group: name or number of the access group whose cards are wanted; a Refusal when
/// there is none. deleted: the deleted cards instead of the others.
[[nodiscard]] std::vector<CardRow> listCards(Installation& installation,
                                             const std::optional<std::string>& group = {},
                                             bool deleted = false);
/// The cards of that number or code, or with that text in their names; a Refusal when there is none.
[[nodiscard]] std::vector<CardRow> findCards(Installation& installation, const std::string& text);

}  // namespace voxa
