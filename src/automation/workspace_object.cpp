#include <wrl/client.h>

#include <algorithm>

#include "app/glob.h"
#include "app/library.h"
#include "app/open_database.h"
#include "app/qdb.h"
#include "data_objects.h"
#include "platform/text.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

/// These objects are those of the embedded engine alone, whatever serves the library's own files.
DatabaseEngine& engine() {
  return processEmbeddedEngine();
}

/// Whether a transaction was begun here and has not been ended here.
bool hasBegun = false;

/// The main database, where callers look for it, then the others.
std::vector<std::shared_ptr<Database>> openDatabases() {
  std::vector<std::shared_ptr<Database>> all = engine().databases();
  const auto main = std::find(all.begin(), all.end(), library().QDB().DB());
  if (main != all.end()) std::rotate(all.begin(), main, std::next(main));
  return all;
}

void refuse(const std::string& what) {
  throw Error(err::dbInvalidArgument, "Invalid argument: " + what);
}

/// What the workspace and the engine have in common.
template <typename Interface>
class EngineMembers : public Object<Interface> {
 public:
  STDMETHODIMP BeginTrans() override {
    return this->call([] {
      engine().begin();
      hasBegun = true;
    });
  }
  STDMETHODIMP CommitTrans(long) override {
    return this->call([] {
      hasBegun = false;
      engine().commit();
    });
  }
  STDMETHODIMP Rollback() override {
    return this->call([] {
      hasBegun = false;
      engine().rollback();
    });
  }
  STDMETHODIMP OpenDatabase(BSTR name, VARIANT options, VARIANT readOnly, BSTR connect,
                            ::IDatabase** database) override {
    return this->give(database, [&] {
      if (!fromBstr(connect).empty()) refuse("Connect is empty: files of this engine need none");
      if (!isMissing(options) && fromVariant(options).toBool())
        refuse("a file cannot be opened for one alone");
      const bool forReading = !isMissing(readOnly) && fromVariant(readOnly).toBool();
      const std::string path = fromBstr(name);
      if (const auto open = forReading ? nullptr : findOpenDatabase(engine(), path)) return guestObject(open);
      return databaseObject(openDatabase(engine(), path, forReading));
    });
  }
  STDMETHODIMP CreateDatabase(BSTR name, BSTR locale, long options, ::IDatabase** database) override {
    return this->give(database, [&] {
      constexpr long versions = 32 | 64;  // of older and newer files, which are one here
      if ((options & ~versions) != 0) refuse("files have neither a code nor other options");
      if (toLower(fromBstr(locale)).find("pwd=") != std::string::npos) refuse("files have no password");
      return databaseObject(createDatabase(engine(), fromBstr(name)));
    });
  }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return this->give(properties, [&] { return makeProperties(this); });
  }
};

class WorkspaceObject final : public EngineMembers<::IWorkspace>, public Shared<WorkspaceObject> {
 public:
  static constexpr const char* name = "#Default Workspace#";

  STDMETHODIMP get_Databases(::IDatabases** databases) override {
    return give(databases, [] {
      return makeCollection<::IDatabases, ::IDatabase>({
          .count = [] { return openDatabases().size(); },
          .item = [](std::size_t i) -> IDispatch* { return databaseObject(openDatabases().at(i)); },
          .find =
              [](const std::string& wanted) {
                const auto open = openDatabases();
                return findName(wanted, open.size(), [&](std::size_t i) { return open[i]->name(); });
              },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP get_Name(BSTR* text) override {
    return give(text, [] { return std::string(name); });
  }
  STDMETHODIMP get_UserName(BSTR* text) override {
    return give(text, [] { return std::string("admin"); });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [] { return std::int16_t{2}; });
  }
  STDMETHODIMP Close() override { return S_OK; }

 protected:
  /// Every object of the engine and of a database holds the workspace. When all of them are gone, and with
  /// them the program that began a transaction, nobody will end it: it must not keep others from the files.
  ~WorkspaceObject() override {
    if (!hasBegun || !engine().inTransaction()) return;
    try {
      engine().rollback();
    } catch (const Error&) {
      // What was not committed goes when the files are closed.
    }
    hasBegun = false;
  }
};

class EngineObject final : public EngineMembers<::IDBEngine> {
 public:
  STDMETHODIMP get_Workspaces(::IWorkspaces** workspaces) override {
    return give(workspaces, [] {
      return makeCollection<::IWorkspaces, ::IWorkspace>({
          .count = [] { return std::size_t{1}; },
          .item = [](std::size_t) -> IDispatch* { return workspaceObject(); },
          .find =
              [](const std::string& wanted) {
                return findName(wanted, 1, [](std::size_t) { return WorkspaceObject::name; });
              },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP get_Version(BSTR* version) override {
    return give(version, [] { return std::string("3.6"); });
  }
  STDMETHODIMP get_Errors(::IErrors** errors) override {
    return give(errors, [] { return makeErrors(engine()); });
  }
  STDMETHODIMP Idle(VARIANT) override { return S_OK; }

 private:
  Microsoft::WRL::ComPtr<::IWorkspace> workspace_{workspaceObject()};
};

}  // namespace

::IWorkspace* workspaceObject() {
  return WorkspaceObject::get();
}

IUnknown* makeDBEngine() {
  return static_cast<::IDBEngine*>(new EngineObject);
}

}  // namespace voxa::automation
