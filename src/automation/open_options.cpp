#include "open_options.h"

#include "conversion.h"
#include "korva.h"
#include "platform/error.h"

namespace voxa::automation {

namespace {

std::int32_t numberOf(const VARIANT& argument) {
  return isMissing(argument) ? 0 : fromVariant(argument).toInt32();
}

void refuse(const char* what, std::int32_t number) {
  throw Error(err::dbInvalidArgument,
              std::string("Invalid argument: ") + what + " " + std::to_string(number) + " is not known here");
}

}  // namespace

RowOptions rowOptions(const VARIANT& type, const VARIANT& options) {
  RowOptions out;
  const std::int32_t kind = numberOf(type);
  if (!isMissing(type)) {
    if (kind != dbOpenTable && kind != dbOpenDynaset && kind != dbOpenSnapshot && kind != dbOpenForwardOnly) {
      refuse("the type of rows", kind);
    }
    out.kind = static_cast<RecordsetKind>(kind);
  }
  const std::int32_t bits = numberOf(options);
  constexpr std::int32_t accepted =
      dbReadOnly | dbAppendOnly | dbInconsistent | dbConsistent | dbForwardOnly | dbSeeChanges;
  if ((bits & ~accepted) != 0) refuse("the option", bits & ~accepted);
  if ((bits & dbForwardOnly) != 0) {
    if (!isMissing(type) && kind != dbOpenSnapshot && kind != dbOpenForwardOnly) {
      throw Error(err::dbInvalidArgument, "Invalid argument: dbForwardOnly goes with a snapshot only");
    }
    out.kind = RecordsetKind::forwardOnly;
  }
  out.readOnly = (bits & dbReadOnly) != 0;
  return out;
}

void checkExecuteOptions(const VARIANT& options) {
  const std::int32_t bits = numberOf(options);
  constexpr std::int32_t accepted = dbInconsistent | dbConsistent | dbFailOnError | dbSeeChanges;
  if ((bits & ~accepted) != 0) refuse("the option", bits & ~accepted);
}

}  // namespace voxa::automation
