#pragma once

#include "platform/value.h"
#include "site/moment.h"

namespace voxa::cli {

[[nodiscard]] site::Moment siteMoment(DateTime moment);

}  // namespace voxa::cli
