#pragma once

#include <unistd.h>

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

#include "engines/jet_file/stream_format.h"

namespace voxa::jet {

/// Raised to end the program with a failure frame.
struct Failed {
  Failure failure;
};

/// Writes frames to standard output, in large pieces. The program ends when nobody reads them.
class Output {
 public:
  Output() : bytes_(streamMark) {}

  void begin(Frame frame) {
    start_ = bytes_.size();
    bytes_ += static_cast<char>(frame);
    bytes_.append(4, '\0');
  }
  void end() {
    const std::size_t length = bytes_.size() - start_ - headSize;
    for (std::size_t i = 0; i < 4; ++i) bytes_[start_ + 1 + i] = static_cast<char>(length >> (8 * i));
    if (bytes_.size() > pieceSize) flush();
  }
  /// How long the content of the frame is until now.
  [[nodiscard]] std::size_t length() const { return bytes_.size() - start_ - headSize; }

  void number(std::uint64_t value, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) bytes_ += static_cast<char>(value >> (8 * i));
  }
  void tag(Tag tag) { bytes_ += static_cast<char>(tag); }
  void real(Tag kind, double value) {
    tag(kind);
    number(std::bit_cast<std::uint64_t>(value), 8);
  }
  void text(std::string_view text) {
    number(text.size(), 4);
    bytes_ += text;
  }

  void flush() {
    std::string_view rest = bytes_;
    while (!rest.empty()) {
      const ssize_t written = ::write(STDOUT_FILENO, rest.data(), rest.size());
      if (written <= 0) ::_exit(1);
      rest.remove_prefix(static_cast<std::size_t>(written));
    }
    bytes_.clear();
    if (bytes_.capacity() > 4 * pieceSize) bytes_.shrink_to_fit();  // behind a long value
  }

 private:
  static constexpr std::size_t pieceSize = std::size_t{256} * 1024;
  static constexpr std::size_t headSize = 5;
  std::string bytes_;
  std::size_t start_ = 0;
};

}  // namespace voxa::jet
