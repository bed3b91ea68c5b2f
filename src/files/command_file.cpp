#include "files/command_file.h"

#include "files/file_context.h"
#include "files/line_span.h"
#include "platform/files.h"

namespace voxa {

CommandFile::CommandFile(FileContext& context) : context_(context), file_(context) {
  Initialize();
}

CommandFile::~CommandFile() {
  try {
    fclose();
  } catch (const Error&) {
    // Nobody will send this file any more.
  }
}

void CommandFile::Initialize() {
  file_.Name(context_.paths().Chemin + "\\" + fileName());
}

void CommandFile::begin() {
  text_.clear();
  isFull = false;
  open_ = true;
  printed_ = false;
  emptied_ = false;
}

void CommandFile::fopen() {
  begin();
  const LineSpan lines(context_, LineSpan::Take::forAMoment);
  emptied_ = lines.refusal().empty();
  if (!emptied_) return;  // another process is sending; the send of these lines will write them
  // A new file where that is possible. Some file systems take a file to the disk at once when it is emptied
  // and written again. Downloads write thousands of these files, which nobody needs after a crash.
  file_.fopenNew();
  file_.fclose();
}

void CommandFile::fprint(const std::string& text) {
  if (text.empty()) return;
  if (!open_) file_.fprint(text);  // raises that nothing is open
  text_ += file_.lineOf(text);
  isFull = true;
  printed_ = true;
}

void CommandFile::fclose() {
  if (!open_) return;
  open_ = false;
  text_ += file_.lineOf("");
  const LineSpan lines(context_, LineSpan::Take::forAMoment);
  if (lines.refusal().empty()) write(!emptied_);
}

void CommandFile::write(bool anew) {
  if (anew) {
    file_.fopenNew();
  } else {
    file_.fopen();
  }
  written_.clear();  // until it is whole
  file_.fprint1252(text_);
  file_.fclose();
  written_ = text_;
}

void CommandFile::write(const std::vector<std::string>& lines) {
  begin();  // does not empty the file first, since its lines are written right away
  for (const std::string& line : lines) fprint(line);
  fclose();
}

void CommandFile::prepare(const std::vector<std::string>& lines) {
  begin();
  for (const std::string& line : lines) fprint(line);
  open_ = false;
  text_ += file_.lineOf("");
}

void CommandFile::restore() {
  if (!isFull || !printed_) return;
  if (text_ != written_ || !files::holds(file_.Name(), text_)) write(true);
}

}  // namespace voxa
