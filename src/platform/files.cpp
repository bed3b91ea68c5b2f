#include "platform/files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/error.h"
#include "platform/files_platform.h"
#include "platform/text.h"

namespace voxa::files {
namespace {

namespace fs = std::filesystem;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

fs::path asPath(const std::string& nativePath) {
  return std::u8string(nativePath.begin(), nativePath.end());
}

std::string asText(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

int errnoOf(const std::error_code& code) {
  return code.default_error_condition().value();
}

/// The error of a creation that failed at that path. What is missing then is the folder.
Error creationError(int error, std::string_view path) {
  if (error == ENOENT) error = ENOTDIR;
  return fileError(error, std::string(path));
}

/// name: the path as native() gives it.
File open(const std::string& name, std::string_view path, Open how, bool any = false) {
  int error = 0;
  File file(openFile(name, how, any, error), &std::fclose);
  if (!file) throw how == Open::read ? fileError(error, std::string(path)) : creationError(error, path);
  return file;
}

bool removeNativeRegular(const std::string& name) {
  const fs::path found = asPath(name);
  std::error_code error;
  return fs::is_regular_file(fs::symlink_status(found, error)) && fs::remove(found, error);
}

/// Deletes files beside a target that killed processes left when they were copying to it.
void removeLeftovers(const fs::path& target) {
  const std::string prefix = asText(target.filename()) + '~';
  const fs::path folder = target.has_parent_path() ? target.parent_path() : ".";
  std::error_code error;  // a folder that cannot be read keeps them
  for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error)) {
    const std::string name = asText(i->path().filename());
    if (name.size() > prefix.size() && equalNoCase(name.substr(0, prefix.size()), prefix) &&
        name.find_first_not_of("0123456789", prefix.size()) == std::string::npos) {
      const File leftover(takeOver(asText(i->path())), &std::fclose);
      std::error_code kept;  // the next copy tries again
      if (leftover) fs::remove(i->path(), kept);
    }
  }
}

/// A new file beside another one. It is deleted at the end unless it took the other one's name. It stays open
/// until then: that is how it differs from what a killed process left.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view target) : target_(target), file_(nullptr, &std::fclose) {
    removeLeftovers(asPath(native(target)));
    int error = EEXIST;
    for (int n = 0; error == EEXIST && n < 1000; ++n) {
      path_ = native(target) + '~' + std::to_string(n);
      error = 0;
      file_.reset(openOwned(path_, error));
    }
    if (!file_) throw creationError(error, target);
  }
  ~TemporaryFile() {
    std::error_code ignored;
    file_.reset();
    if (!path_.empty()) fs::remove(asPath(path_), ignored);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void fillFrom(std::string_view source) {
    const File in = open(native(source), source, Open::read, true);
    std::array<char, 65536> bytes;  // NOLINT(cppcoreguidelines-pro-type-member-init): read into before use
    while (const auto n = std::fread(bytes.data(), 1, bytes.size(), in.get())) {
      if (std::fwrite(bytes.data(), 1, n, file_.get()) != n) throw fileError(errno, target_);
    }
    if (std::ferror(in.get()) != 0) throw fileError(errno, std::string(source));
    if (const int error = flushToDevice(file_.get()); error != 0) throw fileError(error, target_);
  }
  void replaceTarget() {
    std::error_code error;
    fs::rename(asPath(path_), asPath(native(target_)), error);
    if (error) throw fileError(errnoOf(error), target_);
    path_.clear();
  }
  void becomeTarget() {
    if (const int error = renameNew(path_, native(target_)); error != 0) throw fileError(error, target_);
    path_.clear();
  }

 private:
  std::string target_;
  std::string path_;
  File file_;
};

}  // namespace

bool exists(std::string_view path) {
  std::error_code error;
  return fs::exists(asPath(native(path)), error);
}

bool folderExists(std::string_view path) {
  std::error_code error;
  return fs::is_directory(asPath(native(path)), error);
}

bool isPlain(std::string_view path) {
  std::error_code error;
  return fs::is_regular_file(fs::symlink_status(asPath(native(path)), error));
}

bool holds(std::string_view path, std::string_view bytes) {
  int error = 0;
  const File file(openFile(native(path), Open::read, false, error), &std::fclose);
  if (!file) return false;
  (void)std::setvbuf(file.get(), nullptr, _IONBF, 0);  // it is read in one piece
  std::string found(bytes.size() + 1, '\0');
  found.resize(std::fread(found.data(), 1, found.size(), file.get()));
  return found == bytes;
}

std::optional<std::string> contents(std::string_view path) {
  int error = 0;
  const File file(openFile(native(path), Open::read, false, error), &std::fclose);
  if (!file) return std::nullopt;
  (void)std::setvbuf(file.get(), nullptr, _IONBF, 0);  // it is read in large pieces
  std::string found;
  for (std::size_t size = 4096; found.size() + size > found.size(); size *= 2) {
    const std::size_t before = found.size();
    found.resize(before + size);
    const std::size_t read = std::fread(found.data() + before, 1, size, file.get());
    found.resize(before + read);
    if (read < size) break;
  }
  if (std::ferror(file.get()) != 0) return std::nullopt;
  return found;
}

void remove(std::string_view path) {
  const fs::path found = asPath(native(path));
  std::error_code error;
  if (fs::is_directory(found, error)) throw fileError(EISDIR, std::string(path));
  if (fs::remove(found, error)) return;
  throw fileError(error ? errnoOf(error) : ENOENT, std::string(path));
}

bool removeRegular(std::string_view path) {
  return removeNativeRegular(native(path));
}

void rename(std::string_view from, std::string_view to) {
  if (!exists(from)) throw fileError(ENOENT, std::string(from));
  const int error = renameNew(native(from), native(to));
  if (error == EXDEV) {
    TemporaryFile copied(to);
    copied.fillFrom(from);
    copied.becomeTarget();
    remove(from);
  } else if (error != 0) {
    throw creationError(error, to);
  }
}

void copy(std::string_view from, std::string_view to) {
  if (!exists(from)) throw fileError(ENOENT, std::string(from));
  if (folderExists(to)) throw fileError(EISDIR, std::string(to));
  TemporaryFile copied(to);
  copied.fillFrom(from);
  copied.replaceTarget();
}

std::optional<OwnedFile> OwnedFile::create(std::string_view path) {
  int error = 0;
  OwnedFile file(path, openOwned(native(path), error));
  if (error == EEXIST) return std::nullopt;
  if (!file.file_) throw creationError(error, path);
  return file;
}

std::optional<OwnedFile> OwnedFile::takeOver(std::string_view path) {
  OwnedFile file(path, files::takeOver(native(path)));
  return file.file_ ? std::optional(std::move(file)) : std::nullopt;
}

void OwnedFile::remove() {
  files::remove(path_);
  file_.reset();
}

void createNew(std::string_view path) {
  (void)open(native(path), path, Open::createNew);
}

void makeFolder(std::string_view path) {
  const int error = createFolder(native(path));
  if (error == EEXIST) throw fileError(EISDIR, std::string(path));
  if (error != 0) throw creationError(error, path);
}

void makeFolders(std::string_view path) {
  const fs::path folder = asPath(native(path));
  std::error_code error;
  if (fs::is_directory(folder, error)) return;
  const fs::path parent = folder.has_filename() ? folder.parent_path() : folder.parent_path().parent_path();
  if (!parent.empty() && parent != folder) makeFolders(asText(parent));
  if (!fs::is_directory(folder, error)) makeFolder(path);
}

std::vector<std::string> list(std::string_view folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator i(asPath(native(folder)), error), end; !error && i != end; i.increment(error)) {
    std::error_code gone;  // it was deleted since it was listed, so it is no file any more
    if (i->is_regular_file(gone)) names.push_back(asText(i->path().filename()));
  }
  if (error) throw creationError(errnoOf(error), folder);
  std::sort(names.begin(), names.end());
  return names;
}

Stream::Stream(std::string_view path, Mode mode, Kind kind) : path_(path), mode_(mode) {
  const Open how = mode == Mode::read ? Open::read : mode == Mode::append ? Open::append : Open::write;
  const std::string name = native(path);
  if (mode == Mode::replace) {
    (void)removeNativeRegular(name);
    mode_ = Mode::write;
  }
  file_.reset(open(name, path, how, kind == Kind::any).release());
}

void Stream::requireOpen(bool reading) const {
  if (!file_) throw Error(err::badFileNumber, "Bad file name or number: " + path_ + " is not open");
  if (reading != (mode_ == Mode::read)) {
    throw Error(err::badFileMode,
                "Bad file mode: " + path_ + (reading ? " is open for writing" : " is open for reading"));
  }
}

void Stream::write(std::string_view bytes) {
  requireOpen(false);
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) throw fileError(errno, path_);
}

bool Stream::fill() {
  if (next_ < buffer_.size()) return true;
  buffer_.resize(65536);
  next_ = 0;
  buffer_.resize(std::fread(buffer_.data(), 1, buffer_.size(), file_.get()));
  if (buffer_.empty() && std::ferror(file_.get()) != 0) throw fileError(errno, path_);
  return !buffer_.empty();
}

std::string Stream::readSome() {
  if (atEnd()) return {};
  return buffer_.substr(std::exchange(next_, buffer_.size()));
}

bool Stream::atEnd() {
  requireOpen(true);
  return !fill();
}

void Stream::requireMore() {
  if (atEnd()) throw Error(err::readPastEnd, "Input past end of file: " + path_);
}

void Stream::skipLineFeed() {
  if (fill() && buffer_[next_] == '\n') ++next_;
}

void Stream::readLine(std::string& line, std::size_t limit) {
  requireMore();
  line.clear();
  while (fill()) {
    const auto begin = buffer_.begin() + static_cast<std::ptrdiff_t>(next_);
    const auto end = std::find_if(begin, buffer_.end(), [](char c) { return c == '\r' || c == '\n'; });
    const std::size_t wanted = std::min(static_cast<std::size_t>(end - begin), limit - line.size());
    line.append(begin, begin + static_cast<std::ptrdiff_t>(wanted));
    next_ = static_cast<std::size_t>(end - buffer_.begin());
    if (end == buffer_.end()) continue;
    ++next_;
    if (buffer_[next_ - 1] == '\r') skipLineFeed();
    break;
  }
}

std::string Stream::readLine() {
  std::string line;
  readLine(line, std::string::npos);
  return line;
}

std::string Stream::readItem() {
  requireMore();
  std::string item;
  bool inQuotes = false;
  while (fill()) {
    const char c = buffer_[next_++];
    if (c == '\r') skipLineFeed();
    if (c == '\r' || c == '\n' || (c == ',' && !inQuotes)) break;
    const bool blank = c == ' ' || c == '\t';
    if (item.empty() && blank) continue;
    // Only quotes around the whole item protect commas. Quotes inside a word are plain characters.
    if (c == '"' && (item.empty() || inQuotes)) inQuotes = !inQuotes;
    item += c;
  }
  item.erase(item.find_last_not_of(" \t") + 1);
  if (item.size() >= 2 && item.front() == '"' && item.back() == '"') return item.substr(1, item.size() - 2);
  return item;
}

void Stream::close() {
  if (!file_) return;
  buffer_.clear();
  next_ = 0;
  // The file is released first, so it counts as closed even when its last bytes could not be written.
  if (std::fclose(file_.release()) != 0) throw fileError(errno, path_);
}

}  // namespace voxa::files
