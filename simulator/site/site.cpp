#include "site/site.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "site/controllers.h"
#include "site/holdings.h"
#include "site/memory.h"
#include "site/storage.h"
#include "site/swipe.h"

namespace site {

namespace {

constexpr std::array<int, 4> speeds = {4800, 9600, 19200, 38400};
constexpr int largestMemory = 1000000;

void require(bool condition, const std::string& sentence) {
  if (!condition) throw Failure(sentence);
}

void requireSpeed(int speed) {
  require(std::find(speeds.begin(), speeds.end(), speed) != speeds.end(),
          "A line speed is 4800, 9600, 19200 or 38400 bit/s, not " + std::to_string(speed) + ".");
}

std::string nameOf(int station, int address) {
  return "controller " + std::to_string(address) + " of station " + std::to_string(station);
}

Controller named(Storage& storage, int station, int address) {
  auto found = findController(storage, station, address);
  require(found.has_value(), "The site has no " + nameOf(station, address) + ".");
  return *found;
}

// Changes one controller in a transaction of its own.
template <typename Change>
void change(SiteFile& file, int station, int address, Change apply) {
  Storage& storage = file.get();
  Transaction transaction(storage);
  Controller controller = named(storage, station, address);
  apply(storage, controller);
  transaction.commit();
}

void eraseContents(Storage& storage, const Controller& controller) {
  eraseHoldings(storage, controller.id);
  storage.run("delete from received where controller = ?", controller.id);
  storage.run("delete from records where controller = ?", controller.id);
}

}  // namespace

std::filesystem::path defaultFolder() {
  const char* folder = std::getenv("TLXP_SITE");
  return std::filesystem::absolute(folder != nullptr && *folder != '\0' ? folder : "site");
}

Site::Site(std::filesystem::path folder) : file_(std::move(folder)) {}

void Site::addController(const ControllerInfo& info) {
  require(info.station >= 1 && info.station <= 999, "A station is 1 to 999.");
  require(info.address >= 1 && info.address <= 16, "A controller address is 1 to 16.");
  require(!info.type.empty(), "A controller needs a type, for example QSX3 or VRMD1.");
  requireSpeed(info.speed);
  require(info.memoryCapacity >= 1 && info.memoryCapacity <= largestMemory,
          "A transaction memory has 1 to " + std::to_string(largestMemory) + " records.");
  Storage& storage = file_.create();
  Transaction transaction(storage);
  require(!findController(storage, info.station, info.address),
          "The site already has " + nameOf(info.station, info.address) + ".");
  storage.run("insert into controllers (station, address, type, speed, capacity) values (?, ?, ?, ?, ?)",
              info.station, info.address, info.type, info.speed, info.memoryCapacity);
  transaction.commit();
}

void Site::removeController(int station, int address) {
  change(file_, station, address, [](Storage& storage, const Controller& controller) {
    eraseContents(storage, controller);
    storage.run("delete from controllers where id = ?", controller.id);
  });
}

void Site::replace(int station, int address) {
  change(file_, station, address, [](Storage& storage, Controller& controller) {
    eraseContents(storage, controller);
    controller.ring = {};
    storeRing(storage, controller);
    storeClock(storage, controller, std::nullopt);
  });
}

std::vector<ControllerInfo> Site::list() {
  std::vector<ControllerInfo> infos;
  for (Controller& controller : controllersOf(file_.get(), 0)) infos.push_back(std::move(controller.info));
  return infos;
}

Snapshot Site::snapshot(int station, int address) {
  Snapshot snapshot;
  change(file_, station, address, [&](Storage& storage, const Controller& controller) {
    snapshot.info = controller.info;
    snapshot.clockOffset = controller.clockOffset;
    storage.each(
        "select at, line, reason from received where controller = ? order by id",
        [&](const Row& row) {
          snapshot.received.push_back({fromSeconds(row.integer(0)), row.text(1), row.text(2)});
        },
        controller.id);
    readHoldings(storage, controller.id, snapshot);
    snapshot.memory = memoryOf(storage, controller);
    snapshot.faults = controller.faults;
  });
  return snapshot;
}

void Site::setSpeed(int station, int address, int speed) {
  requireSpeed(speed);
  change(file_, station, address,
         [&](Storage& storage, Controller& controller) { storeSpeed(storage, controller, speed); });
}

void Site::setClock(int station, int address, std::optional<std::int64_t> offset) {
  change(file_, station, address,
         [&](Storage& storage, Controller& controller) { storeClock(storage, controller, offset); });
}

void Site::setFaults(int station, int address, const Faults& faults) {
  require(faults.goodCalls.value_or(0) >= 0, "The number of good calls is not negative.");
  require(faults.cutAfter.value_or(0) >= 0, "The number of records before the cut is not negative.");
  require(faults.stopBehind.value_or(0) >= 0, "The number of lines before the break is not negative.");
  require(!faults.loseAnswer || !faults.stopBehind,
          "A controller loses its answers or stops behind a line: set one of the two.");
  require(!faults.times || faults.loseAnswer || faults.stopBehind,
          "A number of times goes with a lost answer or a stop behind a line.");
  require(faults.times.value_or(1) >= 1, "A fault happens at least once.");
  change(file_, station, address, [&](Storage& storage, Controller& controller) {
    controller.faults = faults;
    storeFaults(storage, controller);
  });
}

void Site::clearReceived(int station, int address) {
  change(file_, station, address, [](Storage& storage, const Controller& controller) {
    storage.run("delete from received where controller = ?", controller.id);
  });
}

SwipeResult Site::swipe(const Swipe& swipe) {
  SwipeResult result;
  change(file_, swipe.station, swipe.address,
         [&](Storage& storage, Controller& controller) { result = present(storage, controller, swipe); });
  return result;
}

bool Site::connected(int station) {
  return lineConnected(file_.get(), station);
}

}  // namespace site
