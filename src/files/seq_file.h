#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/value.h"

namespace voxa {

class Context;

/// A line-oriented text file in code page 1252, lines ended by CR LF.
///
/// A failing read or write raises the error again with its number and a description made of the text of
/// "msgCantRead" or "msgCantWrite", a blank, the file's name, CR LF and what failed. A failing open is
/// silent; the next access fails so.
class SeqFile {
 public:
  explicit SeqFile(Context& context) : context_(context) {}
  ~SeqFile();  ///< closes; a failure then has nobody to go to
  SeqFile(const SeqFile&) = delete;
  SeqFile& operator=(const SeqFile&) = delete;

  [[nodiscard]] const std::string& Name() const { return name_; }  ///< path, set before fopen
  void Name(const std::string& name) { name_ = name; }
  [[nodiscard]] std::int16_t ch() const { return ch_; }  ///< file number, 0 when closed

  /// mode, to the letter: "r" reads, "w" empties and writes, anything else appends (creating the file when
  /// it is missing). An open file is closed first, as the destructor does it.
  void fopen(const std::string& mode = "");
  /// Opens a new file of that name for writing, the old one deleted where that is possible.
  void fopenNew();
  /// What was written is in the file when this returns; a failure is raised like that of a write.
  void fclose();
  [[nodiscard]] bool fEOF();
  void fprint(const std::string& text);
  /// Reads the next item, up to a comma or line end, as the type that `var` holds; into a Null `var` as a
  /// number when it reads as one, else as text.
  void finput(Value& var);
  [[nodiscard]] std::string flineInput();
  /// The same line as it stands in the file, in code page 1252. line: its memory is used again. limit:
  /// greatest number of characters; what a longer line has beyond them is passed over.
  void flineInput1252(std::string& line, std::size_t limit);
  /// A line as it goes into the file: in code page 1252, with its end. Raises what fprint would.
  [[nodiscard]] std::string lineOf(const std::string& text);
  /// Writes such lines.
  void fprint1252(std::string_view lines);
  /// Copies the lines of another file to the end of this one, which must be open for writing.
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
