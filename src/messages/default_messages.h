#pragma once

namespace voxa {

class Library;

/// Writes the default English texts into the open message store, in their fixed order, as one transaction.
/// Existing translations are kept. The first failing insert is shown and undoes the others.
void insertDefaultMessages(Library& library);

}  // namespace voxa
