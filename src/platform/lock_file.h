#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/error.h"

namespace voxa {

/// A file that one process at a time can hold. The process lets go of it when it ends, however that happens.
/// The file stays in its folder and says who holds it, or held it last: the process's number and the
/// program's name.
///
/// Within a process any number of objects can hold the same file, and each more than once. It is free when
/// all of them have let go.
class LockFile {
 public:
  /// path: in a folder that should exist. Nothing is opened yet.
  explicit LockFile(const std::string& path);

  enum class Outcome {
    held,
    busy,   ///< another process held it for the whole time of waiting
    noFile  ///< it does not exist and cannot be made: the folder is missing or cannot be written to
  };
  /// Takes the file. Waits for another process, at most for the time of `patience`. A file that cannot be
  /// opened, since it is somebody else's, say, raises the Error of fileError.
  [[nodiscard]] Outcome lock(std::chrono::milliseconds patience);
  /// Takes the file for a short time: does not wait, and does not write down who holds it. For what is done
  /// thousands of times.
  [[nodiscard]] Outcome lockForAMoment();
  void unlock();

  /// "voxa (process 1234)", after Outcome::busy.
  [[nodiscard]] std::string holder() const;
  /// Why there is no file, after Outcome::noFile.
  [[nodiscard]] Error failure() const;

 private:
  struct Shared;
  [[nodiscard]] Outcome tryLock(bool forAMoment);
  static std::shared_ptr<Shared> sharedOf(const std::string& path);

  std::shared_ptr<Shared> shared_;
};

}  // namespace voxa
