#pragma once

#include <cstdint>
#include <filesystem>

namespace voxa::crash {

/// A small disk of its own under a folder, for root: mounted where no other process sees it. Without the
/// right to mount, the folder stays what it is.
class Disk {
 public:
  explicit Disk(std::filesystem::path folder);
  ~Disk();
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  [[nodiscard]] bool mounted() const { return mounted_; }
  /// Fills it up to so many bytes.
  void leaveFree(std::uintmax_t bytes) const;
  void giveBack() const;  ///< what leaveFree took
  /// The whole disk; without one, the folder, in which then no file can be made.
  void setReadOnly(bool on) const;
  /// Whether setReadOnly binds this process.
  [[nodiscard]] bool canBeReadOnly() const;

 private:
  std::filesystem::path folder_;
  std::filesystem::path filler_;
  bool mounted_;
};

}  // namespace voxa::crash
