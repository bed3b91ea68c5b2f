#include "component.h"

#include "output/command_line.h"
#include "session.h"
#include "work/line_test.h"

namespace voxa::cli {

void addComponentOptions(Command& command, ComponentChoice& choice) {
  auto* station = command.add_option("--station", choice.station, "Only the controllers of this station");
  command.add_option("--reader", choice.reader, "Only the controller of this reader")->excludes(station);
}

Component chosen(Session& session, const ComponentChoice& choice) {
  return componentNamed(session.library(), choice.station, choice.reader);
}

}  // namespace voxa::cli
