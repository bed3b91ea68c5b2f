#include "work/demo_data.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

#include "journal/journal.h"
#include "journal/journal_rows.h"
#include "lines/code.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "work/access_questions.h"
#include "work/cards.h"
#include "work/daily_programs.h"
#include "work/groups.h"
#include "work/holidays.h"
#include "work/installation.h"
#include "work/readers.h"
#include "work/stations.h"
#include "work/weekly_programs.h"

namespace voxa {

namespace {

struct Door {
  const char* name;
  const char* station;
  std::int16_t address;
  std::int16_t position;
  const char* type;
};
constexpr Door doors[] = {
    {"Main entrance", "Local", 1, 1, "QSX3"}, {"Main entrance out", "Local", 1, 3, "QSX3"},
    {"Back door", "Local", 1, 2, "QSX3"},     {"Offices", "Local", 2, 1, "QSX3"},
    {"Server room", "Local", 2, 2, "QSX3"},   {"Warehouse", "Annex", 1, 1, "QSX3"},
    {"Laboratory", "Annex", 2, 1, "VRMD1"}};

// A controller lets a card through at the times of one program only; what a group has at one agrees.
struct Grant {
  const char* group;
  const char* program;
  std::vector<const char*> doors;
};
const Grant grants[] = {
    {"Management",
     "Always",
     {"Main entrance", "Main entrance out", "Back door", "Offices", "Server room", "Warehouse",
      "Laboratory"}},
    {"Office staff", "Staff", {"Main entrance", "Main entrance out", "Offices"}},
    {"Warehouse staff", "Shifts", {"Main entrance", "Main entrance out", "Back door", "Warehouse"}},
    {"Laboratory staff", "Staff", {"Main entrance", "Main entrance out", "Laboratory"}},
    {"Cleaners", "Cleaning", {"Back door", "Offices"}}};

struct Person {
  const char* name;
  const char* group;
};
constexpr Person people[] = {{"Ada Byron", "Management"},
                             {"Félix Meunier", "Management"},
                             {"Ann Lee", "Office staff"},
                             {"Ben O'Hara", "Office staff"},
                             {"Carla Brandt", "Office staff"},
                             {"Dario D'Amico", "Office staff"},
                             {"Edith Évrard", "Office staff"},
                             {"Frank Holt", "Office staff"},
                             {"Greta Lind", "Office staff"},
                             {"Hugo Lambert", "Office staff"},
                             {"Ines Prado", "Office staff"},
                             {"Jonas Weber", "Warehouse staff"},
                             {"Karin Sommer", "Warehouse staff"},
                             {"Luis Ortega", "Warehouse staff"},
                             {"Mia Novak", "Warehouse staff"},
                             {"Nils Berg", "Warehouse staff"},
                             {"Olga Marin", "Warehouse staff"},
                             {"Paul Adler", "Warehouse staff"},
                             {"Rosa Conti", "Laboratory staff"},
                             {"Simon Field", "Laboratory staff"},
                             {"Tessa Blum", "Laboratory staff"},
                             {"Uwe Krämer", "Laboratory staff"},
                             {"Vera Stein", "Cleaners"},
                             {"Walter Kemp", "Cleaners"},
                             {"Zoë Quill", "Cleaners"}};

constexpr int journalDays = 14;

std::string dateText(int day, int month, int year) {
  return std::to_string(day) + "/" + std::to_string(month) + "/" + std::to_string(year);
}

void addTimes(Installation& installation, const CivilTime& today) {
  addDailyProgram(installation, {"Office", {"07:30-12:30", "13:00-19:00"}});
  addDailyProgram(installation, {"Long day", {"05:30-22:30", "none"}});
  addDailyProgram(installation, {"Evening", {"05:00-07:30", "18:00-22:00"}});
  const auto week = [&](const char* name, const char* daily, const char* saturday) {
    addWeeklyProgram(installation, "C",
                     {name, {daily, daily, daily, daily, daily, saturday, "Never"}, "Never"});
  };
  week("Staff", "Office", "Never");
  week("Shifts", "Long day", "Long day");
  week("Cleaning", "Evening", "Never");
  addHoliday(installation, "New Year", dateText(1, 1, today.year), true);
  addHoliday(installation, "Labour Day", dateText(1, 5, today.year), true);
  addHoliday(installation, "Christmas Day", dateText(25, 12, today.year), true);
  addHoliday(installation, "Boxing Day", dateText(26, 12, today.year), true);
  addHoliday(installation, "Closing day " + std::to_string(today.year), dateText(24, 12, today.year), false);
  addHoliday(installation, "Closing day " + std::to_string(today.year + 1), dateText(24, 12, today.year + 1),
             false);
}

std::string codeOf(std::size_t person) {
  constexpr std::uint32_t first = 0x00A0C301;
  constexpr std::uint32_t step = 0x1011;
  std::array<char, 16> code{};
  std::snprintf(code.data(), code.size(), "%08X", first + static_cast<std::uint32_t>(person) * step);
  return code.data();
}

/// One has gone, one is here until the end of next year, one lost the card, and two key in a personal code.
void addPeople(Installation& installation, DateTime today) {
  for (std::size_t i = 0; i < std::size(people); ++i) {
    CardTexts card;
    card.name = people[i].name;
    card.code = codeOf(i);
    card.group = people[i].group;
    const std::string name = people[i].name;
    if (name == "Ada Byron") card.supervisor = "yes";
    if (name == "Rosa Conti") card.pin = "2468";
    if (name == "Félix Meunier") card.pin = "1357";
    if (name == "Paul Adler") card.until = shortDate({today.days - 10});
    if (name == "Zoë Quill") card.until = dateText(31, 12, toCivil(today).year + 1);
    if (name == "Nils Berg") card.valid = "no";
    addCard(installation, card);
  }
}

struct Event {
  DateTime at;
  const Door* door;
  std::size_t person;  // std::size(people): a card that nobody knows
};

/// A line of a controller's memory: address, type, day, month, year, hour, minute, data.
std::string lineOf(const Event& event, const AccessAnswer* answer) {
  // Units of the type, by position.
  constexpr char units[] = {'0', '2', '1', '3'};
  std::string type = "1";
  std::string data = controllerCode("00C0FFEE");
  char unit = units[event.door->position - 1];
  if (answer != nullptr) {
    const bool byTime =
        answer->reason == AccessReason::outsideHours || answer->reason == AccessReason::holiday;
    type = answer->opens ? "0" : "2";
    if (!answer->opens && !byTime) unit = static_cast<char>(unit + 4);
    std::array<char, 16> card{};
    std::snprintf(card.data(), card.size(), "00%04d00", answer->card);
    data = card.data();
  }
  std::array<char, 8> address{};
  std::snprintf(address.data(), address.size(), "%02d ", event.door->address);
  return address.data() + type + unit + formatDateTime(event.at, "ddmmyyhhnn") + data;
}

/// The same in every run but for the days.
std::vector<Event> eventsOf(DateTime today) {
  std::uint64_t state = 20261221;
  const auto below = [&](std::uint32_t limit) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<int>((state >> 32U) % limit);
  };
  const auto doorOf = [](const std::string& name) {
    return std::find_if(std::begin(doors), std::end(doors),
                        [&](const Door& door) { return name == door.name; });
  };
  std::vector<Event> events;
  for (int day = journalDays; day > 0; --day) {
    CivilTime morning = toCivil({static_cast<double>(static_cast<int>(today.days) - day)});
    const bool sunday = (dayNumber(morning) - 1) % 7 == 0;  // day 1 was a Sunday
    const auto at = [&](int minute) {
      CivilTime moment = morning;
      moment.hour = minute / 60;
      moment.minute = minute % 60;
      return toDateTime(moment);
    };
    for (std::size_t i = 0; i < std::size(people); ++i) {
      const auto* granted = std::find_if(std::begin(grants), std::end(grants), [&](const Grant& grant) {
        return std::string(grant.group) == people[i].group;
      });
      if (below(100) < (sunday ? 97 : 12)) continue;
      const bool cleans = std::string(people[i].group) == "Cleaners";
      const int comes = (cleans ? 330 : 455) + below(70);
      events.push_back({at(comes), doorOf(granted->doors.front()), i});
      events.push_back({at(comes + 3 + below(240)), doorOf(granted->doors.back()), i});
      if (!cleans) events.push_back({at(comes + 500 + below(140)), doorOf("Main entrance out"), i});
      if (below(100) < 4) events.push_back({at(600 + below(300)), doorOf("Server room"), i});
    }
    if (below(100) < 30) events.push_back({at(600 + below(600)), doorOf("Back door"), std::size(people)});
  }
  std::stable_sort(events.begin(), events.end(),
                   [](const Event& one, const Event& other) { return one.at < other.at; });
  return events;
}

void fillJournal(Installation& installation, DateTime today) {
  Database& journal = *installation.Journal().DB();
  AccessQuestions questions(installation);
  std::vector<std::pair<std::int16_t, std::string>> lines;
  std::map<std::string, std::int16_t> stations;
  for (const StationRow& station : listStations(installation)) stations[station.name] = station.id;
  for (const Event& event : eventsOf(today)) {
    std::optional<AccessAnswer> answer;
    if (event.person < std::size(people))
      answer = questions.mayOpen(people[event.person].name, event.door->name, event.at);
    lines.emplace_back(stations.at(event.door->station), lineOf(event, answer ? &*answer : nullptr));
  }
  Transaction transaction(installation.engine(), journal);
  std::map<std::int16_t, JournalRows> rows;
  for (const auto& [station, line] : lines)
    (void)rows.try_emplace(station, installation, journal, station).first->second.add(line);
  transaction.commit();
}

}  // namespace

std::vector<DemoController> fillDemoData(Installation& installation) {
  const DateTime today = installation.clock().now();
  StationTexts annex;
  annex.name = "Annex";
  addStation(installation, annex);
  std::vector<DemoController> controllers;
  for (const Door& door : doors) {
    addReader(installation, {door.name, door.station, std::to_string(door.address),
                             std::to_string(door.position), door.type});
    const ControllerPlace place = placeOf(installation, door.station, door.name).controller;
    if (controllers.empty() || controllers.back().place != place)
      controllers.push_back({place, door.type, findStation(installation, door.station).speed.toInt32()});
  }
  addTimes(installation, toCivil(today));
  for (const Grant& grant : grants) {
    addGroup(installation, grant.group);
    for (const char* door : grant.doors) (void)grantDoor(installation, grant.group, door, grant.program);
  }
  addPeople(installation, today);
  fillJournal(installation, today);
  return controllers;
}

}  // namespace voxa
