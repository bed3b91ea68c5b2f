#include "platform/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "temporary_folder.h"

namespace voxa {
namespace {

TEST(TextTest, CodePageRoundTripsEveryByte) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const std::string utf8 = fromCp1252(all);
  EXPECT_TRUE(isUtf8(utf8));
  EXPECT_EQ(toCp1252(utf8), all);
  EXPECT_EQ(fromCp1252("\x80\x9F\xE9"), "€Ÿé");
}

TEST(TextTest, RefusesWhatTheCodePageLacks) {
  for (const char* text : {"Łódź", "\xC2\x80", "日本", "a\xF0\x9F\x9A\xAA"}) {
    EXPECT_EQ(errorOf([&] { return toCp1252(text); }), err::invalidArgument) << text;
  }
  // Overlong, surrogate, cut off, stray continuation, beyond Unicode.
  for (const char* broken :
       {"\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xE2\x82", "\x80", "\xF4\x90\x80\x80"}) {
    EXPECT_FALSE(isUtf8(broken));
    EXPECT_EQ(errorOf([&] { return toCp1252(broken); }), err::invalidArgument);
  }
  try {
    (void)toCp1252("A→B");
  } catch (const Error& e) {
    EXPECT_NE(e.description().find("\"→\" (U+2192)"), std::string::npos) << e.description();
  }
}

TEST(TextTest, CaseOfAllLettersOfTheCodePage) {
  EXPECT_EQ(toLower("ÀÞŠŒŽŸ×AZ[ẞ"), "àþšœžÿ×az[ẞ");
  EXPECT_EQ(toUpper("àþšœžÿ÷ßaz{"), "ÀÞŠŒŽŸ÷ßAZ{");
  EXPECT_TRUE(equalNoCase("ÉÇOLE Ÿ", "éçole ÿ"));
  EXPECT_FALSE(equalNoCase("×", "÷"));
  EXPECT_FALSE(equalNoCase("@", "`"));
  EXPECT_FALSE(equalNoCase("a", "a "));
  EXPECT_EQ(toLower("\xFF\xC3x"), "\xFF\xC3x");
}

TEST(TextTest, OrderIsTotalAndKeepsAccentsBesideTheirLetters) {
  const std::vector<std::string> sorted = {"",  "_x", "€",  "10", "9",  "a", "a b", "a-b", "a1", "ab",
                                           "e", "é",  "ea", "éa", "EB", "f", "Z",   "Ž",   "я"};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    for (std::size_t j = 0; j < sorted.size(); ++j) {
      const int order = compareNoCase(sorted[i], sorted[j]);
      EXPECT_EQ(order < 0, i < j) << sorted[i] << ' ' << sorted[j];
      EXPECT_EQ(order > 0, i > j) << sorted[i] << ' ' << sorted[j];
    }
  }
  EXPECT_LT(compareNoCase(std::string("a\0a", 3), std::string("a\0b", 3)), 0);
}

TEST(TextTest, PadsWithZeros) {
  EXPECT_EQ(zeroPadded(7, 3), "007");
  EXPECT_EQ(zeroPadded(1234, 3), "1234");
  EXPECT_EQ(zeroPadded(-5, 2), "-05");
}

}  // namespace
}  // namespace voxa
