// What programmers' tools ask an object: its class, and a table's members by name.

#include "client.h"

namespace {

/// The class that the object names.
std::wstring classOf(IUnknown* object) {
  ComPtr<IProvideClassInfo> provider;
  ComPtr<ITypeInfo> type;
  Text name;
  if (object == nullptr || FAILED(object->QueryInterface(IID_PPV_ARGS(&provider))) ||
      FAILED(provider->GetClassInfo(&type)) ||
      FAILED(type->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr))) {
    return L"nothing";
  }
  return name.value();
}

void isClass(IUnknown* object, const wchar_t* name) {
  const std::wstring got = classOf(object);
  if (got == name) return;
  std::printf("FAILED: the class is %ls instead of %ls\n", got.c_str(), name);
  ++failures;
}

/// An object that a member hands out, by name.
ComPtr<IDispatch> objectOf(IDispatch* object, const wchar_t* member, const wchar_t* argument = nullptr) {
  VARIANT result{};
  Text text(argument);
  std::vector<VARIANT> arguments;
  if (argument != nullptr) {
    VARIANT given{};
    given.vt = VT_BSTR;
    given.bstrVal = text;
    arguments.push_back(given);
  }
  ComPtr<IDispatch> out;
  const HRESULT outcome = callByName(object, {member}, arguments, &result);
  check(SUCCEEDED(outcome) && result.vt == VT_DISPATCH && result.pdispVal != nullptr, "an object by name");
  if (result.vt == VT_DISPATCH) out = result.pdispVal;
  (void)::VariantClear(&result);
  return out;
}

}  // namespace

void classesAndTables(IGlob* glob) {
  ComPtr<IQDB> container;
  ComPtr<ITable> readers;
  ComPtr<IDispatch> byName;
  (void)glob->get_QDB(&container);
  (void)container->tables(Text(L"Readers"), &readers);
  check(SUCCEEDED(readers.As(&byName)), "the face for callers by name");
  // Its own members and those of ITable, as one asks for them who has this face alone.
  VARIANT free{};
  check(SUCCEEDED(callByName(byName.Get(), {L"getFreeId"}, {}, &free)) && free.vt == VT_I2,
        "a member of its own");
  const ComPtr<IDispatch> database = objectOf(byName.Get(), L"getDB");
  const ComPtr<IDispatch> draft = objectOf(database.Get(), L"CreateTableDef", L"Draft");
  const ComPtr<IDispatch> table = objectOf(container.Get(), L"tables", L"holidays");
  VARIANT given{};
  given.vt = VT_DISPATCH;
  given.pdispVal = draft.Get();
  check(SUCCEEDED(callByName(table.Get(), {L"createFields"}, {given})) &&
            SUCCEEDED(callByName(table.Get(), {L"setTableFlagsD"}, {variantOf(-1)})),
        "members of ITable");
  if (outOfProcess) return;  // Wine carries no questions for a class from one process to another
  isClass(glob, L"Glob");
  isClass(readers.Get(), L"Reader");
  isClass(table.Get(), L"Holidays");
  isClass(database.Get(), L"Database");
  isClass(draft.Get(), L"TableDef");
  const ComPtr<IDispatch> rows = objectOf(database.Get(), L"OpenRecordset", L"Readers");
  isClass(rows.Get(), L"Recordset");
  isClass(objectOf(rows.Get(), L"Fields", L"Name").Get(), L"Field");
}
