#include "demo_guard.h"

namespace voxa::cli {

void deleteAfterThisProcess(const std::filesystem::path& /*folder*/) {}

}  // namespace voxa::cli
