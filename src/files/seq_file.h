#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/value.h"

namespace voxa {

class Context;

/// A text file that is read and written line by line, in code page 1252. Lines end with CR LF.
///
/// A read or write that fails raises the error again with the same number. Its description is the text of
/// "msgCantRead" or "msgCantWrite", a blank, the file's name, CR LF and what failed. An open that fails says
/// nothing; the next access then raises the error.
class SeqFile {
 public:
  explicit SeqFile(Context& context) : context_(context) {}
  ~SeqFile();  ///< closes; a failure is ignored, since nobody is left to tell
  SeqFile(const SeqFile&) = delete;
  SeqFile& operator=(const SeqFile&) = delete;

  [[nodiscard]] const std::string& Name() const { return name_; }  ///< path, set before fopen
  void Name(const std::string& name) { name_ = name; }
  [[nodiscard]] std::int16_t ch() const { return ch_; }  ///< file number, 0 when closed

  /// mode: "r" reads, "w" empties and writes, anything else appends and creates a missing file; the case
  /// matters. An open file is closed first, as the destructor does it.
  void fopen(const std::string& mode = "");
  /// Opens a new file of that name for writing, after the old one was deleted if that is possible.
  void fopenNew();
  /// When this returns, the file has what was written. A failure is raised like that of a write.
  void fclose();
  [[nodiscard]] bool fEOF();
  void fprint(const std::string& text);
  /// Reads the next item, up to a comma or the end of the line, as the type that `var` holds. Into a Null
  /// `var` it is read as a number if it is one, else as text.
  void finput(Value& var);
  [[nodiscard]] std::string flineInput();
  /// Reads a line as it stands in the file, in code page 1252. line: its memory is used again. limit:
  /// greatest number of characters; the rest of a longer line is passed over.
  void flineInput1252(std::string& line, std::size_t limit);
  /// A line as it goes into the file: in code page 1252, with its end. Raises what fprint would raise.
  [[nodiscard]] std::string lineOf(const std::string& text);
  /// Writes lines that lineOf made.
  void fprint1252(std::string_view lines);
  /// Copies the lines of another file to the end of this one. It must be open for writing.
  void appendFile(const std::string& fileName);

 private:
  void abandon();
  void open(files::Stream::Mode mode);
  template <typename Work>
  auto access(const char* mnemonic, Work&& work);

  Context& context_;
  std::string name_;
  std::int16_t ch_ = 0;
  std::optional<files::Stream> stream_;
};

}  // namespace voxa
