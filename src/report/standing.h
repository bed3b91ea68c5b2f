#pragma once

namespace voxa {

class Installation;
struct Figures;

// How things stand now, whatever time the report is of.

/// What each controller misses, and when it was last reached. Those with the door of the question only. Where
/// that cannot be planned, why.
void addControllers(Installation& installation, Figures& figures);

/// Cards that open doors and have a last day that is past or near. Those of the question's group only. A
/// Refusal when there is no such group.
void addExpiringCards(Installation& installation, Figures& figures);

}  // namespace voxa
