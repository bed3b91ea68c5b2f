#pragma once

#include <cstdint>
#include <filesystem>

namespace voxa::crash {

/// A small disk of its own under a folder, mounted where no other process sees it. Only root can mount it;
/// without that right the folder stays as it is.
class Disk {
 public:
  explicit Disk(std::filesystem::path folder);
  ~Disk();
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  [[nodiscard]] bool mounted() const { return mounted_; }
  /// Fills the disk until only so many bytes are free.
  void leaveFree(std::uintmax_t bytes) const;
  void giveBack() const;  ///< frees what leaveFree took
  /// Makes the whole disk read-only. Without a disk, no file can be made in the folder then.
  void setReadOnly(bool on) const;
  /// Whether setReadOnly has an effect on this process.
  [[nodiscard]] bool canBeReadOnly() const;

 private:
  std::filesystem::path folder_;
  std::filesystem::path filler_;
  bool mounted_;
};

}  // namespace voxa::crash
