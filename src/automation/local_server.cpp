#include "local_server.h"

#include <windows.h>

#include <filesystem>
#include <system_error>
#include <vector>

#include "app/library.h"
#include "classes.h"
#include "messages/strings.h"
#include "module.h"
#include "platform/error.h"
#include "platform/text.h"
#include "service_objects.h"

namespace voxa::automation {

namespace {

bool servesOthers = false;

constexpr DWORD lookEvery = 500;         // ms
constexpr DWORD firstCallerIn = 60'000;  // ms until somebody has an object; then nobody will
constexpr DWORD nobodyFor =
    2'000;  // ms without an object, so that a caller who makes one after another stays

/// The classes as the system finds them for callers of other processes.
class OfferedClasses {
 public:
  OfferedClasses() {
    for (const CreatableClass& made : creatableClasses()) {
      DWORD cookie = 0;
      IClassFactory* const factory = newClassFactory(made);
      const HRESULT result = ::CoRegisterClassObject(*made.id, factory, CLSCTX_LOCAL_SERVER,
                                                     REGCLS_MULTIPLEUSE | REGCLS_SUSPENDED, &cookie);
      factory->Release();
      if (SUCCEEDED(result)) cookies_.push_back(cookie);
    }
    own_ = moduleUses();
    (void)::CoResumeClassObjects();
  }
  ~OfferedClasses() {
    for (const DWORD cookie : cookies_) (void)::CoRevokeClassObject(cookie);
  }
  OfferedClasses(const OfferedClasses&) = delete;
  OfferedClasses& operator=(const OfferedClasses&) = delete;

  /// Whether somebody has an object, or keeps the process by a class factory's lock.
  [[nodiscard]] bool areUsed() const { return moduleUses() > own_; }

 private:
  std::vector<DWORD> cookies_;
  long own_ = 0;  // uses by the factories themselves
};

/// Calls of other processes arrive as messages.
void takeMessages() {
  for (MSG message; ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;) {
    (void)::TranslateMessage(&message);
    (void)::DispatchMessageW(&message);
  }
}

void serve() {
  servesOthers = true;
  const OfferedClasses classes;
  ULONGLONG endsAt = ::GetTickCount64() + firstCallerIn;
  for (bool wasUsed = false;;) {
    (void)::MsgWaitForMultipleObjects(0, nullptr, FALSE, lookEvery, QS_ALLINPUT);
    takeMessages();
    if (classes.areUsed()) {
      wasUsed = true;
      continue;
    }
    if (wasUsed) endsAt = ::GetTickCount64() + nobodyFor;
    wasUsed = false;
    if (::GetTickCount64() < endsAt) continue;
    // Who comes from now on gets a new process. Who came a moment ago is still served.
    (void)::CoSuspendClassObjects();
    takeMessages();
    if (!classes.areUsed()) return;
    (void)::CoResumeClassObjects();
  }
}

void requireFree(const std::string& path, const std::string& wanted) {
  if (!servesOthers || path.empty() || equalNoCase(path, wanted)) return;
  throw Error(err::permissionDenied, "The server works with " + path +
                                         " for this or another program, and takes " + wanted +
                                         " only when all programs have let go of their objects");
}

}  // namespace

void setPath(std::string& path, const std::string& wanted) {
  requireFree(path, wanted);
  path = wanted;
}

void setWorkingFolder(std::string& folder, const std::string& wanted) {
  requireFree(folder, wanted);
  if (servesOthers && !wanted.empty()) {
    std::error_code failure;
    std::filesystem::current_path(std::u8string(wanted.begin(), wanted.end()), failure);
    if (failure) throw Error(err::pathNotFound, "There is no folder " + wanted);
    library().Strings().openWhenClosed();
  }
  folder = wanted;
}

}  // namespace voxa::automation

/// What VOXAserver.exe does; ends when nobody has an object any more. The thread has an apartment of its own.
extern "C" void WINAPI ServeOtherProcesses() {
  voxa::automation::serve();
}
