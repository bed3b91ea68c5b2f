#include "work/line_commands.h"

#include "comm/com.h"
#include "work/installation.h"
#include "work/line_test.h"
#include "work/refusal.h"

namespace voxa {

void setClocks(Installation& installation, const Component& component, const LineTest& test) {
  Com& com = installation.Com();
  if ((!test.allAnswer || !test.silent.empty()) && !com.inhibitCom) {
    std::vector<std::string> names;
    for (const Report::Controller& controller : test.silent) names.push_back(controller.name);
    throw Refusal("not every controller answers: no clock was set (see voxa status)" + eachOnALine(names));
  }
  if (com.sendToComp(CmSendDate, component.type, component.name) != 0) {
    throw Refusal("msgCantSendDate", com.popErrorList());
  }
}

Report sendCommandLine(Installation& installation, const Component& component, const std::string& line) {
  if (line.empty()) throw Refusal("an empty command is not sent");
  if (line.find_first_of("\r\n") != std::string::npos) throw Refusal("a command is one line");
  Report report;
  const std::int16_t status = installation.Com().sendCommand(line, component, into(report.notices));
  report.broken = status != 0;
  return report;
}

}  // namespace voxa
