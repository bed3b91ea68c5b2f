#include "guard.h"

namespace voxa::cli {

void deleteAfterThisProcess(const std::filesystem::path& /*folder*/) {}

}  // namespace voxa::cli
