#include "journal/dump_lines.h"

#include "files/seq_file.h"
#include "journal/undecoded_lines.h"
#include "lines/transaction.h"

namespace voxa {

void eachDumpLine(Context& context, const std::string& file,
                  const std::function<void(std::size_t number, const std::string& line)>& take) {
  SeqFile dump(context);
  dump.Name(file);
  dump.fopen("r");
  std::string line;
  for (std::size_t number = 1; !dump.fEOF(); ++number) {
    dump.flineInput1252(line, UndecodedLines::longestLine);
    // Of a line that was cut off nobody knows whether the rest is blank.
    if (line.size() < UndecodedLines::longestLine && isBlank(line)) continue;
    take(number, line);
  }
  dump.fclose();
}

}  // namespace voxa
