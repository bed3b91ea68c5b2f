#pragma once

#include <string>

#include "platform/context.h"

namespace voxa {

class CommandFile;
class LineLock;

/// Where an installation is. A path is not checked when it is set.
struct Paths {
  std::string AppDB;        ///< path of the main database
  std::string IniFile;      ///< path of the driver's ini file
  std::string logFileName;  ///< path of the communication log
  std::string Chemin;       ///< working folder, without a trailing separator
};

/// What the files of an installation share.
class FileContext : public Context {
 public:
  using Context::Context;

  [[nodiscard]] virtual const Paths& paths() = 0;
  [[nodiscard]] virtual LineLock& lineLock() = 0;
  [[nodiscard]] virtual ::voxa::CommandFile& CommandFile() = 0;
};

}  // namespace voxa
