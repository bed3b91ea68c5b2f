#include "journal/undecoded_lines.h"

#include <algorithm>

#include "files/seq_file.h"
#include "platform/clock.h"
#include "platform/context.h"
#include "platform/datetime.h"

namespace voxa {

void UndecodedLines::add(std::size_t number, std::string_view why, std::string_view line) {
  ++count_;
  if (kept_.size() < mostKept) kept_.push_back({number, std::string(why), std::string(line)});
}

void UndecodedLines::keep(Context& context, const std::string& fileName) const {
  if (empty()) return;
  const std::string now = toShortText(context.clock().now()) + " ";
  SeqFile file(context);
  file.Name(fileName);
  file.fopen();
  for (const Line& line : kept_) {
    file.fprint(now + "line " + std::to_string(line.number) + ", " + line.why + ": " + line.text);
  }
  if (count_ > kept_.size()) {
    file.fprint(now + std::to_string(count_ - kept_.size()) +
                " more lines, to be found in the archived file");
  }
  file.fclose();
}

std::string UndecodedLines::summary(const std::string& fileName) const {
  if (empty()) return "";
  constexpr std::size_t shown = 5;
  std::string text = "\r\nLines not decoded: " + std::to_string(count_) + ", kept in " + fileName;
  for (std::size_t i = 0; i < std::min(shown, kept_.size()); ++i) {
    text += "\r\nline " + std::to_string(kept_[i].number) + ": " + kept_[i].why;
  }
  if (count_ > shown) text += "\r\n...";
  return text;
}

}  // namespace voxa
