// Measures what a call through automation costs. It is compared with the direct call in C++ of the same
// method in the same process, and with a call of an object that every script host has. Runs in an empty
// folder beside a registered VOXA.dll and prints a table.

#include <windows.h>

#include <cguid.h>
#include <initguid.h>
#include <wrl/client.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "app/glob.h"
#include "app/qdb.h"
#include "comm/com.h"
#include "comm/reader.h"
#include "journal/journal.h"
#include "korva.h"
#include "messages/strings.h"
#include "platform/database/database.h"
#include "support/report.h"

namespace {

using Microsoft::WRL::ComPtr;
using voxa::bench::Row;
using Work = std::function<void()>;

void require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(std::string("not so: ") + what);
}

/// A variant that is cleared at its end.
struct Variant : VARIANT {
  Variant() : VARIANT{} {}
  explicit Variant(long number) : Variant() {
    vt = VT_I4;
    lVal = number;
  }
  explicit Variant(bool flag) : Variant() {
    vt = VT_BOOL;
    boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
  }
  explicit Variant(const wchar_t* text) : Variant() {
    vt = VT_BSTR;
    bstrVal = ::SysAllocString(text);
  }
  ~Variant() { (void)::VariantClear(this); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
};

/// A call as a script makes it: first the name is looked up, then the call is made with the last argument in
/// front.
template <std::size_t count>
void callByName(IDispatch* object, const wchar_t* name, WORD how, std::array<Variant, count>& arguments,
                Variant& result) {
  LPOLESTR names = const_cast<LPOLESTR>(name);
  DISPID id = 0;
  DISPPARAMS parameters{arguments.data(), nullptr, count, 0};
  if (FAILED(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id)) ||
      FAILED(
          object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, how, &parameters, &result, nullptr, nullptr))) {
    throw std::runtime_error("a call by name: " + std::filesystem::path(name).string());
  }
}

ComPtr<IDispatch> create(const wchar_t* name) {
  CLSID id{};
  ComPtr<IDispatch> object;
  require(SUCCEEDED(::CLSIDFromProgID(name, &id)) &&
              SUCCEEDED(::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object))),
          "an object by its name");
  return object;
}

ComPtr<IDispatch> memberOf(IDispatch* object, const wchar_t* name) {
  std::array<Variant, 0> none;
  Variant result;
  callByName(object, name, DISPATCH_PROPERTYGET, none, result);
  require(result.vt == VT_DISPATCH && result.pdispVal != nullptr, "a member that is an object");
  return result.pdispVal;
}

/// Nanoseconds of one call of each work: the median of 15 rounds, after one that does not count. In a round
/// the works take turns, each for some 20 ms.
std::vector<double> measure(const std::vector<Work>& works) {
  using Clock = std::chrono::steady_clock;
  const auto time = [](const Work& work, long calls) {
    const auto start = Clock::now();
    for (long i = 0; i < calls; ++i) work();
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() /
           static_cast<double>(calls);
  };
  std::vector<long> calls;
  for (const Work& work : works) calls.push_back(std::max(1L, static_cast<long>(20e6 / time(work, 50))));
  constexpr std::size_t rounds = 15;
  std::vector<std::vector<double>> times(works.size());
  for (std::size_t round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < works.size(); ++i) times[i].push_back(time(works[i], calls[i]));
  }
  std::vector<double> medians;
  for (std::vector<double>& all : times) {
    std::nth_element(all.begin(), all.begin() + rounds / 2, all.end());
    medians.push_back(all[rounds / 2]);
  }
  return medians;
}

/// Makes an installation with one reader, directly. The server opens a copy of it.
void makeInstallation(const voxa::Glob& glob, const std::string& folder) {
  require(glob.Strings().createDB() == 0, "the message store");
  glob.insertStrings();
  glob.Initialize(folder + "\\KRV.mdb", folder + "\\DRIVER.INI", folder + "\\COM.LOG", folder);
  require(glob.QDB().createDB() == 0 && glob.QDB().Journal().createDB() == 0, "an installation");
  glob.QDB().DB()->execute(
      "insert into Readers (Id, Name, StationId, ControllerAddress, Position) values (7, 'Door', 1, 3, 2)");
}

int run() {
  namespace fs = std::filesystem;
  const std::string folder = (fs::current_path() / "direct").string();
  const std::string served = (fs::current_path() / "served").string();
  fs::create_directory(folder);
  const voxa::Glob direct;
  makeInstallation(direct, folder);
  fs::copy(folder, served);

  const ComPtr<IDispatch> glob = create(L"KORVA.Glob");
  std::array<Variant, 4> paths{
      Variant(fs::path(served).c_str()), Variant(fs::path(served + "\\COM.LOG").c_str()),
      Variant(fs::path(served + "\\DRIVER.INI").c_str()), Variant(fs::path(served + "\\KRV.mdb").c_str())};
  Variant nothing;
  callByName(glob.Get(), L"Initialize", DISPATCH_METHOD, paths, nothing);
  const ComPtr<IDispatch> com = memberOf(glob.Get(), L"Com");
  const ComPtr<IDispatch> readers = memberOf(memberOf(glob.Get(), L"QDB").Get(), L"Readers");
  ComPtr<ICom> comByType;
  ComPtr<IReader> readersByType;
  require(SUCCEEDED(com.As(&comByType)) && SUCCEEDED(readers.As(&readersByType)), "the typed interfaces");
  const ComPtr<IDispatch> dictionary = create(L"Scripting.Dictionary");
  const ComPtr<IDispatch> files = create(L"Scripting.FileSystemObject");
  const fs::path text = fs::current_path() / "text.txt";
  std::ofstream(text) << "A line\n";

  const auto property = [](IDispatch* object, const wchar_t* name) {
    std::array<Variant, 0> none;
    Variant result;
    callByName(object, name, DISPATCH_PROPERTYGET, none, result);
  };
  const std::vector<double> read = measure({
      [&] {
        const volatile std::int16_t value = direct.Com().CheckDelay;
        (void)value;
      },
      [&] {
        short value = 0;
        require(SUCCEEDED(comByType->get_CheckDelay(&value)), "CheckDelay");
      },
      [&] { property(com.Get(), L"CheckDelay"); },
      [&] { property(dictionary.Get(), L"CompareMode"); },
  });
  const std::vector<double> method = measure({
      [&] { require(direct.QDB().Readers().getId(1, 3, 2, true) == 7, "the reader, directly"); },
      [&] {
        short id = 0;
        require(SUCCEEDED(readersByType->getId(1, 3, 2, VARIANT_TRUE, &id)) && id == 7,
                "the reader, by type");
      },
      [&] {
        std::array<Variant, 4> arguments{Variant(true), Variant(2L), Variant(3L), Variant(1L)};
        Variant id;
        callByName(readers.Get(), L"getId", DISPATCH_METHOD, arguments, id);
        require(id.vt == VT_I2 && id.iVal == 7, "the reader, by name");
      },
      [&] {
        std::array<Variant, 4> arguments{Variant(0L), Variant(false), Variant(1L), Variant(text.c_str())};
        Variant stream;
        callByName(files.Get(), L"OpenTextFile", DISPATCH_METHOD, arguments, stream);
      },
  });
  const std::vector<double> creation = measure({
      [] { const voxa::Glob object; },
      [] { (void)create(L"KORVA.Glob"); },
      [] { (void)create(L"Scripting.Dictionary"); },
  });

  constexpr double thousand = 1000;
  const auto us = [](std::string name, double ours, double rival) {
    return Row{std::move(name), "us", ours / thousand, rival / thousand};
  };
  voxa::bench::printTable(
      std::cout,
      {us("CheckDelay by type; rival: directly", read[1], read[0]),
       us("CheckDelay by name; rival: directly", read[2], read[0]),
       us("CheckDelay by name; rival: Dictionary.CompareMode by name", read[2], read[3]),
       us("Readers.getId by type; rival: directly", method[1], method[0]),
       us("Readers.getId by name; rival: directly", method[2], method[0]),
       us("Readers.getId by name; rival: FileSystemObject.OpenTextFile by name", method[2], method[3]),
       us("Glob created and released; rival: directly", creation[1], creation[0]),
       us("Glob created and released; rival: Dictionary", creation[1], creation[2])});
  return 0;
}

}  // namespace

int main() {
  if (FAILED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  int result = 1;
  try {
    result = run();
  } catch (const std::exception& failure) {
    std::cerr << "calls: " << failure.what() << '\n';
  }
  ::CoUninitialize();
  return result;
}
