#include "driver/line.h"

#include "site/results.h"

namespace driver {

namespace {

constexpr int firstController = 41;
constexpr int lastController = 56;

}  // namespace

std::int16_t Line::send(int address, const Operation& operation) {
  if (address == broadcast) {
    if (!open_) return site::result::success;
    for (site::Controller& controller : site::controllersOf(storage_, station_)) reach(controller, operation);
    return site::result::success;
  }
  if (address == each) {
    std::int16_t first = open_ ? site::result::success : site::result::noAnswer;
    for (const int controller : ini_.controllers) {
      const std::int16_t result = ask(controller, operation);
      if (first == site::result::success) first = result;
    }
    return first;
  }
  if (address < firstController || address > lastController) return site::result::unknownController;
  return ask(address - firstController + 1, operation);
}

std::int16_t Line::ask(int address, const Operation& operation) {
  std::int16_t result = site::result::noAnswer;
  if (open_) {
    auto controller = site::findController(storage_, station_, address);
    result = controller ? reach(*controller, operation) : site::result::unknownController;
  }
  if (result != site::result::success && operation.failed) operation.failed(address, result);
  return result;
}

std::int16_t Line::reach(site::Controller& controller, const Operation& operation) {
  const site::Reception reception = site::call(storage_, controller, ini_.speed);
  if (reception.willing) return operation.perform(controller);
  if (reception.heard && operation.refused) operation.refused(controller);
  return reception.result;
}

}  // namespace driver
