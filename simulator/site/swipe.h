#pragma once

#include "site/controllers.h"
#include "site/site.h"

namespace site {

/// Presents a card to a controller, which decides and records the transaction. The contract is that of
/// Site::swipe.
[[nodiscard]] SwipeResult present(Storage& storage, Controller& controller, const Swipe& swipe);

}  // namespace site
