#include "moments.h"

#include "platform/datetime.h"

namespace voxa::cli {

site::Moment siteMoment(DateTime moment) {
  const CivilTime parts = toCivil(moment);
  return {{parts.year, parts.month, parts.day}, parts.hour, parts.minute, parts.second};
}

}  // namespace voxa::cli
