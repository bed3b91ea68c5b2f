#pragma once

#include <filesystem>
#include <memory>
#include <utility>

#include "site/storage.h"

namespace site {

/// The site file of a folder. It is opened when it is first needed, and stays open. This class notices when
/// the file is created, removed or replaced meanwhile.
class SiteFile {
 public:
  explicit SiteFile(std::filesystem::path folder) : folder_(std::move(folder)) {}

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  /// The site as it is now; a site without controllers while there is no file.
  Storage& get();
  /// The same, but creates the folder and the file.
  Storage& create();

 private:
  // Which file on the disk a path names: device and number; zeros when there is none.
  using Identity = std::pair<std::uintmax_t, std::uintmax_t>;
  static Identity identify(const std::filesystem::path& file);
  [[nodiscard]] std::filesystem::path file() const { return folder_ / "site.db"; }

  std::filesystem::path folder_;
  std::unique_ptr<Storage> storage_;
  Identity opened_;
};

}  // namespace site
