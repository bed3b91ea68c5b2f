#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace voxa {

class Database;
class FileContext;

/// File dialogs for database files. Each returns 0 when done, and -1 when the person cancelled or the name
/// was refused ("msgIllegalName"): nobody may choose the journal of the working folder. A file operation that
/// fails is raised.
class UFile {
 public:
  explicit UFile(FileContext& context) : context_(context) {}

  /// What the dialogs show beside their title. Callers set these.
  std::string filter;
  int flags = 0;
  /// Raises an Error when a backup is unfit for DlgRestore. Callers set it; without it every database is fit.
  std::function<void(Database&)> requireFit = [](Database&) {};

  std::int16_t DlgRename(const std::string& fileName);      ///< moves it to the name chosen
  std::int16_t DlgSaveAs(const std::string& fileName);      ///< copies it to the name chosen
  std::int16_t DlgRestore(const std::string& newFileName);  ///< copies the chosen backup over it
  std::int16_t DlgDelete();                                 ///< deletes the file chosen

 private:
  [[nodiscard]] std::string choose(const char* titleMnemonic, const std::string& proposed, bool save);
  [[nodiscard]] bool confirmed(const char* mnemonic);
  std::int16_t refuse();

  FileContext& context_;
};

}  // namespace voxa
