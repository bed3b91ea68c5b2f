#pragma once

namespace voxa {

class Installation;
struct Figures;

/// Counts the journal's rows of the time, door and group that the figures have, in one pass. A Refusal for a
/// door that neither the rows nor the installation know, and for a group that does not exist.
void countPresentations(Installation& installation, Figures& figures);

}  // namespace voxa
