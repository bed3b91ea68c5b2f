#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxa {

/// The file system seam. Paths are UTF-8 text composed with "\" (or "/"), relative ones start at the
/// process's current folder, and existing files and folders are found without regard to case, on every
/// platform. What the administrator creates in another account's folder belongs to that account. Failures
/// raise the Error of fileError (error.h), its description naming the path as given.
namespace files {

/// The path as the platform wants it: separators replaced, every component that exists without regard to
/// case spelled as it exists (an exact match wins), the rest as given. Never fails.
[[nodiscard]] std::string native(std::string_view path);

[[nodiscard]] bool exists(std::string_view path);        ///< a file or folder of that name
[[nodiscard]] bool folderExists(std::string_view path);  ///< a folder of that name
/// A regular file by that very name: no link, folder, pipe or device.
[[nodiscard]] bool isPlain(std::string_view path);
/// Why another account could change what is in a folder of this one's, and how to mend it; "" when none can
/// but the administrator. The administrator may work in any one account's folder. trustGroup: the folder's
/// group may write it. The folders above count: who can rename them can put another in their place. Windows:
/// always "".
[[nodiscard]] std::string folderFault(std::string_view folder, bool trustGroup);
/// Whether that is the file's whole content; false also when it cannot be read.
[[nodiscard]] bool holds(std::string_view path, std::string_view bytes);
void remove(std::string_view path);  ///< deletes one file; 53 when there is none
/// Deletes the file of that name if it is a regular one, and says whether it did: a link, a device or a
/// folder stays, as does what may not be deleted.
bool removeRegular(std::string_view path);
/// Moves a file; 58 when `to` exists, 53 when `from` does not. Never leaves a half-written `to`.
void rename(std::string_view from, std::string_view to);
/// Copies a file over `to`, replacing it in one step: a failed copy (a full disk, say) leaves `to` as it
/// was. 53 when `from` is missing.
void copy(std::string_view from, std::string_view to);
/// Creates an empty file that only its owner can read or write; 58 when it exists, 76 when its folder does
/// not.
void createNew(std::string_view path);
/// One folder that only its owner can use; 75 when it exists, 76 when its parent does not.
void makeFolder(std::string_view path);
/// The same with those above it that are missing; nothing when it exists.
void makeFolders(std::string_view path);
/// Names of the regular files in a folder, sorted; 76 when there is no such folder.
[[nodiscard]] std::vector<std::string> list(std::string_view folder);
[[nodiscard]] std::string currentFolder();  ///< absolute, native separators, without a trailing one

/// A small file that says whether the process that made it is still at work: it is its own for as long as
/// this object lives, and nobody's when the process has ended, without a word even. Deleting it is remove().
class OwnedFile {
 public:
  /// Creates it with that text, which is on the device then; none when there is a file of that name.
  [[nodiscard]] static std::optional<OwnedFile> create(std::string_view path, std::string_view text);
  /// Of one that is nobody's; none when a process has it or there is no such file.
  [[nodiscard]] static std::optional<OwnedFile> takeOver(std::string_view path);

  [[nodiscard]] const std::string& path() const { return path_; }
  void remove();  ///< the last that can be done with it

 private:
  struct Closer {
    void operator()(std::FILE* f) const { (void)std::fclose(f); }
  };
  OwnedFile(std::string_view path, std::FILE* file) : path_(path), file_(file) {}

  std::string path_;
  std::unique_ptr<std::FILE, Closer> file_;
};

/// An open text file, bytes as they are. Movable; the destructor closes and, having no one to tell, ignores
/// a failure: call close() where a failed write must be known. A file it creates is its owner's alone.
/// Reading what is open for writing, or the reverse, raises 54; any use after close() raises 52.
class Stream {
 public:
  /// write empties or creates, append creates when missing; replace is write, into a new file where the old
  /// one can be deleted.
  enum class Mode { read, write, append, replace };
  /// plain: a link is not followed, and a pipe or device not opened (75): the system's own files, which
  /// somebody else may have put something in the place of. any: what a person named.
  enum class Kind { plain, any };

  /// 53 when a file to read is missing, 76 when the folder of a file to write is.
  Stream(std::string_view path, Mode mode, Kind kind = Kind::plain);

  void write(std::string_view bytes);  ///< buffered; a failure may be raised by this or a later call
  /// Next line without its end (CR LF, LF or CR). Raises 62 at the end of the file.
  [[nodiscard]] std::string readLine();
  /// The same into a text whose memory is used again; of a line longer than `limit` bytes only so many, the
  /// rest being passed over.
  void readLine(std::string& line, std::size_t limit);
  /// Next item up to a comma or line end, blanks around it dropped, double quotes around it removed (commas
  /// inside quotes belong to the item). Raises 62 at the end of the file.
  [[nodiscard]] std::string readItem();
  [[nodiscard]] bool atEnd();
  /// Flushes and closes; a failure of either is raised, and the file is closed all the same. Closing twice
  /// does nothing.
  void close();

 private:
  void requireOpen(bool reading) const;
  bool fill();          ///< reads the next bytes into an empty buffer; false at the end of the file
  void requireMore();   ///< 62 at the end of the file
  void skipLineFeed();  ///< the second half of a CR LF whose CR was taken

  struct Closer {
    void operator()(std::FILE* f) const { (void)std::fclose(f); }
  };
  std::string path_;
  Mode mode_;
  std::unique_ptr<std::FILE, Closer> file_;
  std::string buffer_;  ///< bytes read from the file, taken up to next_
  std::size_t next_ = 0;
};

}  // namespace files
}  // namespace voxa
