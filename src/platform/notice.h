#pragma once

#include <functional>

#include "platform/context.h"

namespace voxa {

/// Takes the notices of an operation, each as it comes. So the operation itself shows nothing: a public
/// member of a table shows a box at once, and work for every caller keeps the values.
using Tell = std::function<void(const Notice&)>;

/// Tells a message with the current error, which is cleared.
void tell(Context& context, const Tell& teller, FailureMessage message,
          Notice::Kind kind = Notice::Kind::failure);

/// Shows each at once.
[[nodiscard]] Tell showing(Context& context);
/// Keeps each.
[[nodiscard]] Tell into(std::vector<Notice>& notices);

}  // namespace voxa
