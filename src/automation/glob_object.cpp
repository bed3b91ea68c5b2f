#include "app/glob.h"

#include "app/library.h"
#include "comm/com.h"
#include "local_server.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

std::string textBehind(BSTR* text) {
  return text == nullptr ? std::string() : fromBstr(*text);
}

class GlobObject final : public Object<::IGlob> {
 public:
  STDMETHODIMP get_QDB(::IQDB** object) override {
    return give(object, [] { return qdbObject(); });
  }
  STDMETHODIMP get_Com(::ICom** object) override {
    return give(object, [] { return comObject(); });
  }
  STDMETHODIMP get_CommandFile(::ICommandFile** object) override {
    return give(object, [] { return commandFileObject(); });
  }
  STDMETHODIMP get_Strings(::IStrings** object) override {
    return give(object, [] { return stringsObject(); });
  }
  STDMETHODIMP Initialize(BSTR* AppDB, BSTR* IniFile, BSTR* LogFile, BSTR* Path) override {
    return call([&] {
      voxa::Com& com = library().Com();
      setWorkingFolder(com.Chemin, textBehind(Path));
      setPath(com.AppDB, textBehind(AppDB));
      setPath(com.IniFile, textBehind(IniFile));
      setPath(com.logFileName, textBehind(LogFile));
      glob_.Initialize(com.AppDB, com.IniFile, com.logFileName, com.Chemin);
    });
  }
  STDMETHODIMP insertStrings() override {
    return call([&] { glob_.insertStrings(); });
  }

 private:
  Glob glob_{library()};
};

}  // namespace

Library& library() {
  return processLibrary();
}

IUnknown* makeGlob() {
  return static_cast<::IGlob*>(new GlobObject);
}

}  // namespace voxa::automation
