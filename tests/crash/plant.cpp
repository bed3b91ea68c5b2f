#include "crash/plant.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "crash/checks.h"
#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "site/site.h"

namespace voxa::crash {

namespace {

/// Two lines, four controllers of both types, five doors; two groups of cards. Separated by "|".
constexpr const char* commands[] = {
    "init",
    "station|add|Annex",
    "reader|add|Front|--station|Local|--address|1|--position|1",
    "reader|add|Back|--station|Local|--address|1|--position|2",
    "reader|add|Ramp|--station|Local|--address|2|--position|1",
    "reader|add|Lab|--station|Annex|--address|1|--position|1",
    "reader|add|Garage|--station|Annex|--address|5|--position|1|--type|VRMD1",
    "sim|controller|add|--station|Local|--address|1",
    "sim|controller|add|--station|Local|--address|2",
    "sim|controller|add|--station|Annex|--address|1",
    "sim|controller|add|--station|Annex|--address|5|--type|VRMD1",
    "clock",
    "daily|add|Office|--first|08:00-12:00",
    "daily|add|Early|--first|06:00-14:00",
    "weekly|add|Staff|--days|2,2,2,2,2,0,0|--holidays|0",
    "weekly|add|Shift|--days|3,3,3,3,3,3,0|--holidays|2",
    "holiday|add|Christmas|--date|25/12/2026|--each-year",
    "holiday|add|Strike|--date|03/05/2027",
    "group|add|Staff",
    "group|add|Cars",
    "group|grant|Staff|Front|--program|Staff",
    "group|grant|Staff|Back|--program|Staff",
    "group|grant|Staff|Lab|--program|Always",
    "group|grant|Staff|Garage|--program|Shift",
    "group|grant|Cars|Garage|--program|Always",
    "group|grant|Cars|Ramp|--program|Shift",
    "card|batch|--first-number|1|--first-code|10001|--count|60|--group|Staff",
    "card|batch|--first-number|101|--first-code|10101|--count|30|--group|Cars",
    "download|all|--full",
};

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, '|');) parts.push_back(part);
  return parts;
}

void replaceContents(const fs::path& folder, const fs::path& with) {
  fs::create_directories(folder);
  for (const auto& entry : fs::directory_iterator(folder)) fs::remove_all(entry.path());
  fs::copy(with, folder, fs::copy_options::recursive);
}

}  // namespace

std::string bytesOf(const fs::path& file) {
  std::ostringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

Plant::Plant(fs::path program, fs::path scratch, std::uint64_t seed)
    : random(seed),
      folder(scratch / "plant"),
      site(scratch / "controllers"),
      program_(std::move(program)),
      scratch_(std::move(scratch)) {
  ::setenv("TLXP_SITE", site.c_str(), 1);
  build();
}

void Plant::build() const {
  for (const char* command : commands) {
    const Ended ended = run([&] { return become(split(command)); }, {});
    if (ended.crashed || ended.status != 0) {
      throw std::runtime_error(std::string(command) + ": " + ended.said);
    }
  }
  fs::copy(folder, scratch_ / "plant.built", fs::copy_options::recursive);
  fs::copy(site, scratch_ / "controllers.built", fs::copy_options::recursive);
}

void Plant::renew() {
  replaceContents(folder, scratch_ / "plant.built");
  replaceContents(site, scratch_ / "controllers.built");
  recorded.clear();
}

void Plant::remember() {
  journalBefore = journalRows(folder);
  const auto held = onControllers(site);
  onControllersBefore = {held.begin(), held.end()};
  mainBefore = bytesOf(folder / "KRV.mdb");
}

void Plant::clearFaults() const {
  site::Site controllers(site);
  for (const auto& info : controllers.list()) controllers.clearFaults(info.station, info.address);
}

void Plant::change(const std::vector<std::string>& statements) const {
  SystemClock clock;
  const auto engine = makeSqliteEngine(clock);
  const auto database = engine->open((folder / "KRV.mdb").string());
  Transaction transaction(*engine);
  for (const std::string& statement : statements) database->execute(statement);
  transaction.commit();
}

int Plant::become(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), {program_.string(), "--dir", folder.string()});
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  ::execv(program_.c_str(), pointers.data());
  throw std::runtime_error("cannot run " + program_.string());
}

Ended Plant::run(const std::function<int()>& work, const Fate& fate) const {
  return crash::run(work, fate, scratch_ / "said");
}

}  // namespace voxa::crash
