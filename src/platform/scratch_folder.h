#pragma once

#include <string>

namespace voxa::files {

/// A new folder among the temporary files, for this account alone. It goes with the object, with all that it
/// holds; a process that is killed leaves it.
class ScratchFolder {
 public:
  /// prefix: what its name begins with. 75 when there is no place for temporary files.
  explicit ScratchFolder(const std::string& prefix);
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace voxa::files
