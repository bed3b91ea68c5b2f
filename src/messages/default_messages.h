#pragma once

namespace voxa {

class Context;
class Strings;

/// Writes the default English texts into the open message store, in their fixed order. Existing translations
/// are kept. A text that cannot be written is told of, and the others are written all the same.
void insertDefaultMessages(Context& context, Strings& strings);

}  // namespace voxa
