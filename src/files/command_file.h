#pragma once

#include <string>
#include <vector>

#include "files/seq_file.h"

namespace voxa {

class FileContext;

/// The file of controller command lines that the driver sends. It has one command a line and ends with one
/// empty line. Each fopen empties it. There is one for the whole library: two downloads must not be mixed
/// between fopen and the send. A write that fails is raised to the download that made it.
///
/// Another process that shares the folder has its lines in the same file. So the lines are kept here. They
/// are written while no other process sends, and the send writes them again when somebody has replaced them.
class CommandFile {
 public:
  explicit CommandFile(FileContext& context);
  ~CommandFile();
  CommandFile(const CommandFile&) = delete;
  CommandFile& operator=(const CommandFile&) = delete;

  /// True once a line was written since the last fopen. fclose does not reset it: the sender needs it to see
  /// whether there is anything to send.
  bool isFull = false;

  [[nodiscard]] std::string fileName() const { return "COMMAND.TXT"; }  ///< without its folder

  /// Places the file in the working folder that `Com.Chemin` names now. The constructor and `Glob.Initialize`
  /// do the same. A later change of `Chemin` alone does not move the file.
  void Initialize();
  void fopen();
  void fprint(const std::string& text);  ///< one command line; "" is not written
  void fclose();
  /// fopen, fprint of each line, and fclose in one call.
  void write(const std::vector<std::string>& lines);

  /// The same without touching the file: the send writes it, unless it is there already.
  void prepare(const std::vector<std::string>& lines);

  /// Makes sure that the file holds what was printed since the last fopen. For the send, which has the lines
  /// (files/line_span.h). A file that the caller made without this class, setting isFull, stays as it is.
  void restore();

 private:
  void begin();
  void write(bool anew);

  FileContext& context_;
  SeqFile file_;
  std::string text_;     // what the file must hold, in code page 1252
  std::string written_;  // what it was made to hold last
  bool open_ = false;
  bool printed_ = false;  // a line since the last fopen; isFull can be set by the caller, too
  bool emptied_ = false;  // the last fopen emptied the file
};

}  // namespace voxa
