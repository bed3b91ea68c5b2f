#pragma once

#include <string>
#include <vector>

#include "files/seq_file.h"

namespace voxa {

class Library;

/// The file of controller command lines that the driver sends: one command a line, the file ended by one
/// empty line, emptied by every fopen. One for the whole library; two downloads must not be interleaved
/// between fopen and the send. Failing writes are raised to the download that made them.
class CommandFile {
 public:
  /// Places the file in the working folder as `Com.Chemin` has it now: create it after the paths are set.
  explicit CommandFile(Library& library);
  ~CommandFile();
  CommandFile(const CommandFile&) = delete;
  CommandFile& operator=(const CommandFile&) = delete;

  /// True once a line has been written since the last fopen; fclose leaves it, so that the sender still sees
  /// whether there is anything to send.
  bool isFull = false;

  [[nodiscard]] std::string fileName() const { return "COMMAND.TXT"; }  ///< without its folder

  void fopen();
  void fprint(const std::string& text);  ///< one command line; "" is not written
  void fclose();
  void write(const std::vector<std::string>& lines);  ///< fopen, fprint of each line, fclose

 private:
  SeqFile file_;
};

}  // namespace voxa
