#include "comm/modem_file.h"

#include <algorithm>

#include "platform/database/database.h"
#include "platform/text.h"

namespace voxa {

namespace {

std::vector<std::string> componentsOf(const std::string& path) {
  std::vector<std::string> components;
  for (std::size_t at = 0; at < path.size();) {
    const std::size_t end = std::min(path.find_first_of("/\\", at), path.size());
    const std::string name = path.substr(at, end - at);
    if (name == ".." && !components.empty()) components.pop_back();
    if (!name.empty() && name != "." && name != "..") components.push_back(name);
    at = end + 1;
  }
  return components;
}

/// The names that Windows takes for a device in every folder, whatever their case and extension.
bool isDevice(const std::string& name) {
  std::string stem = name.substr(0, name.find_first_of(".:"));
  stem.erase(stem.find_last_not_of(' ') + 1);
  for (const char* device : {"CON", "PRN", "AUX", "NUL", "CLOCK$", "CONIN$", "CONOUT$"}) {
    if (equalNoCase(stem, device)) return true;
  }
  if (stem.size() < 4 || !(equalNoCase(stem.substr(0, 3), "COM") || equalNoCase(stem.substr(0, 3), "LPT"))) {
    return false;
  }
  const std::string number = stem.substr(3);
  return (number.size() == 1 && number >= "0" && number <= "9") || number == "\u00B9" || number == "\u00B2" ||
         number == "\u00B3";
}

}  // namespace

std::string_view modemFileFault(const std::string& path) {
  if (std::any_of(path.begin(), path.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; })) {
    return "a control character";
  }
  const auto isSeparator = [](char c) { return c == '/' || c == '\\'; };
  if (path.size() >= 2 && isSeparator(path[0]) && isSeparator(path[1])) return "a name on the network";
  const std::vector<std::string> components = componentsOf(path);
  if (std::any_of(components.begin(), components.end(), isDevice)) return "a device";
  // Also by way of "..", from wherever the working folder is.
  const bool leaves = !path.empty() && (isSeparator(path[0]) || path.find("..") != std::string::npos);
  if (leaves && !components.empty() && (components[0] == "dev" || components[0] == "proc")) return "a device";
  return "";
}

std::vector<std::string> stationsWithModemElsewhere(Database& database) {
  std::vector<std::string> names;
  const auto rows = database.openRecordset("select Name, ModemIniFile from Stations order by Id");
  for (; !rows->eof(); rows->moveNext()) {
    const Value file = rows->get("ModemIniFile");
    if (file.isNull()) continue;
    const std::string path = file.toText();
    if (path.find_first_of("/\\:") == std::string::npos && path != ".." && modemFileFault(path).empty())
      continue;
    names.push_back(rows->get("Name").toText());
  }
  return names;
}

}  // namespace voxa
