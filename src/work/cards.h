#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "work/card_changes.h"
#include "work/card_filter.h"
#include "work/card_values.h"

namespace voxa {

// The cards as rows. What erases them on controllers is in card_erasing.h and card_blocking.h, what creates
// many at once in card_batch.h and card_import.h.

/// Adds a card, marked to be sent; its number. Without a number it gets the lowest that no card has or had.
/// A Refusal when a value is wrong, or when another card has it. texts: name, code and group are needed.
std::int16_t addCard(Installation& installation, const CardTexts& texts);

/// Adds a card that opens until a day alone: texts need a last day, too, which is not over.
std::int16_t lendCard(Installation& installation, const CardTexts& texts);

/// Changes a card and marks it, as CardChanges does. card: its number or name. A Refusal when a value is
/// wrong, when another card has it, or when a controller that is to erase it does not answer: then the row
/// stays as it is.
void changeCard(Installation& installation, const std::string& card, const CardTexts& texts);

/// The same change of all cards of a filter, of which nothing is done yet. A Refusal for a name, number or
/// code, which each card has for itself, when nothing is changed, and when no card passes the filter.
[[nodiscard]] CardChanges changesOf(Installation& installation, const CardFilter& filter,
                                    const CardTexts& texts);

/// The cards of that number or code, or with that text in their names; a Refusal when there is none. deleted:
/// the deleted cards instead of the others.
[[nodiscard]] std::vector<CardRow> findCards(Installation& installation, const std::string& text,
                                             bool deleted = false);

}  // namespace voxa
