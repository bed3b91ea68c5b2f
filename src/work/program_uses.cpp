#include "work/program_uses.h"

#include "files/conversions.h"
#include "platform/database/database.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa {

namespace {

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

}  // namespace

std::string dailyColumn(std::size_t place) {
  return place == holidaysPlace ? "DailyProgHolidays" : "DailyProgDay" + std::to_string(place + 1);
}

WeekPlaces placesWith(const Recordset& weeklyProgram, std::int16_t daily) {
  WeekPlaces places;
  for (std::size_t place = 0; place < weekPlaces; ++place) {
    places[place] = nullToInt(weeklyProgram.get(dailyColumn(place))) == daily;
  }
  return places;
}

std::vector<DailyUse> usesOfDailyProgram(Installation& installation, std::int16_t id) {
  std::vector<DailyUse> uses;
  const auto rows =
      installation.database().openRecordset("select * from WeeklyPrograms order by ProgType, ProgNum");
  for (; !rows->eof(); rows->moveNext()) {
    const WeekPlaces places = placesWith(*rows, id);
    if (places.none()) continue;
    uses.push_back(
        {rows->get("ProgType").toText(), rows->get("ProgNum").toInt16(), rows->get("Name").toText(), places});
  }
  return uses;
}

WeeklyUses usesOfWeeklyProgram(Installation& installation, const std::string& family, std::int16_t number) {
  WeeklyUses uses;
  const Database::Parameters program = {{"pFamily", family}, {"pNumber", number}};
  const auto links = installation.database().openRecordset(
      "parameters pFamily memo, pNumber long; select a.AccessGroupId, g.Name, r.Name from AccGroupReaders as "
      "a, AccessGroups as g, Readers as r where g.Id = a.AccessGroupId and r.Id = a.ReaderId and "
      "a.WeeklyProgType = pFamily and a.WeeklyProgNum = pNumber order by a.AccessGroupId, r.Id",
      program);
  for (; !links->eof(); links->moveNext()) {
    const std::int16_t group = links->get("AccessGroupId").toInt16();
    if (uses.groups.empty() || uses.groups.back().group != group) {
      uses.groups.push_back({group, links->get("g.Name").toText(), {}});
    }
    uses.groups.back().readers.push_back(links->get("r.Name").toText());
  }
  if (number == 0) return uses;  // which is what a reader has that nobody gave another
  const auto doors = installation.database().openRecordset(
      "parameters pFamily memo, pNumber long; select Name from Readers where WeeklyProgType = pFamily and "
      "WeeklyProgNum = pNumber order by Id",
      program);
  for (; !doors->eof(); doors->moveNext()) uses.readers.push_back(doors->get("Name").toText());
  return uses;
}

std::vector<std::string> textsOf(const std::vector<DailyUse>& uses) {
  std::vector<std::string> texts;
  for (const DailyUse& use : uses) {
    texts.push_back("weekly program " + use.family + std::to_string(use.number) + " (" + use.name + ") on " +
                    placesText(use.places));
  }
  return texts;
}

std::vector<std::string> textsOf(const WeeklyUses& uses) {
  std::vector<std::string> texts;
  for (const WeeklyUse& use : uses.groups) {
    texts.push_back("access group " + use.name + " at " + listed(use.readers));
  }
  if (!uses.readers.empty()) texts.push_back("the door itself of " + listed(uses.readers) + " (stored only)");
  return texts;
}

std::string inUse(const std::string& what, const std::vector<std::string>& uses) {
  return what + " is used by:" + eachOnALine(uses) + "\nName another that takes its place with --move-to.";
}

}  // namespace voxa
