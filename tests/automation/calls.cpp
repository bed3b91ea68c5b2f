// Calls by name: numbers and types of arguments, what is left out, results by reference.

#include <algorithm>

#include "client.h"

VARIANT variantOf(VARTYPE type, void* place) {
  VARIANT out{};
  out.vt = static_cast<VARTYPE>(type | VT_BYREF);
  out.byref = place;
  return out;
}

VARIANT variantOf(short number) {
  VARIANT out{};
  out.vt = VT_I2;
  out.iVal = number;
  return out;
}

HRESULT callByName(IDispatch* object, std::vector<const wchar_t*> names, std::vector<VARIANT> arguments,
                   VARIANT* result) {
  std::vector<DISPID> ids(names.size());
  const auto count = static_cast<UINT>(names.size());
  check(SUCCEEDED(object->GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(names.data()), count,
                                        LOCALE_USER_DEFAULT, ids.data())),
        "a member by name");
  std::reverse(ids.begin() + 1, ids.end());
  std::reverse(arguments.begin(), arguments.end());
  DISPPARAMS given{arguments.data(), ids.data() + 1, static_cast<UINT>(arguments.size()), count - 1};
  return object->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &given,
                        result, nullptr, nullptr);
}

namespace {

void refusedArguments(ICom* com) {
  const VARIANT one = variantOf(1);
  const auto testSend = [&](const std::vector<VARIANT>& arguments) {
    return callByName(com, {L"TestSend"}, arguments);
  };
  check(testSend({one}) == DISP_E_BADPARAMCOUNT, "too few arguments");
  check(testSend({one, one, one}) == DISP_E_BADPARAMCOUNT, "too many arguments");
  check(callByName(com, {L"TestSend", L"StationID", L"StationID"}, {one, one}) == DISP_E_PARAMNOTFOUND,
        "one name twice");
  SAFEARRAY* const array = ::SafeArrayCreateVector(VT_I2, 0, 2);
  VARIANT list{};
  list.vt = VT_ARRAY | VT_I2;
  list.parray = array;
  check(testSend({one, list}) == DISP_E_TYPEMISMATCH, "an array");
  (void)::SafeArrayDestroy(array);
  long wide = 2'000'000'000;
  check(testSend({one, variantOf(VT_I4, &wide)}) == DISP_E_OVERFLOW, "a number out of range");
  check(testSend({one, variantOf(VT_I4, nullptr)}) == E_INVALIDARG, "a reference to nothing");
  check(callByName(com, {L"Send"}, {one, variantOf(7), one, variantOf(VT_DISPATCH, &wide)}) ==
            DISP_E_TYPEMISMATCH,
        "a variable for objects");
  Text errors;
  check(SUCCEEDED(com->popErrorList(errors.out())) && errors.value().empty(), "refused before it runs");
  check(com->Invoke(9999, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr) == E_INVALIDARG,
        "no arguments at all");
}

/// A station that is not there is told of, unless Autodetection is True.
void optionalArguments(ICom* com) {
  VARIANT none{};
  none.vt = VT_ERROR;
  none.scode = DISP_E_PARAMNOTFOUND;
  const VARIANT yes = variantOf(-1);
  short status = 0;
  check(outOfProcess || (SUCCEEDED(com->Send(CmSendDate, 7, 1, nullptr, nullptr, &status)) && status == -1),
        "no places for optional results");
  const struct {
    std::vector<const wchar_t*> names;
    std::vector<VARIANT> arguments;
    bool told;
  } calls[] = {{{L"Send"}, {}, true},
               {{L"Send"}, {none, none}, true},
               {{L"Send"}, {none, yes}, false},
               {{L"Send", L"Autodetection"}, {yes}, false},
               {{L"Send", L"Autodetection", L"Silence"}, {none, none}, true}};
  for (const auto& call : calls) {
    std::vector<VARIANT> arguments = {variantOf(1), variantOf(7), variantOf(1)};
    arguments.insert(arguments.end(), call.arguments.begin(), call.arguments.end());
    VARIANT result{};
    check(SUCCEEDED(callByName(com, call.names, arguments, &result)) && (result.iVal == -1) == call.told,
          "optional arguments that are left out");
  }
  (void)com->put_errorList(Text(L""));
}

/// By position and by name, of any type that holds the result.
void variablesByReference(IReader* readers) {
  for (const VARENUM type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT, VT_I8, VT_UI8,
                             VT_R4, VT_R8, VT_CY, VT_DATE, VT_DECIMAL, VT_BSTR, VT_VARIANT}) {
    DECIMAL places[2] = {};  // no type is larger
    if (type == VT_BSTR) {
      for (DECIMAL& place : places) *reinterpret_cast<BSTR*>(&place) = ::SysAllocString(L"0");
    }
    VARIANT station = variantOf(static_cast<VARTYPE>(type), &places[0]);
    VARIANT address = variantOf(static_cast<VARTYPE>(type), &places[1]);
    const HRESULT outcome =
        callByName(readers, {L"getControllerAddrID", L"ControllerAddr"}, {variantOf(3), station, address});
    const bool found = SUCCEEDED(::VariantChangeType(&station, &station, 0, VT_I4)) && station.lVal == 2 &&
                       SUCCEEDED(::VariantChangeType(&address, &address, 0, VT_I4)) && address.lVal == 5;
    if (outcome == S_OK && found) continue;
    std::printf("FAILED: variables of type %d: %08lx\n", type, outcome);
    ++failures;
  }
}

}  // namespace

void callsByName(IGlob* glob) {
  ComPtr<ICom> com;
  ComPtr<IQDB> container;
  ComPtr<IReader> readers;
  (void)glob->get_Com(&com);
  (void)glob->get_QDB(&container);
  (void)container->get_Readers(&readers);
  VARIANT none{};
  for (const wchar_t* sql :
       {L"insert into Stations (Id, Name) values (2, 'Far')",
        L"insert into Readers (Id, Name, StationId, ControllerAddress) values (3, 'A', 2, 5)"}) {
    check(SUCCEEDED(databaseOf(glob)->Execute(Text(sql), none)), "a reader");
  }
  if (!outOfProcess)
    refusedArguments(com.Get());  // the way to another process refuses them in its own manner
  optionalArguments(com.Get());
  variablesByReference(readers.Get());
  const ComPtr<ISeqFile> file = create<ISeqFile>(__uuidof(SeqFile));
  float read = 0;
  VARIANT item = variantOf(VT_R4, &read);
  check(SUCCEEDED(file->put_Name(Text(L"item.txt"))) && SUCCEEDED(file->fopen(Text(L"w"))) &&
            SUCCEEDED(file->fprint(Text(L"2.5"))) && SUCCEEDED(file->fopen(Text(L"r"))) &&
            SUCCEEDED(file->finput(&item)) && read == 2.5F,
        "an item into a variable with a type");
}
