#include "site/controllers.h"

#include <span>

#include "site/decoder.h"
#include "site/holdings.h"
#include "site/results.h"
#include "site/storage.h"

namespace site {

namespace {

#define CONTROLLER_COLUMNS                                                                              \
  "id, station, address, type, speed, capacity, clock_offset, first_record, next_record, read_record, " \
  "overflows, overflowed, silent, refuse, good_calls, cut_after, cut_half, cut_once, refuse_clear, "    \
  "result_file, forgets, lose_answer, stop_behind, times"

Controller fromRow(const Row& row) {
  Controller controller;
  int column = 0;
  controller.id = row.integer(column++);
  controller.info.station = row.number(column++);
  controller.info.address = row.number(column++);
  controller.info.type = row.text(column++);
  controller.info.speed = row.number(column++);
  controller.info.memoryCapacity = row.number(column++);
  controller.clockOffset = row.maybe<std::int64_t>(column++);
  Ring& ring = controller.ring;
  ring.first = row.integer(column++);
  ring.next = row.integer(column++);
  ring.read = row.integer(column++);
  ring.overflows = row.integer(column++);
  ring.overflowed = row.flag(column++);
  Faults& faults = controller.faults;
  faults.silent = row.flag(column++);
  faults.refuse = row.maybe<std::int16_t>(column++);
  faults.goodCalls = row.maybe<int>(column++);
  faults.cutAfter = row.maybe<int>(column++);
  faults.cutHalfLine = row.flag(column++);
  faults.cutOnce = row.flag(column++);
  faults.refuseClear = row.maybe<std::int16_t>(column++);
  faults.resultFile = static_cast<ResultFileFault>(row.integer(column++));
  faults.forgets = row.flag(column++);
  faults.loseAnswer = row.flag(column++);
  faults.stopBehind = row.maybe<int>(column++);
  faults.times = row.maybe<int>(column);
  return controller;
}

// A fault has spoilt a command file; after the last of its times it is gone.
void countSpoilt(Storage& storage, Controller& controller) {
  Faults& faults = controller.faults;
  if (!faults.times) return;
  if (--*faults.times == 0) {
    faults.loseAnswer = false;
    faults.stopBehind.reset();
    faults.times.reset();
  }
  storeFaults(storage, controller);
}

// Keeps the lines as received and, unless there is a reason against it, applies each.
void take(Storage& storage, Controller& controller, std::span<const std::string> lines,
          const std::string& refusal) {
  const std::int64_t at = toSeconds(now());
  const Date today = (controller.clockOffset ? controller.clock() : now()).date;
  std::optional<int> speed;
  for (const std::string& line : lines) {
    std::string reason = refusal;
    if (reason.empty()) {
      try {
        const Command command = decode(line, controller.info.type, today);
        if (const auto* change = std::get_if<SpeedChange>(&command)) {
          speed = change->speed;
        } else {
          hold(storage, controller.id, command);
        }
      } catch (const Undecodable& error) {
        reason = error.what();
      }
    }
    storage.run("insert into received (controller, at, line, reason) values (?, ?, ?, ?)", controller.id, at,
                line, reason);
  }
  if (speed) storeSpeed(storage, controller, *speed);
}

}  // namespace

Moment Controller::clock() const {
  return clockOffset ? fromSeconds(toSeconds(now()) + *clockOffset) : Moment{};
}

std::optional<Controller> findController(Storage& storage, int station, int address) {
  std::optional<Controller> found;
  storage.each(
      "select " CONTROLLER_COLUMNS " from controllers where station = ? and address = ?",
      [&](const Row& row) { found = fromRow(row); }, station, address);
  return found;
}

std::vector<Controller> controllersOf(Storage& storage, int station) {
  std::vector<Controller> found;
  storage.each(
      "select " CONTROLLER_COLUMNS " from controllers where ?1 in (0, station) order by station, address",
      [&](const Row& row) { found.push_back(fromRow(row)); }, station);
  return found;
}

bool lineConnected(Storage& storage, int station) {
  bool connected = false;
  storage.each(
      "select connected from lines where station = ?", [&](const Row& row) { connected = row.flag(0); },
      station);
  return connected;
}

void storeLineConnected(Storage& storage, int station, bool connected) {
  storage.run("replace into lines values (?, ?)", station, connected);
}

void storeSpeed(Storage& storage, Controller& controller, int speed) {
  controller.info.speed = speed;
  storage.run("update controllers set speed = ? where id = ?", speed, controller.id);
}

void storeClock(Storage& storage, Controller& controller, std::optional<std::int64_t> offset) {
  controller.clockOffset = offset;
  storage.run("update controllers set clock_offset = ? where id = ?", offset, controller.id);
}

void storeRing(Storage& storage, const Controller& controller) {
  const Ring& ring = controller.ring;
  storage.run(
      "update controllers set first_record = ?, next_record = ?, read_record = ?, overflows = ?, overflowed "
      "= ? "
      "where id = ?",
      ring.first, ring.next, ring.read, ring.overflows, ring.overflowed, controller.id);
}

void storeFaults(Storage& storage, const Controller& controller) {
  const Faults& faults = controller.faults;
  storage.run(
      "update controllers set silent = ?, refuse = ?, good_calls = ?, cut_after = ?, cut_half = ?, cut_once "
      "= ?, "
      "refuse_clear = ?, result_file = ?, forgets = ?, lose_answer = ?, stop_behind = ?, times = ? where id "
      "= ?",
      faults.silent, faults.refuse, faults.goodCalls, faults.cutAfter, faults.cutHalfLine, faults.cutOnce,
      faults.refuseClear, static_cast<int>(faults.resultFile), faults.forgets, faults.loseAnswer,
      faults.stopBehind, faults.times, controller.id);
}

Reception call(Storage& storage, Controller& controller, int lineSpeed) {
  Faults& faults = controller.faults;
  if (faults.silent || faults.goodCalls == 0) return {false, false, result::noAnswer};
  if (controller.info.speed != lineSpeed) return {false, false, result::garbled};
  if (faults.goodCalls) {
    --*faults.goodCalls;
    storeFaults(storage, controller);
  }
  if (faults.refuse) return {true, false, *faults.refuse};
  return {true, true, result::success};
}

std::int16_t receive(Storage& storage, Controller& controller, const std::vector<std::string>& lines,
                     bool acknowledged) {
  const Faults faults = controller.faults;
  const auto last = static_cast<std::size_t>(faults.stopBehind.value_or(0));
  const bool stops = faults.stopBehind && last < lines.size();
  const bool loses = faults.loseAnswer && acknowledged;
  take(storage, controller, std::span(lines).first(stops ? last : lines.size()),
       faults.forgets ? "the controller forgets it" : "");
  if (stops || loses) countSpoilt(storage, controller);
  if (stops) return result::cutOff;
  return loses ? result::noAnswer : result::success;
}

void refuse(Storage& storage, Controller& controller, const std::vector<std::string>& lines) {
  take(storage, controller, lines, "the controller refuses");
}

}  // namespace site
