#include "lookup.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <limits>

#include "access/badge_format.h"
#include "app/qdb.h"
#include "installation.h"
#include "platform/text.h"
#include "refusal.h"

namespace voxa::cli {

namespace {

template <typename Number>
Number whole(const std::string& what, const std::string& text, Number least, Number greatest) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [read, failure] = std::from_chars(text.data(), end, number);
  if (text.empty() || failure == std::errc::invalid_argument || read != end) {
    throw Refusal(what + " is a whole number, not " + (text.empty() ? "nothing" : text));
  }
  if (failure == std::errc() && number >= least && number <= greatest) return number;
  throw Refusal(what + " is a number from " + std::to_string(least) + " to " + std::to_string(greatest) +
                ", not " + text);
}

constexpr std::size_t nameLength = 50;

bool isNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

std::int16_t number16(const std::string& what, const std::string& text) {
  using Limits = std::numeric_limits<std::int16_t>;
  return whole(what, text, Limits::min(), Limits::max());
}

std::int32_t number32(const std::string& what, const std::string& text) {
  using Limits = std::numeric_limits<std::int32_t>;
  return whole(what, text, Limits::min(), Limits::max());
}

std::int16_t numberWithin(const std::string& what, const std::string& text, std::int16_t least,
                          std::int16_t greatest) {
  return whole(what, text, least, greatest);
}

std::string checkedText(const std::string& what, const std::string& text, std::size_t most) {
  if (hasControls(text)) throw Refusal(what + " is one line without control characters");
  if (lengthInCharacters(text) > most) {
    throw Refusal(what + " has up to " + std::to_string(most) + " characters, not " +
                  std::to_string(lengthInCharacters(text)));
  }
  try {
    (void)toCp1252(text);
  } catch (const Error& failure) {
    throw Refusal(failure.description());
  }
  return text;
}

std::string checkedName(const std::string& name) {
  if (name.empty()) throw Refusal("msgDBMandField", "(the name)");
  return checkedText("a name", name, nameLength);
}

std::string checkedPlaceName(const std::string& name) {
  if (name.find('\'') != std::string::npos) {
    throw Refusal(
        "the name of a station or reader has no apostrophe, since no transaction of its doors could be "
        "written into the journal: " +
        name);
  }
  return checkedName(name);
}

bool moveToName(Recordset& rows, const std::string& name) {
  while (!rows.eof() && !equalNoCase(rows.get("Name").toText(), name)) rows.moveNext();
  return !rows.eof();
}

void moveToNumberOrName(Recordset& rows, const char* numberColumn, const std::string& text,
                        const char* mnemonic) {
  if (isNumber(text)) {
    const std::int16_t number = number16("the number", text);
    while (!rows.eof() && rows.get(numberColumn).toInt32() != number) rows.moveNext();
    if (!rows.eof()) return;
    rows.moveFirst();
  }
  if (!moveToName(rows, text)) throw Refusal(mnemonic, text);
}

std::unique_ptr<Recordset> stationNamed(Installation& installation, const std::string& name) {
  auto rows = installation.rows("select * from Stations");
  if (!moveToName(*rows, name)) throw Refusal("msgCantFindStation", name);
  return rows;
}

std::unique_ptr<Recordset> readerNamed(Installation& installation, const std::string& name) {
  auto rows = installation.rows("select * from Readers");
  if (!moveToName(*rows, name)) throw Refusal("msgCantFindReader", name);
  return rows;
}

bool hasBadgeFormats(Installation& installation) {
  const auto tables = installation.qdb().database().tableNames();
  return std::find(tables.begin(), tables.end(), installation.qdb().BadgeFormat().Name()) != tables.end();
}

std::unique_ptr<Recordset> badgeFormats(Installation& installation) {
  if (hasBadgeFormats(installation)) return installation.rows("select * from BadgeFormat order by Id");
  throw Refusal("the installation has no badge formats: create the default one with 'voxa badge create'");
}

void addComponentOptions(CLI::App& command, ComponentChoice& choice) {
  auto* station = command.add_option("--station", choice.station, "Only the controllers of this station");
  command.add_option("--reader", choice.reader, "Only the controller of this reader")->excludes(station);
}

Component chosen(Installation& installation, const ComponentChoice& choice) {
  if (!choice.station.empty()) {
    return {CTStation, stationNamed(installation, choice.station)->get("Name").toText()};
  }
  if (!choice.reader.empty()) {
    return {CTReader, readerNamed(installation, choice.reader)->get("Name").toText()};
  }
  if (installation.rows("select Id from Stations where Active = true")->eof()) {
    throw Refusal("msgNoActiveStation", "");
  }
  return {};
}

}  // namespace voxa::cli
