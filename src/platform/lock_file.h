#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/error.h"

namespace voxa {

/// A file that one process at a time can hold. It goes with the process, however that ends, and stays in its
/// folder, where it says who holds it, or held it last: the process's number and the program's name.
///
/// Within a process the same file may be held any number of times over, by any objects, and is free when all
/// of them have let go.
class LockFile {
 public:
  /// path: in a folder that should exist. Nothing is opened yet.
  explicit LockFile(const std::string& path);

  enum class Outcome {
    held,
    busy,   ///< another process held it for as long as was waited
    noFile  ///< there is none, and none can be made: the folder is missing or not to be written
  };
  /// Takes it, waiting for another process so long at most. A file that cannot be opened, somebody else's
  /// say, raises the Error of fileError.
  [[nodiscard]] Outcome lock(std::chrono::milliseconds patience);
  /// The same for a moment, at once or not at all, and without saying who: for what is done by the thousand.
  [[nodiscard]] Outcome lockForAMoment();
  void unlock();

  /// "voxa (process 1234)", behind Outcome::busy.
  [[nodiscard]] std::string holder() const;
  /// Why there is no file, behind Outcome::noFile.
  [[nodiscard]] Error failure() const;

 private:
  struct Shared;
  [[nodiscard]] Outcome tryLock(bool forAMoment);
  static std::shared_ptr<Shared> sharedOf(const std::string& path);

  std::shared_ptr<Shared> shared_;
};

}  // namespace voxa
