#include "app/glob.h"

#include "app/library.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "files/command_file.h"
#include "messages/default_messages.h"
#include "messages/strings.h"

namespace voxa {

Glob::Glob() : Glob(processLibrary()) {}

Glob::Glob(Library& library) : library_(library) {
  library_.Strings().Initialize();
}

::voxa::QDB& Glob::QDB() const {
  return library_.QDB();
}
::voxa::Com& Glob::Com() const {
  return library_.Com();
}
::voxa::CommandFile& Glob::CommandFile() const {
  return library_.CommandFile();
}
::voxa::Strings& Glob::Strings() const {
  return library_.Strings();
}

void Glob::Initialize(const std::string& AppDB, const std::string& IniFile, const std::string& LogFile,
                      const std::string& Path) const {
  ::voxa::Com& com = library_.Com();
  com.AppDB = AppDB;
  com.IniFile = IniFile;
  com.logFileName = LogFile;
  com.Chemin = Path;
  library_.CommandFile().Initialize();
  library_.QDB().openDB();
}

void Glob::insertStrings() const {
  insertDefaultMessages(library_, library_.Strings());
}

}  // namespace voxa
