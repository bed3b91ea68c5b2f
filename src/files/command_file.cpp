#include "files/command_file.h"

#include "app/library.h"
#include "comm/com.h"

namespace voxa {

CommandFile::CommandFile(Library& library) : file_(library) {
  file_.Name(library.Com().Chemin + "\\" + fileName());
}

CommandFile::~CommandFile() {
  try {
    fclose();
  } catch (const Error&) {
    // Nobody sends this file any more.
  }
}

void CommandFile::fopen() {
  // A new file where that is possible: one that is emptied and written again some file systems take to the
  // disk at once, and downloads write by the thousand what nobody needs after a crash.
  file_.fopenNew();
  isFull = false;
}

void CommandFile::fprint(const std::string& text) {
  if (text.empty()) return;
  file_.fprint(text);
  isFull = true;
}

void CommandFile::fclose() {
  if (file_.ch() == 0) return;
  file_.fprint("");
  file_.fclose();
}

void CommandFile::write(const std::vector<std::string>& lines) {
  fopen();
  for (const std::string& line : lines) fprint(line);
  fclose();
}

}  // namespace voxa
