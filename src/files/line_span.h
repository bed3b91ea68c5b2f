#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/lock_file.h"

namespace voxa {

class FileContext;

/// How this process takes the lines of an installation. There is one for the whole library.
class LineLock {
 public:
  /// How long to wait while another process has the lines.
  std::chrono::milliseconds patience{10'000};

 private:
  friend class LineSpan;
  /// The lock file of a working folder. None when there is no folder.
  std::optional<LockFile> fileIn(const std::string& folder);
  LockFile::Outcome lock(LockFile& file);

  std::optional<LockFile> file_;
  std::string folder_;                                  // of file_
  std::chrono::steady_clock::time_point noWaitBefore_;  // set when a wait was in vain
};

/// While a span lives, this process has the lines of the installation. No other process calls the driver
/// meanwhile, or changes the files that the driver reads and writes in the working folder: the command file,
/// the stations' ini and result files, the dump of a memory. Spans can be nested. Messages from within a span
/// are shown at its end.
///
/// A span holds the file `lockFileName` of `Com.Chemin`. Without a working folder there is nothing to hold,
/// and nothing is refused. The same is true in a folder that cannot be written to: nobody can change those
/// files there.
class LineSpan {
 public:
  static constexpr const char* lockFileName = "voxa.lck";

  /// waiting: waits for another process as long as `LineLock::patience` says. After a wait in vain nothing
  /// waits for as long again: a thousand sends must not wait a thousand times. forAMoment: does not wait; for
  /// something short.
  enum class Take { waiting, forAMoment };
  explicit LineSpan(FileContext& context, Take take = Take::waiting);
  ~LineSpan();
  LineSpan(const LineSpan&) = delete;
  LineSpan& operator=(const LineSpan&) = delete;

  /// Why this process cannot have the lines, with who has them; "" when it has them.
  [[nodiscard]] const std::string& refusal() const { return refusal_; }
  /// Raises the refusal (`err::permissionDenied`), if there is one.
  void require() const;

 private:
  FileContext& context_;
  std::optional<LockFile> held_;
  std::string refusal_;
};

}  // namespace voxa
