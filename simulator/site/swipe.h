#pragma once

#include "site/controllers.h"
#include "site/site.h"

namespace site {

/// Presents a card to a controller: decides, and records the transaction. Contract as Site::swipe.
[[nodiscard]] SwipeResult present(Storage& storage, Controller& controller, const Swipe& swipe);

}  // namespace site
