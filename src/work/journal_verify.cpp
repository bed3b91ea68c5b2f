#include "work/journal_verify.h"

#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <set>
#include <utility>

#include "journal/dump_lines.h"
#include "lines/transaction.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/files.h"
#include "platform/observer.h"
#include "platform/text.h"
#include "work/installation.h"
#include "work/journal_hours.h"
#include "work/journal_keeping.h"
#include "work/journal_list.h"

namespace voxa {

namespace {

constexpr std::size_t mostShown = 100;

/// What a line and its row have in common.
std::string keyOf(DateTime date, std::string_view type, std::string_view data) {
  constexpr double minutesADay = 24 * 60;
  return std::to_string(std::llround(date.days * minutesADay)) + " " + std::string(type) + std::string(data);
}

struct Archive {
  std::int16_t station = 0;
  DateTime read;  ///< when it was
};

/// What the name of a dump says, "J00305 15Nov2026-10.20.30.DAT"; none for another file.
std::optional<Archive> archiveOf(const std::string& name) {
  static const std::regex form(R"(J(\d{3})\d{2} (\d{2})([A-Z]{3})(\d{4})-.*\.DAT)", std::regex::icase);
  std::smatch parts;
  if (!std::regex_match(name, parts, form)) return std::nullopt;
  const auto day = parseDateTime(parts.str(2) + " " + parts.str(3) + " " + parts.str(4));
  if (!day) return std::nullopt;
  return Archive{static_cast<std::int16_t>(std::stoi(parts.str(1))), *day};
}

struct DumpLine {
  std::size_t number;
  std::string text;
  std::string key;
  DateTime date;
  bool ofUnknownCard;
};

/// A journal in which lines are looked for.
class Source {
 public:
  explicit Source(std::shared_ptr<Database> journal) : journal_(std::move(journal)), hours_(*journal_, {}) {}

  /// Takes the lines out that are among its rows.
  void takeFound(std::int16_t station, std::vector<DumpLine>& lines) const {
    std::map<std::string, std::size_t> rows;
    JournalCondition condition;
    condition.add("StationId = ?", "long", std::int32_t{station});
    for (const HourSpan& span : spansOf(lines)) {
      hours_.visit(span, condition, "Id, [Date], TransactionType, TransactionData", [&](const Value* row) {
        if (row[2].isNull() || row[3].isNull()) return;
        ++rows[keyOf(row[1].toDateTime(), row[2].toText(), row[3].toText())];
      });
    }
    std::erase_if(lines, [&](const DumpLine& line) {
      const auto row = rows.find(line.key);
      if (row == rows.end() || row->second == 0) return false;
      --row->second;
      return true;
    });
  }

 private:
  /// The times of the lines. A clock that was wrong makes them lie years apart.
  static std::vector<HourSpan> spansOf(const std::vector<DumpLine>& lines) {
    constexpr std::int64_t apart = 48;
    std::set<std::int64_t> hours;
    for (const DumpLine& line : lines) hours.insert(JournalHours::hourOf(line.date));
    std::vector<HourSpan> spans;
    for (const std::int64_t hour : hours) {
      if (spans.empty() || hour > spans.back().behind + apart) spans.push_back({hour, hour});
      spans.back().behind = hour + 1;
    }
    return spans;
  }

  std::shared_ptr<Database> journal_;
  JournalHours hours_;
};

std::vector<DumpLine> linesOf(Installation& installation, const std::string& path, const Archive& archive,
                              std::size_t& undecoded) {
  std::vector<DumpLine> lines;
  eachDumpLine(installation, path, [&](std::size_t number, const std::string& text) {
    TransactionLine line;
    if (!decodeLine(text, archive.read, line).empty()) {
      ++undecoded;
      return;
    }
    const bool unknown = meaningOf(line.type) == TransactionMeaning::unknownCard;
    const std::string shown = fromCp1252(std::string_view(text).substr(0, TransactionLine::width));
    lines.push_back({number, shown, keyOf(line.date, line.type, fromCp1252(line.data)), line.date, unknown});
  });
  return lines;
}

bool isDeletedJournal(const std::string& name) {
  const std::string begin = deletedJournalName;
  return name.size() > begin.size() && equalNoCase(name.substr(0, begin.size()), begin) &&
         equalNoCase(name.substr(name.size() - 4), ".MDB");
}

}  // namespace

JournalVerification verifyJournal(Installation& installation, const std::string& also, Observer& observer) {
  JournalVerification found;
  const std::string folder = backupFolder(installation);
  const std::vector<std::string> names =
      files::folderExists(folder) ? files::list(folder) : std::vector<std::string>();
  std::vector<Source> sources;
  sources.emplace_back(openedJournal(installation));
  if (!also.empty()) sources.emplace_back(openSavedJournal(installation, also));
  for (const std::string& name : names) {
    if (isDeletedJournal(name)) sources.emplace_back(openSavedJournal(installation, folder + "\\" + name));
  }
  std::size_t number = 0;
  for (const std::string& name : names) {
    observer.progress("Comparing file", ++number, names.size());
    const std::optional<Archive> archive = archiveOf(name);
    if (!archive) continue;
    ++found.files;
    std::vector<DumpLine> lines = linesOf(installation, folder + "\\" + name, *archive, found.undecoded);
    found.lines += lines.size();
    for (std::size_t i = 0; i < sources.size() && !lines.empty(); ++i) {
      const std::size_t before = lines.size();
      sources[i].takeFound(archive->station, lines);
      (i == 0 ? found.inJournal : found.inSaved) += before - lines.size();
    }
    for (const DumpLine& line : lines) {
      ++(line.ofUnknownCard ? found.unknownCards : found.missing);
      if (!line.ofUnknownCard && found.firstMissing.size() < mostShown)
        found.firstMissing.push_back({name, line.number, line.text});
    }
  }
  return found;
}

}  // namespace voxa
