#pragma once

namespace voxa {
class Strings;
}

namespace voxa {

/// Writes the texts that the library leaves to its caller into the message catalogue. Returns 0, or the
/// number of the error that was shown.
int insertHostTexts(Strings& strings);

}  // namespace voxa
