#include "work/card_filter.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "access/card_doors.h"
#include "access/card_record.h"
#include "files/conversions.h"
#include "lines/code.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/datetime.h"
#include "platform/text.h"
#include "work/card_usage.h"
#include "work/card_values.h"
#include "work/installation.h"
#include "work/look_up.h"
#include "work/refusal.h"
#include "work/words.h"

namespace voxa {

namespace {

constexpr const char* sorts[] = {"number", "name", "group", "until"};

/// A statement that grows by conditions, with the values of its parameters.
struct Selection {
  std::string declared, conditions;
  Database::Parameters values;

  void add(const std::string& condition) { conditions += " and " + condition; }
  void add(const std::string& condition, const char* parameter, const char* type, const Value& value) {
    declared += (declared.empty() ? "parameters " : ", ") + std::string(parameter) + " " + type;
    values.emplace_back(parameter, value);
    add(condition);
  }
};

/// "AccessGroupId in (1, 2)"; a card without a group is in the default one.
std::string inGroups(const std::set<std::int16_t>& groups) {
  if (groups.empty()) return "1 = 0";
  std::string list;
  for (const std::int16_t group : groups) list += (list.empty() ? "" : ", ") + std::to_string(group);
  const std::string in = "AccessGroupId in (" + list + ")";
  return groups.contains(0) ? "(" + in + " or AccessGroupId is null)" : in;
}

/// The groups whose cards meet a door as open, at some hours or always.
std::set<std::int16_t> groupsOf(Installation& installation, const std::string& door) {
  const auto row = readerNamed(installation, door);
  const std::string name = row->get("Name").toText();
  const std::int16_t station = row->get("StationId").toInt16();
  const std::int16_t address = nullToInt(row->get("ControllerAddress"));
  std::set<std::int16_t> groups;
  Database& database = installation.database();
  for (const auto& [group, controllers] : controllersOfGroups(database)) {
    for (const GrantedController& controller : controllers) {
      if (controller.station != station || controller.address != address) continue;
      for (const DoorSide& side : sidesOf(database, group, controller)) {
        if (side.reader == name && side.access != DoorSide::Access::shut) groups.insert(group);
      }
    }
  }
  return groups;
}

std::string anyMark() {
  std::string any;
  for (std::size_t part = 0; part < cardPartCount; ++part)
    any += (any.empty() ? "(" : " or ") + std::string(flagColumn(part)) + " = true";
  return any + ")";
}

Selection selectionOf(Installation& installation, const CardFilter& filter, const GroupNames& groups) {
  Selection selected;
  selected.add("Deleted = pDeleted", "pDeleted", "bit", filter.deleted);
  if (filter.group) selected.add(inGroups({groups.id(*filter.group)}));
  if (filter.door) selected.add(inGroups(groupsOf(installation, *filter.door)));
  if (filter.valid) selected.add("Validated = pValid", "pValid", "bit", yesOrNo("valid", *filter.valid));
  if (filter.supervisor) {
    selected.add("Supervisor = pSupervisor", "pSupervisor", "bit", yesOrNo("supervisor", *filter.supervisor));
  }
  const DateTime today{std::floor(installation.clock().now().days)};
  if (filter.expired) selected.add("ValidationDate < pToday", "pToday", "datetime", today);
  if (filter.expiresBefore) {
    const DateTime day = writtenMoment(*filter.expiresBefore, installation.clock());
    selected.add("ValidationDate >= pFrom", "pFrom", "datetime", today);
    selected.add("ValidationDate < pBefore", "pBefore", "datetime", day);
  }
  if (filter.pending) selected.add(anyMark());
  return selected;
}

enum Column : std::size_t { id, number, name, code, group, valid, supervisor, until, credit, pin, firstMark };

std::string statementOf(const Selection& selected, const std::string& sort, std::size_t top) {
  std::string marks;
  for (std::size_t part = 0; part < cardPartCount; ++part) marks += ", " + std::string(flagColumn(part));
  return (selected.declared.empty() ? "" : selected.declared + "; ") + "select " +
         (top == 0 ? "" : "top " + std::to_string(top) + " ") +
         "Id, CardNum, Name, CardCode, AccessGroupId, Validated, Supervisor, ValidationDate, Credit, "
         "PINCode" +
         marks + " from Cardholders where" + selected.conditions.substr(4) + " order by " +
         (sort == "name"    ? "Name"
          : sort == "until" ? "ValidationDate, CardNum, Id"
                            : "CardNum, Id");
}

/// A number or code as people compare them: without regard to case and to zeros in front.
std::string significant(const std::string& text) {
  const std::string digits = toLower(shownCode(text));
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

/// What a person looks for by a few letters or digits.
class Wanted {
 public:
  explicit Wanted(const CardFilter& filter)
      : name_(toLower(filter.name.value_or(""))),
        text_(toLower(filter.text.value_or(""))),
        number_(significant(text_)) {}

  [[nodiscard]] bool is(const Value* row) const {
    if (name_.empty() && text_.empty()) return true;
    const std::string held = toLower(row[name].toText());
    if (held.find(name_) == std::string::npos) return false;
    return held.find(text_) != std::string::npos || isNumber(row[number]) || isNumber(row[code]);
  }

 private:
  [[nodiscard]] bool isNumber(const Value& value) const {
    return !value.isNull() && significant(value.toText()) == number_;
  }
  std::string name_, text_, number_;
};

CardRow rowOf(const Value* row, const GroupNames& groups) {
  CardRow card{row[number],
               row[name],
               row[code],
               row[group].isNull() ? Value() : Value(groups.name(row[group].toInt16())),
               row[valid],
               row[supervisor],
               row[until],
               row[credit],
               row[pin].isNull() ? "" : zeroPadded(row[pin].toInt32(), 4),
               false,
               row[id].toInt32()};
  for (std::size_t part = 0; part < cardPartCount; ++part)
    card.toSend = card.toSend || row[firstMark + part].toBool();
  return card;
}

void sortBy(const std::string& sort, std::vector<CardRow>& cards) {
  if (sort == "until") {  // cards without a last day last
    std::stable_partition(cards.begin(), cards.end(),
                          [](const CardRow& card) { return !card.until.isNull(); });
  } else if (sort == "group") {
    const auto text = [](const CardRow& card) { return card.group.isNull() ? "" : card.group.toText(); };
    std::stable_sort(cards.begin(), cards.end(), [&](const CardRow& one, const CardRow& other) {
      return compareNoCase(text(one), text(other)) < 0;
    });
  }
}

}  // namespace

CardFilter cardFilterOf(const std::vector<std::string>& conditions) {
  CardFilter filter;
  const std::pair<const char*, std::optional<std::string> CardFilter::*> texts[] = {
      {"group", &CardFilter::group},
      {"door", &CardFilter::door},
      {"name", &CardFilter::name},
      {"valid", &CardFilter::valid},
      {"supervisor", &CardFilter::supervisor},
      {"expires-before", &CardFilter::expiresBefore}};
  const std::pair<const char*, bool CardFilter::*> flags[] = {{"expired", &CardFilter::expired},
                                                              {"never-used", &CardFilter::neverUsed},
                                                              {"pending", &CardFilter::pending},
                                                              {"deleted", &CardFilter::deleted}};
  for (const std::string& condition : conditions) {
    const std::size_t sign = condition.find('=');
    const std::string key = trimmed(condition.substr(0, sign));
    bool known = false;
    if (sign == std::string::npos) {
      for (const auto& [word, flag] : flags) {
        if (!equalNoCase(word, key)) continue;
        known = true;
        filter.*flag = true;
      }
    } else {
      for (const auto& [word, text] : texts) {
        if (!equalNoCase(word, key)) continue;
        known = true;
        if (filter.*text) throw Refusal("there are two conditions of " + key);
        filter.*text = trimmed(condition.substr(sign + 1));
      }
    }
    if (!known) {
      throw Refusal("'" + condition +
                    "' is no condition: they are group=, door=, name=, valid=, supervisor=, expires-before= "
                    "with a value, and expired, never-used, pending");
    }
  }
  return filter;
}

std::vector<CardRow> listCards(Installation& installation, const CardFilter& filter) {
  const GroupNames groups(installation);
  const std::string sort = filter.sort ? toLower(*filter.sort) : "number";
  if (std::find(std::begin(sorts), std::end(sorts), sort) == std::end(sorts))
    throw Refusal("cards are sorted by number, name, group or until, not by " + sort);
  std::size_t limit = 0;
  if (filter.limit) {
    const std::int32_t most = number32("the limit", *filter.limit);
    if (most < 1) throw Refusal("the limit is 1 or more cards");
    limit = static_cast<std::size_t>(most);
  }
  const bool whole = filter.name || filter.text || filter.neverUsed || sort == "until" || sort == "group";
  const Wanted wanted(filter);
  std::vector<CardRow> cards;
  const Selection selected = selectionOf(installation, filter, groups);
  installation.database().visitRows(
      statementOf(selected, sort, whole ? 0 : limit),
      [&](const Value* row) {
        if (wanted.is(row)) cards.push_back(rowOf(row, groups));
        return true;
      },
      selected.values);
  if (filter.neverUsed) leaveOutUsed(installation, cards);
  sortBy(sort, cards);
  if (limit != 0 && cards.size() > limit) cards.resize(limit);
  return cards;
}

}  // namespace voxa
