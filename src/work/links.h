#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "platform/context.h"

namespace voxa {
class Recordset;
}

namespace voxa {

class Installation;

/// The row that links a reader to an access group; no rows when there is none.
[[nodiscard]] std::unique_ptr<Recordset> linkOf(Installation& installation, std::int16_t group,
                                                std::int32_t reader);
/// Lets the group's cards open the readers' doors by a weekly program of family C, in place of the ones they
/// may have; marks the links, the group and its cards when there are any.
void linkReaders(Installation& installation, std::int16_t group, const std::set<std::int32_t>& readers,
                 std::int16_t program);
/// Whether a reader other than that one is at an address: its controller is there already.
[[nodiscard]] bool isKnownController(Installation& installation, std::int16_t station, std::int16_t address,
                                     std::int32_t otherThan);
/// Marks all programs and holidays to be sent: there is a controller that may hold none of them, and would
/// judge by what it has, "no holiday" for one. The others get them once more.
void markProgramsForNewController(Installation& installation);
/// What a new reader begins with: the default group opens it always. Whether that group has cards, which are
/// marked and to be sent.
bool linkNewReader(Installation& installation, std::int16_t reader);
/// Sends the cards of the default group to a reader's controller, behind a test of it. What is to be told of
/// it; what did not arrive stays marked.
[[nodiscard]] std::vector<Notice> sendDefaultGroup(Installation& installation, std::int16_t reader);

}  // namespace voxa
