#include "platform/scratch_folder.h"

#include <filesystem>
#include <random>
#include <system_error>

#include "platform/error.h"
#include "platform/files.h"

namespace voxa::files {

ScratchFolder::ScratchFolder(const std::string& prefix) {
  try {
    std::random_device random;
    const std::string name = prefix + std::to_string(random()) + std::to_string(random());
    path_ = (std::filesystem::temp_directory_path() / name).string();
    makeFolder(path_);
  } catch (const std::exception&) {
    throw Error(err::pathAccess,
                "There is no folder for temporary files: set TMPDIR to one that can be written");
  }
}

ScratchFolder::~ScratchFolder() {
  std::error_code nobodyToTell;
  std::filesystem::remove_all(path_, nobodyToTell);
}

}  // namespace voxa::files
