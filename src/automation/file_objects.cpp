#include "app/library.h"
#include "files/command_file.h"
#include "files/seq_file.h"
#include "files/ufile.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

class SeqFileObject final : public Object<::ISeqFile> {
 public:
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return file_.Name(); });
  }
  STDMETHODIMP put_Name(BSTR name) override {
    return call([&] { file_.Name(fromBstr(name)); });
  }
  STDMETHODIMP get_ch(short* number) override {
    return give(number, [&] { return file_.ch(); });
  }
  STDMETHODIMP fopen(BSTR mode) override {
    return call([&] { file_.fopen(fromBstr(mode)); });
  }
  STDMETHODIMP fclose() override {
    return call([&] { file_.fclose(); });
  }
  STDMETHODIMP fEOF(VARIANT_BOOL* value) override {
    return give(value, [&] { return file_.fEOF(); });
  }
  STDMETHODIMP fprint(BSTR text) override {
    return call([&] { file_.fprint(fromBstr(text)); });
  }
  STDMETHODIMP finput(VARIANT* var) override {
    if (var == nullptr) return E_POINTER;
    return call([&] {
      VARIANT& variable = variableBehind(*var);
      if (!canHoldValue(variable)) throw Error(err::typeMismatch, "Type mismatch: not a variable for values");
      Value value = fromVariant(variable);
      file_.finput(value);
      OwnVariant read(toVariant(value));
      if (FAILED(store(variable, *read))) {
        throw Error(err::overflow, "Overflow: the variable cannot hold what was read");
      }
    });
  }
  STDMETHODIMP flineInput(BSTR* line) override {
    return give(line, [&] { return file_.flineInput(); });
  }
  STDMETHODIMP appendFile(BSTR fileName) override {
    return call([&] { file_.appendFile(fromBstr(fileName)); });
  }

 private:
  SeqFile file_{library()};
};

class CommandFileObject final : public Object<::ICommandFile>, public Shared<CommandFileObject> {
 public:
  STDMETHODIMP get_isFull(VARIANT_BOOL* value) override {
    return give(value, [] { return file().isFull; });
  }
  STDMETHODIMP put_isFull(VARIANT_BOOL value) override {
    return call([&] { file().isFull = value != 0; });
  }
  STDMETHODIMP get_fileName(BSTR* name) override {
    return give(name, [] { return file().fileName(); });
  }
  STDMETHODIMP fopen() override {
    return call([] { file().fopen(); });
  }
  STDMETHODIMP fprint(BSTR text) override {
    return call([&] { file().fprint(fromBstr(text)); });
  }
  STDMETHODIMP fclose() override {
    return call([] { file().fclose(); });
  }

 private:
  static CommandFile& file() { return library().CommandFile(); }
};

class UFileObject final : public Object<::IUFile> {
 public:
  STDMETHODIMP DlgRename(BSTR fileName, short* status) override {
    return give(status, [&] { return file_.DlgRename(fromBstr(fileName)); });
  }
  STDMETHODIMP DlgSaveAs(BSTR fileName, short* status) override {
    return give(status, [&] { return file_.DlgSaveAs(fromBstr(fileName)); });
  }
  STDMETHODIMP DlgRestore(BSTR newFileName, short* status) override {
    return give(status, [&] { return file_.DlgRestore(fromBstr(newFileName)); });
  }
  STDMETHODIMP DlgDelete(short* status) override {
    return give(status, [&] { return file_.DlgDelete(); });
  }

 private:
  UFile file_{library()};
};

}  // namespace

::ICommandFile* commandFileObject() {
  return CommandFileObject::get();
}

IUnknown* makeSeqFile() {
  return static_cast<::ISeqFile*>(new SeqFileObject);
}

IUnknown* makeUFile() {
  return static_cast<::IUFile*>(new UFileObject);
}

}  // namespace voxa::automation
