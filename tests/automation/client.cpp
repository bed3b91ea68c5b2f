// An early-bound client, built from the header of the interfaces alone. Runs in an empty folder beside
// VOXA.dll, which is registered. "client.exe rows N" inserts rows N to N + 99 into its installation.

#include <windows.h>

#include <initguid.h>
#include <psapi.h>

#include <cstdint>

#include "client.h"

namespace {

std::wstring folder() {
  wchar_t path[MAX_PATH] = {};
  (void)::GetCurrentDirectoryW(MAX_PATH, path);
  return path;
}

ComPtr<IGlob> openInstallation() {
  ComPtr<IGlob> glob = create<IGlob>(__uuidof(Glob));
  Text database((folder() + L"\\KRV.mdb").c_str());
  Text ini((folder() + L"\\DRIVER.INI").c_str());
  Text log((folder() + L"\\COM.LOG").c_str());
  Text path(folder().c_str());
  BSTR arguments[] = {database, ini, log, path};
  check(SUCCEEDED(glob->Initialize(&arguments[0], &arguments[1], &arguments[2], &arguments[3])),
        "Initialize");
  return glob;
}

int insertRows(int first) {
  const ComPtr<IGlob> glob = openInstallation();
  const ComPtr<IDatabase> database = databaseOf(glob.Get());
  VARIANT none{};
  for (int i = first; i < first + 100; ++i) {
    const Text sql(
        (L"insert into ComStatus (StationID, CtrAddr, Status) values (" + std::to_wstring(i) + L", 1, 1)")
            .c_str());
    check(SUCCEEDED(database->Execute(sql, none)), "insert beside another process");
  }
  return failures;
}

void widthsAndResults(IGlob* glob) {
  ComPtr<IQDB> container;
  ComPtr<IStation> stations;
  check(SUCCEEDED(glob->get_QDB(&container)) && SUCCEEDED(container->get_Stations(&stations)),
        "QDB.Stations");
  short id = 0;
  Text name;
  check(SUCCEEDED(stations->getName(1, VARIANT_FALSE, name.out())) && !name.value().empty(), "getName");
  VARIANT_BOOL active = VARIANT_FALSE;
  check(SUCCEEDED(stations->getId(name, &active, &id)) && id == 1 && active == VARIANT_TRUE, "getId");
  // What goes to another process needs a place.
  if (!outOfProcess) {
    check(SUCCEEDED(stations->getId(name, nullptr, &id)) && id == 1, "getId without a result by reference");
    check(stations->getId(name, nullptr, nullptr) == E_POINTER, "a result that goes nowhere");
  }
  ComPtr<ITable> table;
  const Text wanted(L"STATIONS");
  check(SUCCEEDED(container->tables(wanted, &table)), "tables");
  ComPtr<IUnknown> one;
  ComPtr<IUnknown> other;
  check(SUCCEEDED(table.As(&one)) && SUCCEEDED(stations.As(&other)) && one == other,
        "two faces of one object");
  const Text unknown(L"BadgeFormat");
  check(failsWith(container->tables(unknown, &table), 5), "tables of an unregistered name");
  ComPtr<ISupportErrorInfo> support;
  check(SUCCEEDED(container.As(&support)) && support->InterfaceSupportsErrorInfo(__uuidof(IQDB)) == S_OK,
        "error information");
}

void textsBeyondTheCodePage(IGlob* glob) {
  ComPtr<ICom> com;
  check(SUCCEEDED(glob->get_Com(&com)), "Com");
  const Text odd(L"\x0436\x20AC\xD83D\xDE00");
  Text back;
  check(SUCCEEDED(com->put_errorList(odd)) && SUCCEEDED(com->get_errorList(back.out())) &&
            back.value() == odd.operator BSTR(),
        "any character in a property");
  check(failsWith(com->put_errorList(Text(L"half \xD800")), 5), "half a character");
  const BSTR zero = ::SysAllocStringLen(L"a\0b", 3);
  check(failsWith(com->put_errorList(zero), 5), "the character 0");
  ::SysFreeString(zero);
  (void)com->put_errorList(Text(L""));

  const ComPtr<IDatabase> database = databaseOf(glob);
  VARIANT none{};
  check(SUCCEEDED(database->Execute(Text(L"update Stations set Phone = '\x0436'"), none)),
        "the database keeps it");
  check(SUCCEEDED(database->Execute(Text(L"update Stations set Phone = ''"), none)), "back");
  const ComPtr<ISeqFile> file = create<ISeqFile>(__uuidof(SeqFile));
  check(SUCCEEDED(file->put_Name(Text(L"text.txt"))) && SUCCEEDED(file->fopen(Text(L"w"))), "a file");
  check(failsWith(file->fprint(Text(L"\x0436")), 5), "a file refuses what it cannot hold");
  check(SUCCEEDED(file->fprint(Text(L"\x20AC"))) && SUCCEEDED(file->fclose()), "and takes what it can");

  ComPtr<IQDB> container;
  ComPtr<ICardholder> cards;
  (void)glob->get_QDB(&container);
  (void)container->get_Cardholders(&cards);
  short status = 0;
  check(SUCCEEDED(cards->createGroup(1, Text(L"0000\x0661"), 1, 0, VARIANT_FALSE, &status)) && status != 0,
        "a digit of another script is no card code");
}

/// The names as the type library publishes them: in their exact case.
void namesOfTheLibrary() {
  ComPtr<ITypeLib> library;
  check(SUCCEEDED(::LoadRegTypeLib(LIBID_KORVA, 1, 0, LOCALE_NEUTRAL, &library)),
        "the registered type library");
  const auto memberIs = [&](REFIID id, const wchar_t* name) {
    ComPtr<ITypeInfo> info;
    LPOLESTR wanted = const_cast<LPOLESTR>(name);
    MEMBERID member = MEMBERID_NIL;
    Text published;
    Text help;
    const bool found =
        SUCCEEDED(library->GetTypeInfoOfGuid(id, &info)) &&
        SUCCEEDED(info->GetIDsOfNames(&wanted, 1, &member)) &&
        SUCCEEDED(info->GetDocumentation(member, published.out(), help.out(), nullptr, nullptr));
    if (!found || published.value() != name || help.value().empty()) {
      std::printf("FAILED: published as '%ls' for '%ls'\n", published.value().c_str(), name);
      ++failures;
    }
  };
  for (const wchar_t* name : {L"sendBrodcast", L"ResetRSOUT", L"Chemin", L"logFileName", L"errorList"}) {
    memberIs(__uuidof(ICom), name);
  }
  for (const wchar_t* name : {L"delete", L"createGroup", L"Name", L"getNameByCardNum"})
    memberIs(__uuidof(ICardholder), name);
  for (const wchar_t* name : {L"fEOF", L"ch", L"finput"}) memberIs(__uuidof(ISeqFile), name);
  for (const wchar_t* name : {L"GetCompar", L"SendSpeed", L"isActive"}) memberIs(__uuidof(IStation), name);
  for (const wchar_t* name : {L"DB", L"tables", L"createDB"}) memberIs(__uuidof(IQDB), name);
  for (const wchar_t* name : {L"itemThing", L"mayOpen"}) memberIs(__uuidof(IControllers), name);
}

/// What the process uses: memory, and handles, by the value of a new one: the lowest that is free.
struct Use {
  std::uintptr_t handle = 0;
  SIZE_T bytes = 0;
};

Use measure() {
  Use use;
  PROCESS_MEMORY_COUNTERS memory{};
  (void)::GetProcessMemoryInfo(::GetCurrentProcess(), &memory, sizeof memory);
  use.bytes = memory.PagefileUsage;
  HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  use.handle = reinterpret_cast<std::uintptr_t>(event);
  (void)::CloseHandle(event);
  return use;
}

/// 10,000 objects come and go, with all that hangs on them, in an order that no caller should have to know.
void cycles() {
  const auto once = [] {
    ComPtr<IGlob> glob = create<IGlob>(__uuidof(Glob));
    ComPtr<IQDB> container;
    ComPtr<ITable> table;
    ComPtr<ISeqFile> file = create<ISeqFile>(__uuidof(SeqFile));
    (void)glob->get_QDB(&container);
    glob.Reset();
    (void)container->tables(Text(L"Readers"), &table);
    container.Reset();
    Text name;
    check(SUCCEEDED(table->get_Name(name.out())) && name.value() == L"Readers",
          "an object whose makers are gone");
  };
  for (int i = 0; i < 1000; ++i) once();
  const Use before = measure();
  for (int i = 0; i < 10'000; ++i) once();
  const Use after = measure();
  check(after.handle <= before.handle + 8, "handles stay in use");
  check(after.bytes <= before.bytes + 256 * 1024, "memory stays in use");
  std::printf("handle %zu, then %zu; bytes %zu, then %zu\n", static_cast<std::size_t>(before.handle),
              static_cast<std::size_t>(after.handle), static_cast<std::size_t>(before.bytes),
              static_cast<std::size_t>(after.bytes));
}

void twoProcesses(IGlob* glob) {
  PROCESS_INFORMATION children[2] = {};
  for (int i = 0; i < 2; ++i) {
    std::wstring command =
        (outOfProcess ? L"client64.exe rows " : L"client.exe rows ") + std::to_wstring(100 + 100 * i);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    check(::CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                           &children[i]) != 0,
          "a second process");
  }
  for (const PROCESS_INFORMATION& child : children) {
    DWORD code = 1;
    (void)::WaitForSingleObject(child.hProcess, 120'000);
    check(::GetExitCodeProcess(child.hProcess, &code) != 0 && code == 0, "a process beside this one");
    (void)::CloseHandle(child.hProcess);
    (void)::CloseHandle(child.hThread);
  }
  ComPtr<IRecordset> rows;
  long count = 0;
  VARIANT none{};
  check(SUCCEEDED(databaseOf(glob)->OpenRecordset(Text(L"select * from ComStatus where StationID >= 100"),
                                                  none, none, &rows)) &&
            SUCCEEDED(rows->get_RecordCount(&count)) && count == 200,
        "the rows of both processes");
}

void newInstallation() {
  const ComPtr<IGlob> glob = openInstallation();
  ComPtr<IStrings> strings;
  ComPtr<IQDB> container;
  ComPtr<IJournal> journal;
  short status = -1;
  check(SUCCEEDED(glob->get_Strings(&strings)) && SUCCEEDED(strings->createDB(&status)) && status == 0,
        "the store");
  check(SUCCEEDED(glob->insertStrings()), "insertStrings");
  check(SUCCEEDED(glob->get_QDB(&container)) && SUCCEEDED(container->createDB(&status)) && status == 0,
        "createDB");
  check(SUCCEEDED(container->get_Journal(&journal)) && SUCCEEDED(journal->createDB(&status)) && status == 0,
        "journal");
}

/// What a caller sees of the objects wherever they live.
void parts(IGlob* glob) {
  widthsAndResults(glob);
  textsBeyondTheCodePage(glob);
  callsByName(glob);
  classesAndTables(glob);
  namesOfTheLibrary();
  twoProcesses(glob);
}

int runOutOfProcess() {
  {
    const ComPtr<IGlob> glob = openInstallation();
    newInstallation();
    parts(glob.Get());
    sharedProcess(glob.Get());
  }
  processEnds();
  return failures;
}

int run() {
  newInstallation();
  {
    const ComPtr<IGlob> glob = openInstallation();
    parts(glob.Get());
    ComPtr<IUnknown> outer;
    check(::CoCreateInstance(__uuidof(Glob), glob.Get(), CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&outer)) ==
              CLASS_E_NOAGGREGATION,
          "aggregation");
    check(FAILED(::CoCreateInstance(__uuidof(AccGroupReader), nullptr, CLSCTX_INPROC_SERVER,
                                    IID_PPV_ARGS(&outer))),
          "a class that is not created from outside");
  }
  cycles();
  ::CoFreeUnusedLibrariesEx(0, 0);
  check(::GetModuleHandleW(L"VOXA.dll") == nullptr, "the library is unloaded when nobody uses it");
  // The last, since Wine keeps the class factories that it hands to other apartments.
  const ComPtr<IGlob> glob = openInstallation();
  otherApartments();
  return failures;
}

}  // namespace

int main(int count, char** arguments) {
  if (FAILED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 100;
  const int result = count == 3     ? insertRows(std::atoi(arguments[2]))
                     : outOfProcess ? runOutOfProcess()
                                    : run();
  ::CoUninitialize();
  if (count == 1 && result == 0) std::printf("passed\n");
  return result;
}
