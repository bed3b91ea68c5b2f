#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/value.h"

namespace voxa {

class Installation;
class Recordset;

// What readers and stations were called before, and until when their numbers were theirs: a new one gets the
// number of one that was deleted, and the journal has both under it. Kept in the table "PlaceHistory" of the
// main database, which is made when there is something to keep. Changes by statements are not seen.

enum class PlaceKind : bool { reader, station };
enum class PlaceEnd : bool { renamed, deleted };

/// Notes that a reader or station ceases to have its name now, or to be there, in the transaction of that
/// change. place: its row, as it was until now. To be called before either.
void keepPlaceHistory(Installation& installation, PlaceKind kind, const Recordset& place, PlaceEnd end);

/// Since when the one that has a number has it: when the last one that had it before was deleted. None when
/// no other is known to have had it.
[[nodiscard]] std::optional<DateTime> placeSince(Installation& installation, PlaceKind kind, std::int32_t id);

/// Whether one is known to have had a name, in any case, that was renamed or deleted.
[[nodiscard]] bool wasPlace(Installation& installation, PlaceKind kind, const std::string& name);

}  // namespace voxa
