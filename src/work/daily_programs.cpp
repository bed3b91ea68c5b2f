#include "work/daily_programs.h"

#include "comm/com.h"
#include "platform/database/database.h"
#include "programs/daily_program.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/store_row.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr std::size_t intervalsOfAll = 2;  // that every controller works with
constexpr const char* endOfDay = "23:59";  // as an end; an interval that also starts there is not used
constexpr std::int16_t lastOfBuiltIn = 1;
constexpr const char* noInterval = "none";

struct IntervalColumns {
  const char* called;
  const char* start;
  const char* end;
};
constexpr IntervalColumns columns[mostIntervals] = {{"first", "StartFirstInterval", "EndFirstInterval"},
                                                    {"second", "StartSecondInterval", "EndSecondInterval"},
                                                    {"third", "Start3Interval", "End3Interval"},
                                                    {"fourth", "Start4Interval", "End4Interval"}};

std::string timeOfDay(const std::string& text) {
  if (text == "24:00") return endOfDay;
  const auto digit = [&](std::size_t i) { return text[i] >= '0' && text[i] <= '9'; };
  const bool shaped = text.size() == 5 && digit(0) && digit(1) && text[2] == ':' && digit(3) && digit(4);
  if (!shaped || text.substr(0, 2) > "23" || text.substr(3) > "59") {
    throw Refusal("'" + text + "' is no time of day: write hours and minutes as 08:30");
  }
  return text;
}

struct Interval {
  std::string start = endOfDay;
  std::string end = endOfDay;
};

Interval interval(const std::string& text) {
  if (text == noInterval) return {};
  const std::size_t dash = text.find('-');
  if (dash == std::string::npos) throw Refusal("'" + text + "' is no interval: write 08:00-12:00, or none");
  Interval read{timeOfDay(text.substr(0, dash)), timeOfDay(text.substr(dash + 1))};
  if (read.start > read.end) {
    throw Refusal("the interval " + text + " ends before it starts: split it at midnight, as " + read.start +
                  "-24:00 and 00:00-" + read.end);
  }
  return read;
}

bool workWithFour(Installation& installation) {
  return installation.Com().pDailyPrograms4Zones == 1;
}

/// Whether there were any.
bool setIntervals(Installation& installation, Recordset& row, const DailyProgramTexts& texts) {
  bool changed = false;
  for (std::size_t i = 0; i < mostIntervals; ++i) {
    if (!texts.intervals[i]) continue;
    if (i >= intervalsOfAll && !workWithFour(installation)) {
      throw Refusal(std::string("the ") + columns[i].called +
                    " interval needs controllers that work with four intervals a day: open the installation "
                    "with --four-zones (Com.pDailyPrograms4Zones = 1)");
    }
    const Interval read = interval(*texts.intervals[i]);
    row.set(columns[i].start, read.start);
    row.set(columns[i].end, read.end);
    changed = true;
  }
  return changed;
}

std::string shownInterval(const Recordset& row, const IntervalColumns& of) {
  const Value start = row.get(of.start);
  const Value end = row.get(of.end);
  if (start == end) return noInterval;
  return start.toText() + "-" + (end == Value(endOfDay) ? "24:00" : end.toText());
}

DailyProgramRow rowOf(Installation& installation, const Recordset& row) {
  DailyProgramRow program;
  program.id = row.get("Id").toInt16();
  program.name = row.get("Name").toText();
  const std::size_t intervals = workWithFour(installation) ? mostIntervals : intervalsOfAll;
  for (std::size_t i = 0; i < intervals; ++i) program.intervals.push_back(shownInterval(row, columns[i]));
  program.toSend = row.get("DailyProgramFlagD").toBool();
  return program;
}

/// Puts another program in the place of one, wherever a week has it.
void moveDays(Installation& installation, std::int16_t from, std::int16_t to) {
  for (const auto weeks = installation.database().openRecordset("select * from WeeklyPrograms");
       !weeks->eof(); weeks->moveNext()) {
    const WeekPlaces places = placesWith(*weeks, from);
    if (places.none()) continue;
    weeks->edit();
    for (std::size_t place = 0; place < weekPlaces; ++place) {
      if (places[place]) weeks->set(dailyColumn(place), to);
    }
    if (weeks->get("ProgNum").toInt16() != 0) weeks->set("WeeklyProgramFlagD", true);
    weeks->update();
  }
}

}  // namespace

std::int16_t addDailyProgram(Installation& installation, const DailyProgramTexts& texts) {
  const std::int16_t id = installation.DailyPrograms().getFreeId();
  if (id == -1) throw Refusal("the installation holds all the daily programs it can (99)");
  DailyProgramTexts whole = texts;
  for (std::size_t i = 0; i < intervalsOfAll; ++i) {
    if (!whole.intervals[i]) whole.intervals[i] = noInterval;
  }
  const auto rows = installation.database().openRecordset("select * from DailyPrograms");
  rows->addNew();
  rows->set("Id", id);
  rows->set("Name", checkedName(texts.name.value_or("")));
  setIntervals(installation, *rows, whole);
  rows->set("DailyProgramFlagD", true);
  storeRow(installation, *rows, "DailyPrograms", "daily program");
  return id;
}

void changeDailyProgram(Installation& installation, const std::string& numberOrName,
                        const DailyProgramTexts& texts) {
  const auto row = dailyProgramNamed(installation, numberOrName);
  row->edit();
  if (texts.name) row->set("Name", checkedName(*texts.name));
  const bool builtIn = row->get("Id").toInt16() <= lastOfBuiltIn;
  if (setIntervals(installation, *row, texts)) {
    if (builtIn)
      throw Refusal("the times of the built-in programs 0 (never) and 1 (the whole day) are fixed");
    row->set("DailyProgramFlagD", true);
  }
  storeRow(installation, *row, "DailyPrograms", "daily program");
}

std::vector<DailyUse> deleteDailyProgram(Installation& installation, const std::string& numberOrName,
                                         const std::string& moveTo) {
  Transaction transaction(installation.engine(), installation.database());
  const auto row = dailyProgramNamed(installation, numberOrName);
  const std::int16_t id = row->get("Id").toInt16();
  if (id <= lastOfBuiltIn) throw Refusal("the built-in programs 0 (never) and 1 (the whole day) stay");
  std::vector<DailyUse> uses = usesOfDailyProgram(installation, id);
  if (!uses.empty()) {
    const std::string what = "daily program " + std::to_string(id) + " (" + row->get("Name").toText() + ")";
    if (moveTo.empty()) throw Refusal(inUse(what, textsOf(uses)));
    const std::int16_t target = dailyProgramNamed(installation, moveTo)->get("Id").toInt16();
    if (target == id) throw Refusal(what + " cannot take its own place");
    moveDays(installation, id, target);
  }
  row->remove();
  transaction.commit();
  return uses;
}

DailyProgramRow findDailyProgram(Installation& installation, const std::string& numberOrName) {
  return rowOf(installation, *dailyProgramNamed(installation, numberOrName));
}

std::vector<DailyProgramRow> listDailyPrograms(Installation& installation) {
  std::vector<DailyProgramRow> programs;
  const auto rows = installation.database().openRecordset("select * from DailyPrograms order by Id");
  for (; !rows->eof(); rows->moveNext()) programs.push_back(rowOf(installation, *rows));
  return programs;
}

std::vector<std::string> DailyProgramRow::hours() const {
  std::vector<std::string> used = intervals;
  std::erase(used, noInterval);
  return used;
}

}  // namespace voxa
