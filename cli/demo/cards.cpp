#include "cards.h"

#include <array>
#include <cstdio>

#include "access/cardholder.h"
#include "platform/database/database.h"
#include "work/badge_formats.h"
#include "work/card_values.h"
#include "work/cards.h"
#include "work/groups.h"
#include "work/holidays.h"
#include "work/installation.h"
#include "work/refusal.h"

namespace voxa::cli {

namespace {

struct Grant {
  const char* reader;
  const char* program;  // weekly, of family C
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
      {"Laboratory", "Always"}},
     201,
     35,
     ""},
    {"Management",
     {{"Main entrance in", "Always"},
      {"Main entrance out", "Always"},
      {"Warehouse", "Always"},
      {"Loading ramp", "Always"},
      {"Server room", "Staff"},
      {"Annex north", "Always"},
      {"Annex south", "Always"},
      {"Laboratory", "Always"},
      {"Garage", "Always"}},
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

/// Returns its number.
std::int16_t addGroup(Installation& installation, const DemoGroup& group) {
  const std::int16_t id = voxa::addGroup(installation, group.name);
  for (const Grant& grant : group.grants) grantDoor(installation, group.name, grant.reader, grant.program);
  return id;
}

/// What single cards have besides their place in the group.
void setExtras(CardTexts& texts, std::int16_t card) {
  if (card >= 1001) texts.until = card % 3 == 0 ? "23/12/2026" : "31/12/2026";
  if (card % 11 == 0) texts.valid = "no";
  if (card % 10 == 5) texts.credit = std::to_string(1 + card % 3);
  if (card == 301) texts.supervisor = "yes";
  if (card > 301 && card < 310) texts.pin = std::to_string(card);
}

void addCards(Installation& installation, const DemoGroup& group) {
  constexpr std::uint32_t firstCode = 0xA0C3E001;
  constexpr std::uint32_t step = 0x1011;
  for (std::int16_t i = 0; i < group.cards; ++i) {
    const auto number = static_cast<std::int16_t>(group.firstCard + i);
    std::array<char, 16> code{};
    std::snprintf(code.data(), code.size(), "%08X", firstCode + static_cast<std::uint32_t>(number) * step);
    const auto place = static_cast<std::size_t>(number);
    CardTexts texts;
    texts.number = std::to_string(number);
    texts.name = std::string(firstNames[place % std::size(firstNames)]) + " " +
                 lastNames[place % std::size(lastNames)] + " " + *texts.number;
    texts.code = code.data();
    texts.group = group.name;
    setExtras(texts, number);
    addCard(installation, texts);
  }
}

/// Of the blocks, which the controllers hold by now, some cards are invalidated, some get a last day.
void changeBlockCards(Installation& installation) {
  for (const DemoGroup& group : groups) {
    if (*group.firstCode == '\0') continue;
    for (std::int16_t number = group.firstCard; number < group.firstCard + group.cards; ++number) {
      CardTexts texts;
      if (number % 17 == 0) texts.valid = "no";
      if (number % 20 == 3) texts.until = "22/12/2026";
      if (texts.valid || texts.until) changeCard(installation, std::to_string(number), texts);
    }
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

void fillDemoCards(Installation& installation) {
  for (const DemoGroup& group : groups) {
    const std::int16_t id = addGroup(installation, group);
    if (*group.firstCode == '\0') {
      // One transaction: the disk is waited for once.
      Transaction transaction(installation.engine(), installation.database());
      addCards(installation, group);
      transaction.commit();
    } else if (installation.Cardholders().createGroup(group.firstCard, group.firstCode, group.cards, id) !=
               0) {
      throw Refusal(std::string("the cards of ") + group.name + " were not taken");
    }
  }
  changeBlockCards(installation);
  addHolidays(installation);
  addSiteFormat(installation);
}

}  // namespace voxa::cli
