#include "platform/database/failures.h"

#include <atomic>

namespace voxa {

void Failures::failed(const Error& error) {
  static std::atomic<std::uint64_t> last = 0;  // threads of their own may have engines of their own
  lastFailure = ++last;
  errors.assign(1, {error.number(), error.description()});
}

}  // namespace voxa
