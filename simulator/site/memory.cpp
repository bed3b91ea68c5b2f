#include "site/memory.h"

#include "site/results.h"
#include "site/storage.h"

namespace site {

namespace {

// Adds the part of a line that arrived before the line was cut: within `record`, or before it.
void cutLine(Controller& controller, const std::string& record, std::string& dump) {
  if (controller.faults.cutHalfLine) dump += record.substr(0, record.size() / 2);
  if (controller.faults.cutOnce) {
    controller.faults.cutAfter.reset();
    controller.faults.cutHalfLine = controller.faults.cutOnce = false;
  }
}

}  // namespace

void record(Storage& storage, Controller& controller, std::string_view line) {
  Ring& ring = controller.ring;
  storage.run("insert into records values (?, ?, ?)", controller.id, ring.next++, line);
  if (ring.next - ring.first > controller.info.memoryCapacity) {
    storage.run("delete from records where controller = ? and number = ?", controller.id, ring.first++);
    if (ring.read < ring.first) ring.read = ring.first;
    ++ring.overflows;
    ring.overflowed = true;
  }
  storeRing(storage, controller);
}

std::int16_t readMemory(Storage& storage, Controller& controller, std::string& dump) {
  Ring& ring = controller.ring;
  if (ring.overflowed) {
    ring.overflowed = false;
    storeRing(storage, controller);
    return result::memoryOverflowed;
  }
  const std::int64_t start = ring.read;
  bool cut = false;
  storage.each(
      "select line from records where controller = ? and number >= ? order by number",
      [&](const Row& row) {
        if (cut) return;
        const std::string line = row.text(0);
        const auto& cutAfter = controller.faults.cutAfter;
        if (cutAfter && ring.read - start == *cutAfter) {
          cut = true;
          cutLine(controller, line, dump);
          return;
        }
        dump += line + "\r\n";
        ++ring.read;
      },
      controller.id, start);
  storeRing(storage, controller);
  if (cut) storeFaults(storage, controller);
  return cut ? result::cutOff : result::success;
}

void resetReadPointer(Storage& storage, Controller& controller) {
  controller.ring.read = controller.ring.first;
  controller.ring.overflowed = false;
  storeRing(storage, controller);
}

std::int16_t clearRead(Storage& storage, Controller& controller) {
  if (controller.faults.refuseClear) return *controller.faults.refuseClear;
  Ring& ring = controller.ring;
  storage.run("delete from records where controller = ? and number < ?", controller.id, ring.read);
  ring.first = ring.read;
  storeRing(storage, controller);
  return result::success;
}

Memory memoryOf(Storage& storage, const Controller& controller) {
  Memory memory;
  storage.each(
      "select line from records where controller = ? order by number",
      [&](const Row& row) { memory.records.push_back(row.text(0)); }, controller.id);
  memory.read = static_cast<int>(controller.ring.read - controller.ring.first);
  memory.overflows = controller.ring.overflows;
  return memory;
}

}  // namespace site
