#include "simulation/raw_lines.h"

#include "platform/text.h"

namespace voxa::simulation {

namespace {

std::string digits(Chance& chance, int width) {
  std::string text;
  while (width-- > 0) text += static_cast<char>('0' + chance.below(10));
  return text;
}

std::string time(Chance& chance) {
  return zeroPadded(chance.below(24), 2) + zeroPadded(chance.below(60), 2);
}

std::string cardLine(Chance& chance, bool vrmd1) {
  static const std::vector<std::string> commands = {"09", "09", "09", "33", "16", "17",
                                                    "19", "49", "35", "36", "37"};
  static const std::vector<std::string> codes = {"00000000", "00000101", "     102", "0000010:", "00000103",
                                                 "00000000", "0000X103", "0000,103", "       0"};
  static const std::vector<std::string> days = {"000000", "311227", "010100", "310227", "290228"};
  const std::string command = chance.of(commands);
  const std::string number = zeroPadded(chance.below(World::greatestCard + 1), 4);
  std::string value;
  if (command == "09") {
    value = chance.of(codes);
  } else if (command == "16" || command == "17") {
    value = std::to_string(chance.below(3));
  } else if (command == "19") {
    value = digits(chance, 4);
  } else if (command == "49") {
    value = chance.once(2) && !vrmd1 ? "" : std::to_string(chance.below(2));
  } else if (command == "35") {
    value = chance.of(days);
  } else {
    value = "0" + digits(chance, 1);
  }
  const bool plain = command == "37" || value == "00000000";
  const bool separated = chance.once(10) ? !vrmd1 : vrmd1 && !plain;
  return separated ? command + ";01;" + number + ";" + value : command + number + value;
}

std::string line(Chance& chance, bool vrmd1) {
  const std::string number = "0" + digits(chance, 1);
  switch (chance.below(12)) {
    case 0:
    case 1: {
      std::string times;
      for (int n = chance.once(2) ? 4 : 8; n > 0; --n) times += time(chance);
      return "31" + number + times;
    }
    case 2:
      return (chance.once(2) ? "32" : "42") + number + digits(chance, 16);
    case 3: {
      static const std::vector<std::string> days = {"000000", "251200", "030527", "290200", "300226"};
      return "34" + digits(chance, 2) + chance.of(days);
    }
    case 4: {
      const std::string reader = vrmd1 && chance.once(2) ? digits(chance, 1) + "800" : "";
      return "04" + reader + digits(chance, 6) + (chance.once(4) ? "05" : "08") + digits(chance, 8);
    }
    case 5:
      return chance.once(4) ? "\x7f" + digits(chance, 1) : digits(chance, 5);
    default:
      return cardLine(chance, vrmd1);
  }
}

}  // namespace

std::vector<std::string> rawLines(Chance& chance, bool vrmd1) {
  std::vector<std::string> lines;
  for (int count = chance.from(1, 4); count > 0; --count) {
    std::string text = line(chance, vrmd1);
    if (chance.once(15)) text.resize(text.size() - 1);
    lines.push_back(text);
  }
  return lines;
}

}  // namespace voxa::simulation
