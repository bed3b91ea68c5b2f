#pragma once

#include "platform/value.h"

namespace voxa {

/// The clock seam: tells the time, and waits. Tests use a clock of their own and do not wait.
class Clock {
 public:
  virtual ~Clock() = default;
  /// Local date and time, to the second.
  [[nodiscard]] virtual DateTime now() const = 0;
  /// Returns after that many seconds. The host's pending events are handled meanwhile.
  virtual void wait(int seconds) = 0;
};

/// The computer's own clock.
class SystemClock : public Clock {
 public:
  [[nodiscard]] DateTime now() const override;
  void wait(int seconds) override;
};

}  // namespace voxa
