#include "engines/language/format.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "platform/datetime.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::dialect {

namespace {

enum class Kind { number, moment, text, literal };

struct Named {
  std::string_view name;
  std::string_view pattern;
  Kind kind;
};
constexpr std::array<Named, 12> namedFormats = {{{"General Date", "c", Kind::moment},
                                                 {"Long Date", "dddddd", Kind::moment},
                                                 {"Medium Date", "dd-mmm-yy", Kind::moment},
                                                 {"Short Date", "ddddd", Kind::moment},
                                                 {"Long Time", "ttttt", Kind::moment},
                                                 {"Medium Time", "hh:nn AM/PM", Kind::moment},
                                                 {"Short Time", "hh:nn", Kind::moment},
                                                 {"Currency", "#,##0.00", Kind::number},
                                                 {"Fixed", "0.00", Kind::number},
                                                 {"Standard", "#,##0.00", Kind::number},
                                                 {"Percent", "0.00%", Kind::number},
                                                 {"Scientific", "0.00E+00", Kind::number}}};

struct Choice {
  std::string_view name;
  const char* yes;
  const char* no;
};
constexpr std::array<Choice, 3> choices = {
    {{"Yes/No", "Yes", "No"}, {"True/False", "True", "False"}, {"On/Off", "On", "Off"}}};

/// Whether one of these signs is among the characters.
bool hasAny(const std::vector<PatternCharacter>& characters, std::string_view signs) {
  return std::any_of(characters.begin(), characters.end(), [&](const PatternCharacter& c) {
    return std::any_of(signs.begin(), signs.end(), [&](char sign) { return c.is(sign); });
  });
}

Kind kindOf(std::string_view pattern) {
  const std::vector<PatternCharacter> characters = charactersOf(pattern);
  const auto has = [&](std::string_view signs) { return hasAny(characters, signs); };
  if (has("0#")) return Kind::number;
  if (has("@")) return Kind::text;
  if (has("cdwmqyhnst") || equalNoCase(pattern, "AM/PM") || equalNoCase(pattern, "A/P")) return Kind::moment;
  if (has("&<>!")) return Kind::text;
  return has("%") ? Kind::number : Kind::literal;
}

/// The parts of a pattern between its semicolons.
std::vector<std::string_view> sectionsOf(std::string_view pattern) {
  std::vector<std::string_view> sections;
  std::size_t from = 0;
  for (const PatternCharacter& c : charactersOf(pattern)) {
    if (!c.is(';')) continue;
    const auto at = static_cast<std::size_t>(c.text.data() - pattern.data());
    sections.push_back(pattern.substr(from, at - from));
    from = at + 1;
  }
  sections.push_back(pattern.substr(from));
  return sections;
}

/// The sections are for positive numbers, negative ones, zero and Null; an empty one is as the first.
std::string bySections(double number, std::string_view pattern) {
  const std::vector<std::string_view> sections = sectionsOf(pattern);
  const auto section = [&](std::size_t i) { return i < sections.size() ? sections[i] : std::string_view(); };
  if (number < 0 && !section(1).empty()) return formatNumber(-number, section(1));
  if (number == 0 && !section(2).empty()) return formatNumber(0, section(2));
  return formatNumber(number, sections[0]);
}

std::string formatText(std::string_view text, std::string_view pattern) {
  const std::vector<std::string_view> sections = sectionsOf(pattern);
  const bool second = text.empty() && sections.size() > 1;
  const std::vector<PatternCharacter> characters = charactersOf(sections[second ? 1 : 0]);
  const std::string shown = hasAny(characters, "<")   ? toLower(text)
                            : hasAny(characters, ">") ? toUpper(text)
                                                      : std::string(text);
  std::vector<PatternCharacter> left;
  for (std::size_t at = 0; at < shown.size();) {
    const std::size_t end = behindCharacter(shown, at);
    left.push_back({std::string_view(shown).substr(at, end - at), true});
    at = end;
  }
  const auto isPlace = [](const PatternCharacter& c) { return c.is('@') || c.is('&'); };
  const auto places = static_cast<std::size_t>(std::count_if(characters.begin(), characters.end(), isPlace));
  const bool fromLeft = hasAny(characters, "!");
  std::size_t empty = !fromLeft && places > left.size() ? places - left.size() : 0;
  std::size_t surplus = places < left.size() && !second ? left.size() - places : 0;
  std::size_t next = 0;
  std::string out;
  const auto take = [&](std::size_t count) {
    for (; count > 0 && next < left.size(); --count) out += left[next++].text;
  };
  for (const PatternCharacter& c : characters) {
    if (c.is('<') || c.is('>') || c.is('!')) continue;
    if (!isPlace(c)) {
      out += c.text;
      continue;
    }
    if (!fromLeft) take(std::exchange(surplus, 0));
    if (empty > 0 || next == left.size()) {
      if (c.is('@')) out += ' ';
      if (empty > 0) --empty;
    } else {
      take(1);
    }
  }
  take(surplus);
  return out;
}

/// The number of a value that a pattern for numbers shows; none of a text that is neither number nor date.
std::optional<double> numberOf(const Value& value, const Clock* clock) {
  if (!value.isText()) return value.toDouble();
  try {
    return value.toDouble();
  } catch (const Error& error) {
    if (error.number() != err::typeMismatch) throw;
  }
  const auto moment = parseDateTime(value.toText(), clock);
  return moment ? std::optional<double>(moment->days) : std::nullopt;
}

std::optional<DateTime> momentOf(const Value& value, const Clock* clock) {
  if (const auto* moment = std::get_if<DateTime>(&value.data())) return *moment;
  if (value.isText()) {
    if (const auto moment = parseDateTime(value.toText(), clock)) return moment;
  }
  const auto days = numberOf(value, clock);
  return days ? std::optional<DateTime>(DateTime{*days}) : std::nullopt;
}

std::string ofKind(const Value& value, std::string_view pattern, Kind kind, const Weeks& weeks,
                   const Clock* clock) {
  switch (kind) {
    case Kind::number: {
      const auto number = numberOf(value, clock);
      return number ? bySections(*number, pattern) : value.toText();
    }
    case Kind::moment: {
      const auto moment = momentOf(value, clock);
      return moment ? formatMoment(*moment, pattern, weeks) : value.toText();
    }
    case Kind::text:
      return formatText(value.toText(), pattern);
    case Kind::literal:
      break;
  }
  std::string out;
  for (const PatternCharacter& c : charactersOf(pattern)) out += c.text;
  return out;
}

/// Only a pattern with a section for it shows Null.
std::string ofNull(std::string_view pattern) {
  const std::vector<std::string_view> sections = sectionsOf(pattern);
  if (kindOf(pattern) == Kind::text) return formatText({}, pattern);
  return sections.size() > 3 ? ofKind(Value(), sections[3], Kind::literal, {}, nullptr) : "";
}

}  // namespace

bool PatternCharacter::is(char sign) const {
  if (literal || text.size() != 1) return false;
  const bool letter = sign >= 'a' && sign <= 'z';
  return letter ? (text[0] | 0x20) == sign : text[0] == sign;
}

std::vector<PatternCharacter> charactersOf(std::string_view pattern) {
  std::vector<PatternCharacter> out;
  bool quoted = false;
  for (std::size_t at = 0; at < pattern.size();) {
    if (pattern[at] == '"') {
      quoted = !quoted;
      ++at;
      continue;
    }
    const bool escaped = !quoted && pattern[at] == '\\' && at + 1 < pattern.size();
    if (escaped) ++at;
    const std::size_t end = behindCharacter(pattern, at);
    out.push_back({pattern.substr(at, end - at), quoted || escaped});
    at = end;
  }
  return out;
}

std::string format(const Value& value, std::string_view pattern, const Weeks& weeks, const Clock* clock) {
  if (value.isNull()) return ofNull(pattern);
  if (pattern.empty() || equalNoCase(pattern, "General Number")) {
    const auto number = value.isText() || pattern.empty() ? std::nullopt : numberOf(value, clock);
    return number ? Value(*number).toText() : value.toText();
  }
  for (const Named& named : namedFormats) {
    if (equalNoCase(pattern, named.name)) return ofKind(value, named.pattern, named.kind, weeks, clock);
  }
  for (const Choice& choice : choices) {
    if (!equalNoCase(pattern, choice.name)) continue;
    const auto number = numberOf(value, clock);
    return !number ? value.toText() : *number != 0 ? choice.yes : choice.no;
  }
  return ofKind(value, pattern, kindOf(pattern), weeks, clock);
}

}  // namespace voxa::dialect
