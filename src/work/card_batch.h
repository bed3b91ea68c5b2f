#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/context.h"

namespace voxa {

class Installation;

/// Consecutive cards as a person asks for them.
struct CardBatchTexts {
  std::string firstNumber;  ///< 1 to 9999, as that of the last card
  std::string firstCode;    ///< up to 8 digits
  std::string count;        ///< 1 to 9999
  std::string group;        ///< name or number of their access group
};
/// The same, checked.
struct CardBatch {
  /// A Refusal for what is wrong.
  CardBatch(Installation& installation, const CardBatchTexts& texts);

  std::int16_t first = 0;
  std::int16_t count = 0;
  std::int16_t group = 0;
  std::string firstCode;
};

/// What became of a batch. Notices of failures: there are no cards, neither in the table nor on a controller.
struct CreatedBatch {
  bool created = false;
  std::vector<Notice> notices;      ///< what is to be told, in this order
  std::vector<std::string> silent;  ///< controllers that did not answer, when the cards are marked for some
};
/// Creates the cards and sends them, all or none. The names are the codes, or "Card" and the number. To be
/// called behind a test of all controllers: one that did not answer is passed over, and the cards are marked.
CreatedBatch createCards(Installation& installation, const CardBatch& batch, bool codesAsNames);

}  // namespace voxa
