// Objects that several threads create and use, each in an apartment of its own.

#include "client.h"

namespace {

DWORD WINAPI useObjects(void* kind) {
  if (FAILED(::CoInitializeEx(nullptr, *static_cast<DWORD*>(kind)))) return 1;
  for (int i = 0; i < 50; ++i) {
    const ComPtr<IGlob> glob = create<IGlob>(__uuidof(Glob));
    ComPtr<IClientSecurity> proxy;
    ComPtr<IQDB> container;
    ComPtr<IStation> stations;
    ComPtr<ITable> table;
    ComPtr<ITableDef> draft;
    ComPtr<IFields> fields;
    VARIANT_BOOL active = VARIANT_FALSE;
    short id = 0;
    long count = 0;
    Text name;
    VARIANT text{};
    VARIANT result{};
    DECIMAL found{};
    check(SUCCEEDED(glob.As(&proxy)), "an object of the main apartment");
    check(SUCCEEDED(glob->get_QDB(&container)) && SUCCEEDED(container->get_Stations(&stations)) &&
              SUCCEEDED(stations->getName(1, VARIANT_FALSE, name.out())) &&
              SUCCEEDED(stations->getId(name, &active, &id)) && id == 1 && active == VARIANT_TRUE,
          "results by reference");
    text.vt = VT_BSTR;
    text.bstrVal = name;
    check(SUCCEEDED(callByName(stations.Get(), {L"getId"}, {text, variantOf(VT_DECIMAL, &found)}, &result)) &&
              result.iVal == 1 && found.Lo32 == 1,
          "and by name");
    check(SUCCEEDED(container->tables(Text(L"Holidays"), &table)) &&
              SUCCEEDED(databaseOf(glob.Get())->CreateTableDef(Text(L"Draft"), &draft)) &&
              SUCCEEDED(table->createFields(draft.Get())) && SUCCEEDED(draft->get_Fields(&fields)) &&
              SUCCEEDED(fields->get_Count(&count)) && count > 0,
          "an object that is handed back");
    ComPtr<IDispatch> tableByName;
    check(SUCCEEDED(table.As(&tableByName)) &&
              SUCCEEDED(callByName(tableByName.Get(), {L"getDB"}, {}, &result)) && result.vt == VT_DISPATCH,
          "a table's members by name");
    (void)::VariantClear(&result);
    check(container->tables(Text(L"BadgeFormat"), &table) == static_cast<HRESULT>(0x800A0005), "an error");
  }
  ::CoUninitialize();
  return 0;
}

}  // namespace

void otherApartments() {
  DWORD kinds[2] = {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED};
  HANDLE threads[2] = {};
  for (int i = 0; i < 2; ++i) threads[i] = ::CreateThread(nullptr, 0, useObjects, &kinds[i], 0, nullptr);
  // The calls arrive as messages of this thread.
  while (::WaitForMultipleObjects(2, threads, TRUE, 0) == WAIT_TIMEOUT) {
    (void)::MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    for (MSG message; ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) (void)::DispatchMessageW(&message);
  }
  for (HANDLE thread : threads) {
    DWORD code = 1;
    check(::GetExitCodeThread(thread, &code) && code == 0, "a thread in an apartment of its own");
    (void)::CloseHandle(thread);
  }
}
