#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace voxa::cli {

/// The edge between what a command writes and a terminal: names, codes and lines come from files, tables and
/// lines of others, and may hold what a terminal obeys. While this lives, a stream that ends at a terminal
/// writes them through terminalText (text.h); one that ends in a file or a pipe is left alone.
class TerminalFilter : public std::streambuf {
 public:
  /// descriptor: where the stream ends, 1 or 2.
  TerminalFilter(std::ostream& stream, int descriptor);
  ~TerminalFilter() override;
  TerminalFilter(const TerminalFilter&) = delete;
  TerminalFilter& operator=(const TerminalFilter&) = delete;

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  int sync() override { return finish(); }

 private:
  bool write(std::string_view text);
  int finish();

  std::ostream& stream_;
  std::streambuf* terminal_ = nullptr;  // nullptr: no terminal
  std::string begun_;                   // the bytes of a character that is not whole yet
};

}  // namespace voxa::cli
