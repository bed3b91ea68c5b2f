// What the 64-bit client has in another process: VOXAserver.exe.

#include "client.h"

#include <tlhelp32.h>

namespace {

int servers() {
  int count = 0;
  const HANDLE all = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32W process{};
  process.dwSize = sizeof process;
  for (BOOL more = ::Process32FirstW(all, &process); more; more = ::Process32NextW(all, &process)) {
    if (std::wstring(process.szExeFile) == L"VOXAserver.exe") ++count;
  }
  (void)::CloseHandle(all);
  return count;
}

}  // namespace

void sharedProcess(IGlob* glob) {
  // Another class, created by itself, has the same installation open.
  long items = -1;
  check(SUCCEEDED(create<IControllers>(__uuidof(Controllers))->plan(Text(L""), Text(L""), &items)) &&
            items >= 0,
        "one process for all classes");
  check(servers() == 1, "one process");
  ComPtr<ICom> com;
  (void)glob->get_Com(&com);
  check(failsWith(com->put_Chemin(Text(L"C:\\windows")), 70) &&
            failsWith(com->put_AppDB(Text(L"D:\\KRV.mdb")), 70),
        "another installation is refused");
  // By name an error comes with its words.
  ComPtr<IQDB> container;
  (void)glob->get_QDB(&container);
  Text unknown(L"Nobody");
  VARIANT name{};
  name.vt = VT_BSTR;
  name.bstrVal = unknown;
  DISPPARAMS given{&name, nullptr, 1, 0};
  EXCEPINFO exception{};
  check(container->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_METHOD, &given, nullptr, &exception, nullptr) ==
                DISP_E_EXCEPTION &&
            exception.scode == static_cast<SCODE>(0x800A0005) && exception.bstrDescription != nullptr,
        "an error by name");
}

void processEnds() {
  for (int i = 0; servers() != 0 && i < 100; ++i) ::Sleep(100);
  check(servers() == 0, "the process ends with the last object");
}
