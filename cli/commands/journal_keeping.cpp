// voxa journal index, save, restore, delete and verify: the journal as a file.

#include "work/journal_keeping.h"

#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>

#include "journal_keeping.h"
#include "may_write.h"
#include "output/command_line.h"
#include "output/progress.h"
#include "platform/datetime.h"
#include "session.h"
#include "work/journal_verify.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

std::string mebibytes(std::uint64_t bytes) {
  std::ostringstream text;
  text.precision(1);
  text << std::fixed << static_cast<double>(bytes) / (1024.0 * 1024.0) << " MiB";
  return text.str();
}

std::string rowsText(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " transaction" : " transactions");
}

/// A Refusal unless the person says yes, or has said so on the command line.
void requireConsent(Session& session, const std::string& what, const std::string& refused) {
  if (session.settings.answersYes()) return;
  if (!ConsolePrompts::isTerminal()) throw Refusal(what + " Without a terminal to ask on this needs --yes.");
  const Answer answer = session.prompts().messageBox(
      what + " Go on?", style::yesNo | style::exclamation | style::secondDefault, "");
  if (answer != Answer::yes) throw Refusal(refused);
}

void index(Session& session, bool drop) {
  session.openForSending();
  if (drop) {
    const bool any = dropJournalIndex(session.library());
    std::cout << (any ? "The index is gone\n" : "The journal has no index\n");
    return;
  }
  const JournalIndexing done = indexJournal(session.library());
  std::ostringstream seconds;
  seconds.precision(1);
  seconds << std::fixed << done.seconds;
  std::cout << rowsText(done.rows) << " indexed by date and person in " << seconds.str()
            << " s; the journal had " << mebibytes(done.bytesBefore) << ", and has "
            << mebibytes(done.bytesBehind) << '\n';
}

void save(Session& session, const std::string& file, bool force) {
  session.openForSending();
  const std::string path = session.callersFile(file);
  requireMayWrite(session, path, force);
  saveJournal(session.library(), path, true);
  std::cout << "Saved as " << file << '\n';
}

void restore(Session& session, const std::string& file) {
  session.openForSending();
  const std::string path = session.callersFile(file);
  openSavedJournal(session.library(), path)->close();
  requireConsent(session,
                 "The transactions of " + file + " that the journal does not have will be added to it.",
                 "nothing was added");
  JournalRestoring done;
  {
    Progress progress;
    done = restoreJournal(session.library(), path, progress);
  }
  std::cout << rowsText(done.added) << " of " << done.rows
            << " added; the others are in the journal already\n";
}

void deleteBefore(Session& session, const std::string& before) {
  session.openForSending();
  const JournalDeletion deletion = planJournalDeletion(session.library(), before);
  const std::string day = formatDateTime(deletion.before, "dd/mm/yyyy hh:nn");
  if (deletion.rows == 0) {
    std::cout << "The journal has nothing before " << day << '\n';
    return;
  }
  requireConsent(session,
                 rowsText(deletion.rows) + " before " + day + " will be moved from the journal to " +
                     deletion.file + ".",
                 "nothing was deleted");
  {
    Progress progress;
    deleteFromJournal(session.library(), deletion, progress);
  }
  std::cout << rowsText(deletion.rows) << " before " << day << " saved as " << deletion.file
            << " and deleted; 'voxa journal restore' brings them back\n";
}

void verify(Session& session, const std::string& also) {
  session.openForSending();
  JournalVerification found;
  {
    Progress progress;
    found = verifyJournal(session.library(), also.empty() ? "" : session.callersFile(also), progress);
  }
  std::cout << found.files << (found.files == 1 ? " archive file, " : " archive files, ")
            << rowsText(found.lines) << ": " << found.inJournal << " in the journal, " << found.inSaved
            << " in files of 'journal delete', " << found.missing << " missing\n";
  if (found.undecoded > 0)
    std::cout << found.undecoded
              << (found.undecoded == 1 ? " line is no transaction" : " lines are no transactions")
              << "; the .BAD files tell of them\n";
  if (found.unknownCards > 0)
    std::cout << found.unknownCards << " of unknown cards " << (found.unknownCards == 1 ? "was" : "were")
              << " taken out, as 'voxa card last-unknown' does\n";
  if (found.missing == 0) return;
  for (const JournalVerification::Line& line : found.firstMissing) {
    std::cout << line.file << ", line " << line.number << ": " << line.text << '\n';
  }
  if (found.missing > found.firstMissing.size())
    std::cout << "and " << found.missing - found.firstMissing.size() << " more\n";
  throw Leftover(rowsText(found.missing) + " of the archive " + (found.missing == 1 ? "is" : "are") +
                 " not in the journal: if saved elsewhere, name that file with "
                 "--also");
}

}  // namespace

void addJournalKeeping(Command& journal, Session& session) {
  auto* indexing = journal.add_subcommand("index", "Make a big journal answer sooner");
  auto drop = std::make_shared<bool>(false);
  indexing->add_flag("--drop", *drop, "Take the index away");
  indexing->footer(
      "Days and persons are found at once then, and each transaction that is read takes a little longer. It "
      "is kept\nuntil it is dropped.\nExamples:\n  voxa journal index\n  voxa journal index --drop");
  indexing->callback([&session, drop] { index(session, *drop); });

  auto file = std::make_shared<std::string>();
  auto force = std::make_shared<bool>(false);
  auto* saving = journal.add_subcommand("save", "Save a copy of the journal");
  saving->add_option("FILE", *file, "File of the copy")->required();
  saving->add_flag("--force", *force, "Replace the file when it exists");
  saving->footer(
      "Examples:\n  voxa journal save journal-2026.mdb\n  voxa journal save /mnt/backup/journal.mdb --force");
  saving->callback([&session, file, force] { save(session, *file, *force); });

  auto* restoring = journal.add_subcommand("restore", "Bring the transactions of a saved journal back");
  restoring->add_option("FILE", *file, "The saved journal")->required();
  restoring->footer(
      "Nothing of the present journal is lost, and what it has is not added again: all of it, or after a "
      "failure nothing.\nIt asks; without a terminal it needs --yes.\n"
      "Examples:\n  voxa journal restore journal-2026.mdb\n"
      "  voxa --yes journal restore \"Backup/Journal before 2026-01-01, 02Jan2027-08.00.00.MDB\"");
  restoring->callback([&session, file] { restore(session, *file); });

  auto before = std::make_shared<std::string>();
  auto* deleting = journal.add_subcommand("delete", "Move old transactions to a file of their own");
  deleting->add_option("--before", *before, "Those before this day or minute, in the forms of --since")
      ->required();
  deleting->footer(
      "They are saved in the folder Backup first, in a journal of their own, which it names. It asks; "
      "without "
      "a terminal\nit needs --yes. The file Journal.MDB does not become smaller: new transactions take the "
      "place.\nExamples:\n  voxa journal delete --before 01/01/2026\n  voxa --yes journal delete "
      "--before=-104w");
  deleting->callback([&session, before] { deleteBefore(session, *before); });

  auto also = std::make_shared<std::string>();
  auto* verifying = journal.add_subcommand("verify", "Compare the archived dumps with the journal");
  verifying->add_option("--also", *also, "Another saved journal, in which transactions may be");
  verifying->footer(
      "Each line of each file in the folder Backup must be in the journal, or in a file there that 'journal "
      "delete' made.\nNothing is changed. It ends with 3 when lines are missing.\n"
      "Examples:\n  voxa journal verify\n  voxa journal verify --also journal-2026.mdb");
  verifying->callback([&session, also] { verify(session, *also); });
}

}  // namespace voxa::cli
