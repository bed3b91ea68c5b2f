#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace voxa {

class Context;

/// The lines of one dump that did not become rows of the journal. What they hold must not get lost: they are
/// kept in a text file of their own, as they came, for a person to look at.
class UndecodedLines {
 public:
  /// Greatest number of characters read of a line. The dump, which is archived, has the rest.
  static constexpr std::size_t longestLine = 256;

  /// number: counted from 1. line: as read, UTF-8.
  void add(std::size_t number, std::string_view why, std::string_view line);
  [[nodiscard]] bool empty() const { return count_ == 0; }

  /// Appends the lines to a file, each behind date, time, number and reason. Failures are raised.
  void keep(Context& context, const std::string& fileName) const;
  /// What to tell a person: the first of the lines and where they are kept.
  [[nodiscard]] std::string summary(const std::string& fileName) const;

 private:
  /// Lines kept of one dump: noise by the megabyte does not multiply itself.
  static constexpr std::size_t mostKept = 1000;

  struct Line {
    std::size_t number;
    std::string why;
    std::string text;
  };
  std::vector<Line> kept_;
  std::size_t count_ = 0;
};

}  // namespace voxa
