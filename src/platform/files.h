#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxa {

/// The file system seam. A path is UTF-8 text, composed with "\" or "/". A relative one starts at the
/// process's current folder. Existing files and folders are found without regard to case, on every platform.
/// What the administrator creates in another account's folder is given to that account. A failure raises the
/// Error of fileError (error.h); its description names the path as given.
///
/// files.cpp holds what all platforms do alike. native, currentFolder, folderFault and the primitives of
/// files_platform.h are in files_posix.cpp and files_windows.cpp.
namespace files {

/// The path as the platform wants it, with its own separators. A component that exists, whatever its case, is
/// spelled as it exists; an exact match wins. The rest stays as given. Never fails.
[[nodiscard]] std::string native(std::string_view path);

[[nodiscard]] bool exists(std::string_view path);  ///< a file or folder of that name
/// Tells whether a name still means the same file: on Linux a number of the file, which no other file of its
/// disk has while it is open; 0 without one. On Windows always 0: a file that is open keeps its name.
[[nodiscard]] std::uint64_t identity(const std::string& path);
[[nodiscard]] bool folderExists(std::string_view path);  ///< a folder of that name
/// A regular file by that very name: no link, folder, pipe or device.
[[nodiscard]] bool isPlain(std::string_view path);
/// Says why another account could change what is in a folder of this account, and how to mend that; "" when
/// only the administrator could. The administrator may work in any account's folder. trustGroup: the folder's
/// group may write to it. The folders above are checked, too: whoever can rename one of them can put another
/// folder in its place. Windows: always "".
[[nodiscard]] std::string folderFault(std::string_view folder, bool trustGroup);
/// Whether `bytes` are the file's whole content; false also when the file cannot be read.
[[nodiscard]] bool holds(std::string_view path, std::string_view bytes);
/// The file's bytes; none when it cannot be read, and for anything but a regular file of that very name.
[[nodiscard]] std::optional<std::string> contents(std::string_view path);
void remove(std::string_view path);  ///< deletes one file; 53 when there is none
/// Deletes the file of that name if it is a regular one, and says whether it did. A link, a device and a
/// folder stay, and so does a file that may not be deleted.
bool removeRegular(std::string_view path);
/// Moves a file; 58 when `to` exists, 53 when `from` does not. Never leaves a half-written `to`.
void rename(std::string_view from, std::string_view to);
/// Copies a file over `to` and replaces it in one step: a copy that fails (on a full disk, say) leaves `to`
/// as it was. 53 when `from` is missing.
void copy(std::string_view from, std::string_view to);
/// Creates an empty file that only its owner can read or write; 58 when it exists, 76 when its folder does
/// not.
void createNew(std::string_view path);
/// Creates one folder that only its owner can use; 75 when it exists, 76 when its parent does not.
void makeFolder(std::string_view path);
/// Creates the folder and those above it that are missing. Does nothing when it exists.
void makeFolders(std::string_view path);
/// Names of the regular files in a folder, sorted; 76 when there is no such folder.
[[nodiscard]] std::vector<std::string> list(std::string_view folder);
[[nodiscard]] std::string currentFolder();  ///< absolute, native separators, without a trailing one

/// An empty file that says whether the process that made it is still at work. The process owns the file for
/// as long as this object lives. When the process ends, even by a kill, nobody owns the file. remove()
/// deletes it.
class OwnedFile {
 public:
  /// Creates the file. None when a file of that name exists.
  [[nodiscard]] static std::optional<OwnedFile> create(std::string_view path);
  /// Takes over a file that nobody owns. None when a process owns it, or when there is no such file.
  [[nodiscard]] static std::optional<OwnedFile> takeOver(std::string_view path);

  [[nodiscard]] const std::string& path() const { return path_; }
  void remove();  ///< the object can do nothing after it

 private:
  struct Closer {
    void operator()(std::FILE* f) const { (void)std::fclose(f); }
  };
  OwnedFile(std::string_view path, std::FILE* file) : path_(path), file_(file) {}

  std::string path_;
  std::unique_ptr<std::FILE, Closer> file_;
};

/// An open text file, read and written as bytes. It can be moved. The destructor closes it and ignores a
/// failure, since it can tell nobody: call close() where a failed write must be known. Only the owner can use
/// a file that this class creates. Reading from a file that is open for writing, or the reverse, raises 54.
/// Any use after close() raises 52.
class Stream {
 public:
  /// write empties the file or creates it. append creates it when it is missing. replace is write into a new
  /// file, after the old one was deleted if that is possible.
  enum class Mode { read, write, append, replace };
  /// plain: for the system's own files, in whose place somebody may have put something else. A link is not
  /// followed, a pipe or a device is not opened (75). any: for a file that a person named.
  enum class Kind { plain, any };

  /// 53 when a file to read is missing, 76 when the folder of a file to write is.
  Stream(std::string_view path, Mode mode, Kind kind = Kind::plain);

  void write(std::string_view bytes);  ///< buffered; a failure may be raised by this or a later call
  /// Next line without its end (CR LF, LF or CR). Raises 62 at the end of the file.
  [[nodiscard]] std::string readLine();
  /// Reads a line into a text, whose memory is used again. Of a longer line only the first `limit` bytes are
  /// kept.
  void readLine(std::string& line, std::size_t limit);
  /// Reads the next item, up to a comma or the end of the line. Drops the blanks around it and removes its
  /// double quotes; a comma within quotes belongs to the item. Raises 62 at the end of the file.
  [[nodiscard]] std::string readItem();
  /// The next bytes as they are, some of them at least; "" at the end of the file.
  [[nodiscard]] std::string readSome();
  [[nodiscard]] bool atEnd();
  /// Flushes and closes. A failure of either is raised, and the file is closed all the same. Closing twice
  /// does nothing.
  void close();

 private:
  void requireOpen(bool reading) const;
  bool fill();          ///< reads the next bytes into an empty buffer; false at the end of the file
  void requireMore();   ///< 62 at the end of the file
  void skipLineFeed();  ///< takes the LF of a CR LF whose CR was taken before

  struct Closer {
    void operator()(std::FILE* f) const { (void)std::fclose(f); }
  };
  std::string path_;
  Mode mode_;
  std::unique_ptr<std::FILE, Closer> file_;
  std::string buffer_;  ///< bytes read from the file; those before next_ are used up
  std::size_t next_ = 0;
};

}  // namespace files
}  // namespace voxa
