// Calls every command of docs/json.md on a demonstration, and compares what it prints with the page.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>

#include "platform/temporary_folder.h"

using Json = nlohmann::ordered_json;
using Keys = std::vector<std::pair<std::string, std::string>>;

namespace {

struct Part {
  std::string command;
  bool array = false;
  Keys keys;
};

std::vector<Part> partsOfPage() {
  std::vector<Part> parts;
  std::ifstream page(JSON_PAGE);
  static const std::regex row(R"(\| (\S+) \| ([^|]+) \| .*\|)");
  for (std::string line; std::getline(page, line);) {
    std::smatch cells;
    if (line.starts_with("## voxa ")) parts.push_back({line.substr(8), false, {}});
    if (parts.empty()) continue;
    if (line.starts_with("Array")) parts.back().array = true;
    if (const auto as = line.find(", as `voxa "); as != std::string::npos) {  // the keys of a part before
      const std::string same = line.substr(as + 11, line.find('`', as + 11) - as - 11);
      const auto found = std::find_if(parts.begin(), parts.end(),
                                      [&](const Part& p) { return p.command.starts_with(same); });
      parts.back().keys = found->keys;
    }
    if (std::regex_match(line, cells, row) && cells[1] != "key" && cells[1] != "---")
      parts.back().keys.emplace_back(cells[1], std::regex_replace(cells[2].str(), std::regex(" +$"), ""));
  }
  return parts;
}

bool isOf(const Json& value, const std::string& type) {
  static const std::regex date(R"(\d{4}-\d\d-\d\d)");
  static const std::regex moment(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d)");
  if (const auto either = type.find(" or "); either != std::string::npos)
    return isOf(value, type.substr(0, either)) || isOf(value, type.substr(either + 4));
  if (type.starts_with("array of "))
    return value.is_array() && std::all_of(value.begin(), value.end(),
                                           [&](const Json& each) { return isOf(each, type.substr(9)); });
  if (type == "null") return value.is_null();
  if (type == "number") return value.is_number();
  if (type == "flag") return value.is_boolean();
  if (type == "objects") return value.is_array();
  if (type == "program")
    return value.is_object() && isOf(value.value("Id", Json()), "number") &&
           isOf(value.value("Name", Json()), "text") &&
           isOf(value.value("Intervals", Json()), "array of text");
  if (type == "object") return value.is_object();
  if (!value.is_string()) return false;
  const std::string text = value;
  if (type == "date") return std::regex_match(text, date);
  if (type == "moment") return std::regex_match(text, moment);
  if (type == "time") return std::regex_match(text, date) || std::regex_match(text, moment);
  return type == "text";
}

/// The keys that begin with a prefix, or those without a point for "".
void compare(const Json& object, const Keys& keys, const std::string& prefix) {
  std::vector<std::string> expected;
  for (const auto& [key, type] : keys) {
    if (!key.starts_with(prefix) || key.find('.', prefix.size()) != std::string::npos) continue;
    const std::string name = key.substr(prefix.size());
    expected.push_back(name);
    if (!object.contains(name)) continue;  // found by the comparison of all names
    EXPECT_TRUE(isOf(object[name], type)) << key << " is " << object[name] << ", not " << type;
    if (type == "object") compare(object[name], keys, key + ".");
    if (type != "objects") continue;
    for (const Json& inner : object[name]) compare(inner, keys, key + ".");
  }
  std::vector<std::string> names;
  for (const auto& [name, value] : object.items()) names.push_back(name);
  EXPECT_EQ(names, expected);
}

std::string output(const std::string& folder, const std::string& command) {
  const std::string line = std::string(VOXA) + " --dir " + folder + " " + command + " 2>/dev/null </dev/null";
  FILE* pipe = popen(line.c_str(), "r");
  std::string text;
  for (int c = 0; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
  (void)pclose(pipe);
  return text;
}

TEST(Json, CommandsPrintWhatThePageSays) {
  const voxa::TemporaryFolder temporary;
  const std::string folder = temporary / "plant";
  ASSERT_NE(output(folder, "init --demo-data"), "");
  output(folder, "download");
  output(folder, "badge create");
  output(folder, "lift add Top --station Local --address 1 --num 9");
  output(folder, "alarm add Siren --type S --station Local --address 1 --num 3");
  const std::vector<Part> parts = partsOfPage();
  ASSERT_GT(parts.size(), 8U);
  for (const Part& part : parts) {
    SCOPED_TRACE("voxa " + part.command);
    const Json printed = Json::parse(output(folder, part.command), nullptr, false);
    ASSERT_FALSE(printed.is_discarded()) << "no JSON";
    ASSERT_EQ(printed.is_array(), part.array);
    if (!part.array) {
      compare(printed, part.keys, "");
      continue;
    }
    for (const Json& object : printed) compare(object, part.keys, "");
  }
}

}  // namespace
