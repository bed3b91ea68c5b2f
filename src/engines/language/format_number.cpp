#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "engines/language/format.h"
#include "platform/error.h"
#include "platform/text.h"

namespace voxa::dialect {

namespace {

/// A number that is not negative, in decimal: 0.d1d2d3... times ten to the power of `point`. It has the 15
/// digits that a double holds for certain, so that 1.005 rounds up.
struct Decimal {
  explicit Decimal(double number) {
    if (number == 0) return;
    const std::string text = certainDigits(number);
    const std::size_t e = text.find('e');
    for (const char c : text.substr(0, e)) {
      if (c != '.') digits += c;
    }
    point = std::atoi(text.c_str() + e + 1) + 1;
    trim();
  }

  /// Keeps so many digits behind the decimal point, rounded half up.
  void round(int places) {
    const int kept = point + places;
    if (kept >= static_cast<int>(digits.size())) return;
    const bool up = kept >= 0 && digits[static_cast<std::size_t>(kept)] >= '5';
    digits.resize(static_cast<std::size_t>(std::max(kept, 0)));
    if (up) {
      std::size_t i = digits.size();
      while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
      if (i > 0) {
        ++digits[i - 1];
      } else {
        digits.insert(digits.begin(), '1');
        ++point;
      }
    }
    trim();
  }

  /// The digit at a power of ten.
  [[nodiscard]] char at(int power) const {
    const int index = point - 1 - power;
    return index >= 0 && index < static_cast<int>(digits.size()) ? digits[static_cast<std::size_t>(index)]
                                                                 : '0';
  }
  [[nodiscard]] bool isZero() const { return digits.empty(); }
  /// How many digits are behind the decimal point.
  [[nodiscard]] int fraction() const { return std::max(static_cast<int>(digits.size()) - point, 0); }

  std::string digits;
  int point = 0;

 private:
  void trim() {
    while (!digits.empty() && digits.back() == '0') digits.pop_back();
    if (digits.empty()) point = 0;
  }
};

/// A section of a pattern, cut at its decimal point and its exponent.
struct Shape {
  std::vector<PatternCharacter> whole;     // with what is in front of the number
  std::vector<PatternCharacter> fraction;  // without the exponent
  std::vector<PatternCharacter> behind;    // from the exponent on
  bool hasPoint = false;
  bool thousands = false;
  int scale = 0;      // powers of ten that the number is multiplied by
  char exponent = 0;  // the letter as it is written
  bool plus = false;  // the exponent shows its sign also when it is positive
};

bool isPlace(const PatternCharacter& c) {
  return c.is('0') || c.is('#');
}

int placesOf(const std::vector<PatternCharacter>& part) {
  return static_cast<int>(std::count_if(part.begin(), part.end(), isPlace));
}

Shape shapeOf(std::string_view section) {
  Shape shape;
  const std::vector<PatternCharacter> characters = charactersOf(section);
  auto* part = &shape.whole;
  int commas = 0;  // behind the last place
  for (std::size_t i = 0; i < characters.size(); ++i) {
    const PatternCharacter& c = characters[i];
    const bool sign = i + 1 < characters.size() && (characters[i + 1].is('+') || characters[i + 1].is('-'));
    if (c.is('e') && sign && shape.exponent == 0) {
      shape.exponent = c.text[0];
      shape.plus = characters[++i].is('+');
      part = &shape.behind;
    } else if (c.is('.') && !shape.hasPoint && shape.exponent == 0) {
      shape.hasPoint = true;
      part = &shape.fraction;
    } else if (c.is(',') && part == &shape.whole) {
      if (placesOf(shape.whole) > 0) ++commas;
    } else {
      if (isPlace(c) && part == &shape.whole && std::exchange(commas, 0) > 0) shape.thousands = true;
      if (c.is('%')) shape.scale += 2;
      part->push_back(c);
    }
  }
  shape.scale -= 3 * commas;
  return shape;
}

/// The digits in front of the point, from the right, each at its place; what is more at the first place.
std::string wholePart(const Shape& shape, const Decimal& number) {
  int places = placesOf(shape.whole);
  std::string reversed;
  int power = 0;
  const auto put = [&](char digit) {
    if (shape.thousands && power > 0 && power % 3 == 0) reversed += ',';
    reversed += digit;
    ++power;
  };
  while (places == 0 && shape.hasPoint && power < number.point) put(number.at(power));
  for (auto c = shape.whole.rbegin(); c != shape.whole.rend(); ++c) {
    if (!isPlace(*c)) {
      reversed.append(c->text.rbegin(), c->text.rend());
      continue;
    }
    if (c->is('0') || power < number.point) put(number.at(power));
    while (--places == 0 && power < number.point) {
      put(number.at(power));
      ++places;
    }
  }
  return {reversed.rbegin(), reversed.rend()};
}

std::string fractionPart(const Shape& shape, const Decimal& number) {
  std::string out;
  int power = -1;
  for (const PatternCharacter& c : shape.fraction) {
    if (!isPlace(c)) {
      out += c.text;
    } else {
      if (c.is('0') || -power <= number.fraction()) out += number.at(power);
      --power;
    }
  }
  return out;
}

std::string exponentPart(const Shape& shape, int exponent) {
  std::string out(1, shape.exponent);
  if (exponent < 0) out += '-';
  if (exponent >= 0 && shape.plus) out += '+';
  int width = placesOf(shape.behind);
  for (const PatternCharacter& c : shape.behind) {
    if (!isPlace(c)) {
      out += c.text;
    } else if (width > 0) {
      out += zeroPadded(std::abs(exponent), std::exchange(width, 0));
    }
  }
  return out;
}

}  // namespace

std::string formatNumber(double number, std::string_view section) {
  const Shape shape = shapeOf(section);
  Decimal shown(std::fabs(number));
  if (!shown.isZero()) shown.point += shape.scale;
  const int places = placesOf(shape.fraction);
  int exponent = 0;
  if (shape.exponent != 0 && !shown.isZero()) {
    const int before = std::max(placesOf(shape.whole), 1);
    exponent = shown.point - before;
    shown.point = before;
    shown.round(places);
    if (shown.point > before) {  // rounded up to one more digit
      --shown.point;
      ++exponent;
    }
  } else {
    shown.round(places);
  }
  std::string out(number < 0 && !shown.isZero() ? "-" : "");
  out += wholePart(shape, shown);
  if (shape.hasPoint) out += '.';
  out += fractionPart(shape, shown);
  if (shape.exponent != 0) out += exponentPart(shape, exponent);
  return out;
}

}  // namespace voxa::dialect
