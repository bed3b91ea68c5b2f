#include "lines/field.h"

#include "platform/error.h"
#include "platform/text.h"

namespace voxa {

std::string numberField(std::int32_t number, std::int32_t least, int width, const char* what,
                        FieldKind kind) {
  std::string text = zeroPadded(number, width);
  if (number >= least && text.size() == static_cast<std::size_t>(width)) return text;
  throw Error(err::overflow, "Overflow: the " + std::string(what) +
                                 (kind == FieldKind::shown ? " " + std::to_string(number) : "") +
                                 " is not one of " + std::to_string(least) + " to " +
                                 std::string(static_cast<std::size_t>(width), '9'));
}

}  // namespace voxa
