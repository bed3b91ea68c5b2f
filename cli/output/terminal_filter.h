#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace voxa::cli {

/// How a terminal shows what follows.
enum class Style { plain, heading, toDo, wrong };

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
  friend std::ostream& operator<<(std::ostream& stream, Style style);
  friend std::size_t terminalWidth(std::ostream& stream);

  bool write(std::string_view text);
  int finish();

  std::ostream& stream_;
  int descriptor_;
  std::streambuf* terminal_ = nullptr;  // nullptr: no terminal
  Style style_ = Style::plain;
  std::string begun_;  // the bytes of a character that is not whole yet
};

/// Changes the style of a terminal with colours: none when NO_COLOR is set, or TERM says that it has none.
/// Nothing happens to a stream without a filter that ends at a terminal.
std::ostream& operator<<(std::ostream& stream, Style style);

/// How many places a line of the terminal has at which a filter's stream ends; 0 for other streams.
[[nodiscard]] std::size_t terminalWidth(std::ostream& stream);

}  // namespace voxa::cli
