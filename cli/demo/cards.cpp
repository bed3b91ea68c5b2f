#include "cards.h"

#include <array>
#include <cstdio>

#include "access/access_group.h"
#include "access/cardholder.h"
#include "app/qdb.h"
#include "commands/component.h"
#include "commands/session.h"
#include "platform/text.h"
#include "work/badge_formats.h"
#include "work/card_values.h"
#include "work/holidays.h"
#include "work/links.h"
#include "work/look_up.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct Grant {
  const char* reader;
  const char* program;  // weekly, of family C; "" is always
};

struct DemoGroup {
  const char* name;
  std::vector<Grant> grants;
  std::int16_t firstCard;
  std::int16_t cards;
  const char* firstCode;  // of a block that is created at once; "" for cards of their own
};

// A controller lets a card through at the times of one program only; what a group grants there agrees.
const DemoGroup groups[] = {
    {"Offices",
     {{"Main entrance in", "Staff"}, {"Main entrance out", "Staff"}, {"Annex north", "Staff"}},
     1,
     90,
     "00520100"},
    {"Works",
     {{"Main entrance in", "Production"},
      {"Main entrance out", "Production"},
      {"Warehouse", "Production"},
      {"Loading ramp", "Production"}},
     101,
     80,
     "00520300"},
    {"Research",
     {{"Main entrance in", "Production"},
      {"Annex north", "Staff"},
      {"Annex south", "Staff"},
      {"Laboratory", ""}},
     201,
     35,
     ""},
    {"Management",
     {{"Main entrance in", ""},
      {"Main entrance out", ""},
      {"Warehouse", ""},
      {"Loading ramp", ""},
      {"Server room", "Staff"},
      {"Annex north", ""},
      {"Annex south", ""},
      {"Laboratory", ""},
      {"Garage", ""}},
     301,
     15,
     ""},
    {"Visitors", {{"Main entrance in", "Staff"}, {"Garage", "Staff"}}, 1001, 30, ""}};

constexpr const char* firstNames[] = {"Ada", "Ben", "Carla", "Dario", "Edith", "Félix", "Gwen"};
constexpr const char* lastNames[] = {"Abel", "O'Hara", "Brandt", "D'Amico", "Évrard"};

struct DemoHoliday {
  const char* name;
  const char* date;
  bool eachYear;
};
constexpr DemoHoliday holidays[] = {{"Closing day", "24/12/2026", false},
                                    {"Christmas Day", "25/12/2020", true},
                                    {"Boxing Day", "26/12/2020", true},
                                    {"New Year", "01/01/2020", true}};

std::int16_t programNamed(Session& session, const std::string& name) {
  if (name.empty()) return 0;
  return weeklyProgramNamed(session.library(), "C", name)->get("ProgNum").toInt16();
}

std::int16_t addGroup(Session& session, const DemoGroup& group) {
  const std::int16_t id = session.qdb().AccessGroups().getFreeId();
  const auto rows = session.rows("select * from AccessGroups");
  rows->addNew();
  rows->set("Id", id);
  rows->set("Name", group.name);
  rows->update();
  for (const Grant& grant : group.grants) {
    linkReader(session.library(), id, readerNamed(session.library(), grant.reader)->get("Id").toInt32(),
               programNamed(session, grant.program));
  }
  return id;
}

// What single cards have besides their place in the group.
void setExtras(Recordset& row, std::int16_t card) {
  if (card >= 1001) row.set("ValidationDate", card % 3 == 0 ? "23/12/2026" : "31/12/2026");
  if (card % 11 == 0) row.set("Validated", false);
  if (card % 10 == 5) row.set("Credit", static_cast<std::int16_t>(1 + card % 3));
  if (card == 301) row.set("Supervisor", true);
  if (card > 301 && card < 310) row.set("PINCode", static_cast<std::int16_t>(card));
}

void addCards(Session& session, const DemoGroup& group, std::int16_t id) {
  constexpr std::uint32_t firstCode = 0xA0C3E001;
  constexpr std::uint32_t step = 0x1011;
  const auto rows = session.rows("select * from Cardholders where Id = 0");
  for (std::int16_t i = 0; i < group.cards; ++i) {
    const auto number = static_cast<std::int16_t>(group.firstCard + i);
    std::array<char, 16> code{};
    std::snprintf(code.data(), code.size(), "%08X", firstCode + static_cast<std::uint32_t>(number) * step);
    const auto place = static_cast<std::size_t>(number);
    rows->addNew();
    rows->set("CardNum", number);
    rows->set("Name", std::string(firstNames[place % std::size(firstNames)]) + " " +
                          lastNames[place % std::size(lastNames)] + " " + std::to_string(number));
    rows->set("CardCode", code.data());
    rows->set("AccessGroupId", id);
    setExtras(*rows, number);
    markWhole(*rows);
    rows->update();
  }
}

// Of the blocks, which the controllers hold by now, some cards are invalidated, some get a last day.
void changeBlockCards(Session& session) {
  const auto rows = session.rows("select * from Cardholders where CardNum < 200");
  for (; !rows->eof(); rows->moveNext()) {
    const std::int32_t number = rows->get("CardNum").toInt32();
    if (number % 17 != 0 && number % 20 != 3) continue;
    rows->edit();
    if (number % 17 == 0) rows->set("Validated", false);
    if (number % 20 == 3) rows->set("ValidationDate", "22/12/2026");
    markWhole(*rows);
    rows->update();
  }
}

void addHolidays(Installation& installation) {
  for (const DemoHoliday& holiday : holidays) {
    addHoliday(installation, holiday.name, holiday.date, holiday.eachYear);
  }
}

void addSiteFormat(Installation& installation) {
  BadgeFormatTexts format;
  format.name = demoBadgeFormat;
  format.site = "1A2F";
  format.numbers = {"2", "6", {}, "2", "4"};
  format.systemCard = true;
  createBadgeFormats(installation);
  addBadgeFormat(installation, format);
}

}  // namespace

void fillDemoCards(Session& session) {
  for (const DemoGroup& group : groups) {
    std::int16_t id = 0;
    {
      Transaction transaction(session.library().engine(), session.qdb().database());
      id = addGroup(session, group);
      if (*group.firstCode == '\0') addCards(session, group, id);
      transaction.commit();
    }
    if (*group.firstCode == '\0') continue;
    if (session.qdb().Cardholders().createGroup(group.firstCard, group.firstCode, group.cards, id) != 0) {
      throw Refusal(std::string("the cards of ") + group.name + " were not taken");
    }
  }
  Transaction transaction(session.library().engine(), session.qdb().database());
  changeBlockCards(session);
  transaction.commit();
  addHolidays(session.library());
  addSiteFormat(session.library());
}

}  // namespace voxa::cli
