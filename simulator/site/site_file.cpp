#include "site/site_file.h"

#include <sys/stat.h>

#include "site/failure.h"

namespace site {

SiteFile::Identity SiteFile::identify(const std::filesystem::path& file) {
  struct stat status {};
  if (::stat(file.string().c_str(), &status) != 0) return {};
  // A file system without file numbers still shows whether there is a file.
  return {static_cast<std::uintmax_t>(status.st_dev) + 1, static_cast<std::uintmax_t>(status.st_ino) + 1};
}

Storage& SiteFile::get() {
  const Identity found = identify(file());
  if (storage_ && found == opened_) return *storage_;
  storage_.reset();
  storage_ = found == Identity() ? std::make_unique<Storage>() : std::make_unique<Storage>(file());
  opened_ = found;
  return *storage_;
}

Storage& SiteFile::create() {
  if (identify(file()) != Identity()) return get();
  std::error_code error;
  if (std::filesystem::create_directories(folder_, error)) {
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
  }
  if (error)
    throw Failure("The site folder " + folder_.string() + " cannot be made: " + error.message() + ".");
  storage_.reset();
  storage_ = std::make_unique<Storage>(file());
  opened_ = identify(file());
  return *storage_;
}

}  // namespace site
