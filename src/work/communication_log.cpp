#include "work/communication_log.h"

#include <deque>

#include "comm/com.h"
#include "files/seq_file.h"
#include "platform/files.h"
#include "work/installation.h"

namespace voxa {

void eachLogLine(Installation& installation, std::optional<std::size_t> last,
                 const std::function<void(const std::string&)>& take) {
  SeqFile log(installation);
  log.Name(installation.Com().logFileName);
  if (!files::exists(log.Name())) return;
  std::deque<std::string> kept;
  log.fopen("r");
  while (!log.fEOF()) {
    std::string line = log.flineInput();
    if (!last) {
      take(line);
      continue;
    }
    kept.push_back(std::move(line));
    if (kept.size() > *last) kept.pop_front();
  }
  log.fclose();
  for (const std::string& line : kept) take(line);
}

}  // namespace voxa
