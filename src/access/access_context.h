#pragma once

#include "comm/comm_context.h"

namespace voxa {

class AccessGroup;
class Cardholder;

/// What works on cards and their rights.
class AccessContext : public CommContext {
 public:
  using CommContext::CommContext;

  [[nodiscard]] virtual AccessGroup& AccessGroups() = 0;
  [[nodiscard]] virtual Cardholder& Cardholders() = 0;
};

}  // namespace voxa
