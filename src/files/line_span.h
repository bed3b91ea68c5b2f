#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/lock_file.h"

namespace voxa {

class FileContext;

/// How this process takes the lines of an installation; one for the whole library.
class LineLock {
 public:
  /// How long is waited while another process has the lines.
  std::chrono::milliseconds patience{10'000};

 private:
  friend class LineSpan;
  /// Takes them in a working folder. None without a folder.
  std::optional<LockFile> fileIn(const std::string& folder);
  LockFile::Outcome lock(LockFile& file);

  std::optional<LockFile> file_;
  std::string folder_;                                  // of file_
  std::chrono::steady_clock::time_point noWaitBefore_;  // behind a wait in vain
};

/// The lines of an installation for as long as it lives: no other process calls the driver meanwhile, or
/// changes the files that it reads and writes in the working folder (the command file, the ini and result
/// files of the stations, the dump of a memory). Spans may lie within one another. Messages that are shown
/// within one appear at its end.
///
/// What is held is the file `lockFileName` of `Com.Chemin`. Without a working folder, or in one that cannot
/// be written, where nobody can change those files either, there is nothing to hold and nothing is refused.
class LineSpan {
 public:
  static constexpr const char* lockFileName = "voxa.lck";

  /// waiting: for another process as long as `LineLock::patience` says, unless a wait in vain is not longer
  /// ago than that: a thousand sends do not wait a thousand times. forAMoment: not at all, for something
  /// short.
  enum class Take { waiting, forAMoment };
  explicit LineSpan(FileContext& context, Take take = Take::waiting);
  ~LineSpan();
  LineSpan(const LineSpan&) = delete;
  LineSpan& operator=(const LineSpan&) = delete;

  /// Why the lines cannot be had, naming who has them; "" when they can.
  [[nodiscard]] const std::string& refusal() const { return refusal_; }
  /// Raises the refusal (`err::permissionDenied`), if there is one.
  void require() const;

 private:
  FileContext& context_;
  std::optional<LockFile> held_;
  std::string refusal_;
};

}  // namespace voxa
