#pragma once

#include <string>

namespace voxa {

class Com;
class CommandFile;
class DatabaseEngine;
class Library;
class QDB;
class Strings;

/// The object that a caller creates first and keeps while it uses the library. Every Glob of a process hands
/// out the same four service objects. Creating one opens the message store, and no other database.
class Glob {
 public:
  Glob();                           ///< over the process-wide context (processLibrary)
  explicit Glob(Library& library);  ///< over a context of the caller's

  [[nodiscard]] ::voxa::QDB& QDB() const;
  [[nodiscard]] ::voxa::Com& Com() const;
  [[nodiscard]] ::voxa::CommandFile& CommandFile() const;
  [[nodiscard]] ::voxa::Strings& Strings() const;

  /// Stores the four paths in `Com` (none is checked) and opens the main database, then the journal.
  /// AppDB: main database file. IniFile: the driver's ini file. LogFile: communication log. Path: working
  /// folder, without a trailing separator. A database that cannot be opened is reported to the person;
  /// Initialize itself always returns. May be called again with other paths.
  void Initialize(const std::string& AppDB, const std::string& IniFile, const std::string& LogFile,
                  const std::string& Path) const;

  /// Writes the default English texts of every mnemonic into the message store; translations are kept.
  void insertStrings() const;

 private:
  Library& library_;
};

/// The process-wide context over the platform's own seams (database engines as engine_choice.h has them,
/// driver library, console prompts, system clock), made at first use and kept until the process ends.
[[nodiscard]] Library& processLibrary();
/// The embedded engine among those of processLibrary.
[[nodiscard]] DatabaseEngine& processEmbeddedEngine();

}  // namespace voxa
