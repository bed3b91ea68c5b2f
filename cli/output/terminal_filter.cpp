#include "terminal_filter.h"

#include <cstdlib>

#include "platform/text.h"
#include "platform/ui/console_prompts.h"

namespace voxa::cli {

namespace {

/// How many bytes at the end of a text begin a character of UTF-8 that is not whole.
std::size_t unfinished(std::string_view text) {
  for (std::size_t back = 1; back <= 3 && back <= text.size(); ++back) {
    const auto byte = static_cast<unsigned char>(text[text.size() - back]);
    if (byte < 0x80) return 0;
    if (byte < 0xC0) continue;
    const std::size_t whole = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
    return back < whole ? back : 0;
  }
  return 0;
}

bool hasColours() {
  const auto setting = [](const char* name) {
    const char* text = std::getenv(name);
    return std::string_view(text == nullptr ? "" : text);
  };
  return setting("NO_COLOR").empty() && !setting("TERM").empty() && setting("TERM") != "dumb";
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, Style style) {
  auto* filter = dynamic_cast<TerminalFilter*>(stream.rdbuf());
  static const bool colours = hasColours();
  if (filter == nullptr || filter->terminal_ == nullptr || !colours || filter->style_ == style) return stream;
  filter->style_ = style;
  constexpr const char* sequences[] = {"\x1b[0m", "\x1b[1m", "\x1b[33m", "\x1b[31m"};
  const std::string_view sequence = sequences[static_cast<int>(style)];
  filter->terminal_->sputn(sequence.data(), static_cast<std::streamsize>(sequence.size()));
  return stream;
}

std::size_t terminalWidth(std::ostream& stream) {
  const auto* filter = dynamic_cast<TerminalFilter*>(stream.rdbuf());
  if (filter == nullptr || filter->terminal_ == nullptr) return 0;
  const char* columns = std::getenv("COLUMNS");
  const int told = columns == nullptr ? 0 : std::atoi(columns);
  const int width = told > 0 ? told : ConsolePrompts::terminalWidth(filter->descriptor_);
  return width > 0 ? static_cast<std::size_t>(width) : 0;
}

TerminalFilter::TerminalFilter(std::ostream& stream, int descriptor)
    : stream_(stream), descriptor_(descriptor) {
  if (ConsolePrompts::isTerminal(descriptor)) terminal_ = stream.rdbuf(this);
}

TerminalFilter::~TerminalFilter() {
  if (terminal_ == nullptr) return;
  (void)finish();
  stream_.rdbuf(terminal_);
}

bool TerminalFilter::write(std::string_view text) {
  const std::string shown = terminalText(text);
  const auto size = static_cast<std::streamsize>(shown.size());
  return terminal_->sputn(shown.data(), size) == size;
}

TerminalFilter::int_type TerminalFilter::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char one = traits_type::to_char_type(c);
  return xsputn(&one, 1) == 1 ? c : traits_type::eof();
}

std::streamsize TerminalFilter::xsputn(const char* text, std::streamsize size) {
  begun_.append(text, static_cast<std::size_t>(size));
  const std::size_t whole = begun_.size() - unfinished(begun_);
  if (!write(std::string_view(begun_).substr(0, whole))) return 0;
  begun_.erase(0, whole);
  return size;
}

int TerminalFilter::finish() {
  const bool written = write(begun_);
  begun_.clear();
  return written ? terminal_->pubsync() : -1;
}

}  // namespace voxa::cli
