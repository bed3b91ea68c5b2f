#pragma once

#include <string>
#include <vector>

#include "files/seq_file.h"

namespace voxa {

class FileContext;

/// The file of controller command lines that the driver sends: one command a line, the file ended by one
/// empty line, emptied by every fopen. One for the whole library; two downloads must not be interleaved
/// between fopen and the send. Failing writes are raised to the download that made them.
///
/// Another process that shares the folder has its lines in the same file. So the lines are kept here, are
/// written while nobody sends his, and are written anew by the send when somebody has replaced them.
class CommandFile {
 public:
  explicit CommandFile(FileContext& context);
  ~CommandFile();
  CommandFile(const CommandFile&) = delete;
  CommandFile& operator=(const CommandFile&) = delete;

  /// True once a line has been written since the last fopen; fclose leaves it, so that the sender still sees
  /// whether there is anything to send.
  bool isFull = false;

  [[nodiscard]] std::string fileName() const { return "COMMAND.TXT"; }  ///< without its folder

  /// Places the file in the working folder as `Com.Chemin` has it now, as its creation does and
  /// `Glob.Initialize`; a later assignment to `Chemin` alone leaves it where it is.
  void Initialize();
  void fopen();
  void fprint(const std::string& text);  ///< one command line; "" is not written
  void fclose();
  /// fopen, fprint of each line, fclose, in one piece.
  void write(const std::vector<std::string>& lines);

  /// Sees to it that the file holds what was printed since the last fopen. For the send, which has the lines
  /// (comm/line_span.h). A file that the caller made himself, setting isFull, is left as it is.
  void restore();

 private:
  void begin();
  void write(bool anew);

  FileContext& context_;
  SeqFile file_;
  std::string text_;  // what the file is to hold, in code page 1252
  bool open_ = false;
  bool printed_ = false;  // a line since the last fopen; isFull is the caller's, too
  bool emptied_ = false;  // the file, by the last fopen
};

}  // namespace voxa
