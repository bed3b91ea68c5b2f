#include "platform/notice.h"

#include <utility>

namespace voxa {

void tell(Context& context, const Tell& teller, FailureMessage message, Notice::Kind kind) {
  teller({kind, context.kept(std::move(message))});
}

Tell showing(Context& context) {
  return [&context](const Notice& notice) { context.show({notice}); };
}

Tell into(std::vector<Notice>& notices) {
  return [&notices](const Notice& notice) { notices.push_back(notice); };
}

}  // namespace voxa
