#pragma once

#include <string>

namespace voxa::files {

/// A new folder among the temporary files, for this account alone. It goes with the object, with all that it
/// holds; a process that is killed leaves it.
class TemporaryFolder {
 public:
  /// prefix: what its name begins with. 75 when there is no place for temporary files.
  explicit TemporaryFolder(const std::string& prefix);
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace voxa::files
