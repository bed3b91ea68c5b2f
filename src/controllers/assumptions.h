#pragma once

namespace voxa {

class AccessContext;
class LedgerFile;

/// What a new ledger begins with: the rows of the main database. A controller is assumed to hold those whose
/// marks are clear, since a mark is cleared when they were sent; of those that are marked nothing is known.
/// Within the transaction that makes the ledger. Without a main database there is nothing to begin with.
void assumeRows(const LedgerFile& file, AccessContext& context);

/// What a ledger begins with in the place of a damaged one: each controller may hold anything.
void assumeNothing(const LedgerFile& file, AccessContext& context);

}  // namespace voxa
