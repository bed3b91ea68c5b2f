#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "comm/com_types.h"
#include "platform/context.h"
#include "platform/files.h"

namespace voxa {

class AccessContext;

/// Erases cards on a controller; whether it confirmed. Otherwise a line in `Com.errorList` tells what is
/// still on it.
[[nodiscard]] bool eraseCards(AccessContext& context, const ControllerPlace& place,
                              const std::vector<std::int32_t>& numbers);

/// Consecutive card numbers on their way to controllers while the table does not have them. They are noted in
/// a file of the working folder, "CardBlock0.txt" and so on, lines of two numbers: first and last card, then
/// station and address of each controller; the last line is "end". When the process ends without removing the
/// note, eraseUnfinishedBlocks finds it.
class CardBlock {
 public:
  /// Writes the note, which is on the disk then.
  CardBlock(AccessContext& context, std::int32_t first, std::int32_t last,
            const std::vector<ControllerPlace>& places);
  /// The cards are in the table, or on none of the controllers any more.
  void settle() { note_->remove(); }

 private:
  std::optional<files::OwnedFile> note_;
};

/// Erases what batches that did not come to their end have left: cards of their numbers on controllers which
/// the table does not have there. A controller that is not in use or does not answer keeps its place in the
/// note for the next call; one that fails to erase them too, which is shown. Notes of processes that are
/// still at work are passed over, and all of them while communications are inhibited. Whether no controller
/// failed.
bool eraseUnfinishedBlocks(AccessContext& context);
/// The same without a box: what failed.
[[nodiscard]] std::vector<Notice> finishUnfinishedBlocks(AccessContext& context);

}  // namespace voxa
