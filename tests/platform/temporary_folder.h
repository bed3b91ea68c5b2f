#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "platform/clock.h"
#include "platform/datetime.h"
#include "platform/error.h"

namespace voxa {

/// An empty folder for one test. It is deleted at the end with all that it holds.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "voxa-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + '/' + name; }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// A clock that stands still at the time that a test sets.
struct FixedClock : Clock {
  explicit FixedClock(const CivilTime& parts) : moment(toDateTime(parts)) {}
  [[nodiscard]] DateTime now() const override { return moment; }
  void wait(int /*seconds*/) override {}
  DateTime moment;
};

inline void put(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string bytesOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// The number of the Error that an action raises; 0 when it raises none.
template <typename Action>
int errorOf(Action action) {
  try {
    (void)action();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

}  // namespace voxa
