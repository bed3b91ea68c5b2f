// From the work file to rows of the journal.

#include "access/access_context.h"
#include "journal/dump_lines.h"
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
  Transaction transaction(context_.engine(), database());
  JournalRows rows(access_, database(), stationId);
  UndecodedLines undecoded;
  eachDumpLine(context_, dumpFile, [&](std::size_t number, const std::string& line) {
    const std::string_view fault = rows.add(line);
    if (!fault.empty()) undecoded.add(number, fault, fromCp1252(line));
  });
  const std::string keptIn = baseName + ".BAD";
  undecoded.keep(context_, keptIn);
  transaction.commit();
  return undecoded.summary(keptIn);
}

}  // namespace voxa
