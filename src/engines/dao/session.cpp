#include "engines/dao/session.h"

#include <windows.h>

#include "engines/dao/failures.h"

namespace voxa {

using dao::Kind;
using dao::Object;

namespace {

constexpr std::int32_t forceToDisk = 1;  // dbForceOSFlush

bool isClass(const std::string& name, CLSID& id) {
  return SUCCEEDED(::CLSIDFromProgID(std::wstring(name.begin(), name.end()).c_str(), &id));
}

/// The object of a class; nullptr when it cannot be made. It lives in this process, whose files it opens.
IDispatch* make(const CLSID& id) {
  IDispatch* out = nullptr;
  const auto create = [&] {
    return ::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(&out));
  };
  if (create() == CO_E_NOTINITIALIZED && SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
    (void)create();
  if (out == nullptr) return nullptr;
  // Others may have the system unload all libraries before the last object is let go of.
  HMODULE library = nullptr;
  (void)::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                             *reinterpret_cast<LPCWSTR*>(out), &library);
  return out;
}

}  // namespace

bool isDaoInstalled(const DaoOptions& options) {
  for (const std::string& name : options.classes) {
    if (CLSID id{}; isClass(name, id)) return true;
  }
  return false;
}

const Object& DaoSession::engine() {
  if (engine_) return engine_;
  std::string tried;
  for (const std::string& name : options.classes) {
    tried += (tried.empty() ? "" : ", ") + name;
    CLSID id{};
    IDispatch* const made = isClass(name, id) ? make(id) : nullptr;
    if (made == nullptr) continue;
    engine_ = Object(*this, Kind::engine, made);
    made->Release();
    return engine_;
  }
  throw Error(err::entryPointNotFound,
              "No data-object library of the Jet database engine is installed for 32-bit programs (tried " +
                  tried + ")");
}

const Object& DaoSession::workspace() {
  if (workspace_) return workspace_;
  Object made = engine().object(Kind::workspaces, "Workspaces").item(0);
  if (inTransaction) (void)made.call("BeginTrans");
  workspace_ = std::move(made);
  return workspace_;
}

std::shared_ptr<DaoSession> DaoSession::apart() {
  auto out = std::make_shared<DaoSession>(clock, options);
  out->engine_ = Object(*out, Kind::engine, engine().dispatch());
  const Object made = engine().object(Kind::workspace, "CreateWorkspace", "copy", "admin", "");
  out->workspace_ = Object(*out, Kind::workspace, made.dispatch());
  return out;
}

DISPID DaoSession::idOf(Kind kind, const char* member, IDispatch& object) {
  const auto [entry, isNew] = ids_.try_emplace({kind, member}, DISPID_UNKNOWN);
  if (!isNew) return entry->second;
  const std::string_view name = member;
  std::wstring wide(name.begin(), name.end());
  LPOLESTR asked = wide.data();
  DISPID id = DISPID_UNKNOWN;
  if (FAILED(object.GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id))) {
    ids_.erase(entry);
    throw Error(err::internalError, "The installed data-object library has no member " +
                                        std::string(dao::nameOf(kind)) + "." + member);
  }
  entry->second = id;
  return id;
}

void DaoSession::begin() {
  if (workspace_) (void)workspace_.call("BeginTrans");
  inTransaction = true;
}

void DaoSession::commit() {
  try {
    if (workspace_) (void)workspace_.call("CommitTrans", forceToDisk);
  } catch (const Error&) {
    abandonTransaction();
    throw;
  }
  inTransaction = false;
  closeClosed();
}

void DaoSession::rollback() {
  inTransaction = false;
  if (workspace_) (void)workspace_.call("Rollback");
  closeClosed();
}

void DaoSession::abandonTransaction() {
  try {
    rollback();
  } catch (const Error&) {
    closeClosed();
  }
}

void DaoSession::closeClosed() {
  for (const Closed& file : std::exchange(closed, {})) {
    try {
      (void)file.database.call("Close");
    } catch (const Error&) {
      // The caller let go of it long ago.
    }
  }
}

void DaoSession::failed(const Error& error) {
  Failures::failed(error);
  if (const auto* library = dynamic_cast<const dao::LibraryError*>(&error)) errors = library->entries();
}

}  // namespace voxa
