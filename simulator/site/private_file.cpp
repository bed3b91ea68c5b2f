#include "site/private_file.h"

#include <fstream>

namespace site {

void makePrivate(const std::filesystem::path& file) {
  using std::filesystem::perms;
  const std::ofstream created(file, std::ios::app);
  if (!created) return;  // something else has the name, so the write that follows will fail
  std::error_code noSuchRights;
  std::filesystem::permissions(file, perms::owner_read | perms::owner_write, noSuchRights);
}

}  // namespace site
