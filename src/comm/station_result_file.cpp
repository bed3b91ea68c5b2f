#include "comm/station_result_file.h"

#include "files/seq_file.h"
#include "platform/clock.h"
#include "platform/context.h"

namespace voxa {

StationResult readStationResult(Context& context, const std::string& path) {
  SeqFile file(context);
  file.Name(path);
  file.fopen("r");
  StationResult result;
  // Places are counted in the file's own characters, whatever the driver wrote into the others.
  std::string line;
  if (!file.fEOF()) {
    file.flineInput1252(line, result.statuses.size());
    result.takeStatuses(line);
  }
  const DateTime today = context.clock().now();
  while (!file.fEOF()) {
    file.flineInput1252(line, StationResult::dateLineSize);
    result.takeDate(line, today);
  }
  file.fclose();
  return result;
}

}  // namespace voxa
