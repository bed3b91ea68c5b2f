#include "work/line_commands.h"

#include "comm/com.h"
#include "work/installation.h"
#include "work/line_test.h"
#include "work/refusal.h"

namespace voxa {

void setClocks(Installation& installation, const Component& component,
               const std::vector<Report::Controller>& silent) {
  Com& com = installation.Com();
  if (!com.inhibitCom) passOver(installation, silent);
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
