#pragma once

namespace voxa {

class Context;
class Strings;

/// Writes the default English texts into the open message store, in a fixed order. Translations that exist
/// are kept. A text that cannot be written is told to the person; the others are still written.
void insertDefaultMessages(Context& context, Strings& strings);

}  // namespace voxa
