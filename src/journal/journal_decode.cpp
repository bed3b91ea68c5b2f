// From the work file to rows of the journal.

#include "access/access_context.h"
#include "files/seq_file.h"
#include "journal/journal.h"
#include "journal/journal_files.h"
#include "journal/journal_rows.h"
#include "journal/undecoded_lines.h"
#include "platform/database/database.h"
#include "platform/files.h"
#include "platform/text.h"

namespace voxa {

/// All lines or, when one cannot be inserted, none. Returns what to tell about lines that are no
/// transactions, "" when all are.
std::string Journal::decodeFile(std::int16_t stationId, const std::string& baseName) {
  if (!files::exists(dumpFile)) return "";
  SeqFile dump(context_);
  dump.Name(dumpFile);
  dump.fopen("r");
  Transaction transaction(context_.engine(), database());
  JournalRows rows(access_, database(), stationId);
  UndecodedLines undecoded;
  std::string line;
  for (std::size_t number = 1; !dump.fEOF(); ++number) {
    dump.flineInput1252(line, UndecodedLines::longestLine);
    // Of a line that was cut off nobody knows whether the rest is blank.
    if (line.size() < UndecodedLines::longestLine && isBlank(line)) continue;
    const std::string_view fault = rows.add(line);
    if (!fault.empty()) undecoded.add(number, fault, fromCp1252(line));
  }
  const std::string keptIn = baseName + ".BAD";
  undecoded.keep(context_, keptIn);
  transaction.commit();
  dump.fclose();
  return undecoded.summary(keptIn);
}

}  // namespace voxa
