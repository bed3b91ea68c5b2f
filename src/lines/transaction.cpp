#include "lines/transaction.h"

#include <algorithm>

#include "platform/datetime.h"

namespace voxa {

namespace {

void readType(int code, TransactionLine& out) {
  out.position = 0;
  out.ofCard = false;
  switch (code) {
    case 10:
    case 30:
      out.position = 1;
      return;
    case 12:
      out.position = 2;
      return;
    case 11:
      out.position = 3;
      return;
    case 13:
      out.position = 4;
      return;
    default:
      break;
  }
  // The type codes 0 to 3, 20 to 23 and 24 to 27 number the doors in the controller's own order.
  constexpr std::int16_t doors[] = {1, 3, 2, 4};
  if ((code >= 0 && code <= 3) || (code >= 20 && code <= 27)) {
    out.position = doors[code % 4];
    out.ofCard = true;
  }
}

bool isText(std::string_view data) {
  return std::none_of(data.begin(), data.end(),
                      [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f' || c == '\''; });
}

}  // namespace

std::int16_t digitsToNumber(std::string_view text) {
  if (text.empty() || text.size() > 4) return -1;
  int number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return -1;
    number = number * 10 + (c - '0');
  }
  return static_cast<std::int16_t>(number);
}

bool isBlank(std::string_view line) {
  return line.find_first_not_of(" \t\x1A") == std::string_view::npos;
}

std::string_view decodeLine(std::string_view line, DateTime today, TransactionLine& out) {
  if (line.size() < TransactionLine::width) return "shorter than a transaction";
  const auto number = [&](std::size_t at) { return digitsToNumber(line.substr(at - 1, 2)); };
  out.controller = number(1);
  if (out.controller < 0) return "the controller address is not two digits";
  const std::int16_t type = number(4);
  if (type < 0) return "the transaction type is not two digits";
  out.type = line.substr(3, 2);
  readType(type, out);
  const std::int16_t twoDigitYear = number(10);
  const int month = number(8);
  const int day = number(6);
  const CivilTime when{.year = fullYear(std::max<int>(twoDigitYear, 0), month, day, today),
                       .month = month,
                       .day = day,
                       .hour = number(12),
                       .minute = number(14)};
  if (twoDigitYear < 0 || !isValid(when)) return "no such date or time";
  out.date = toDateTime(when);
  out.data = line.substr(15, 8);
  if (!isText(out.data)) return "the data holds an apostrophe or a control character";
  return "";
}

}  // namespace voxa
