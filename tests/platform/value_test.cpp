#include "platform/value.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/error.h"
#include "temporary_folder.h"

namespace voxa {
namespace {

TEST(ValueTest, WholeNumbersRoundHalfToEvenAndKeepTheirLimits) {
  EXPECT_EQ(Value(2.5).toInt16(), 2);
  EXPECT_EQ(Value(3.5).toInt32(), 4);
  EXPECT_EQ(Value("-2.5").toInt16(), -2);
  EXPECT_EQ(Value(true).toInt32(), -1);
  EXPECT_EQ(Value(32767.4).toInt16(), 32767);
  EXPECT_EQ(errorOf([] { return Value(32767.5).toInt16(); }), err::overflow);
  EXPECT_EQ(Value("-2147483648").toInt32(), INT32_MIN);
  EXPECT_EQ(errorOf([] { return Value(2147483647.5).toInt32(); }), err::overflow);
  EXPECT_EQ(errorOf([] { return Value(std::nan("")).toInt32(); }), err::overflow);
}

TEST(ValueTest, TextIsANumberOnlyInFull) {
  EXPECT_EQ(Value(" +1.5E1 ").toDouble(), 15);
  EXPECT_EQ(Value("1e-400").toDouble(), 0);
  for (const char* none : {"", " ", "-", "1and", "inf", "nan", "+-1", "0x10", "1,5", "1e", "1 2"}) {
    EXPECT_EQ(errorOf([&] { return Value(none).toDouble(); }), err::typeMismatch) << none;
  }
  EXPECT_EQ(errorOf([] { return Value("1e400").toDouble(); }), err::overflow);
  EXPECT_EQ(errorOf([] { return Value().toInt32(); }), err::invalidNull);
  EXPECT_TRUE(Value("tRUE").toBool());
  EXPECT_FALSE(Value("0.0").toBool());
  EXPECT_EQ(errorOf([] { return Value("yes").toBool(); }), err::typeMismatch);
}

TEST(ValueTest, NumbersAsText) {
  EXPECT_EQ(Value(3.0).toText(), "3");
  EXPECT_EQ(Value(-0.0).toText(), "0");
  EXPECT_EQ(Value(0.1).toText(), "0.1");
  EXPECT_EQ(Value(999999999999999.0).toText(), "999999999999999");
  EXPECT_EQ(Value(1e15).toText(), "1E+15");
  EXPECT_EQ(Value(0.1 * 3).toText(), "0.3");
  EXPECT_EQ(Value(-1.0 / 3).toText(), "-0.333333333333333");
  EXPECT_EQ(Value(1.25e-20).toText(), "1.25E-20");
  EXPECT_EQ(Value(std::uint8_t{65}).toText(), "65");
  EXPECT_EQ(Value(false).toText(), "False");
}

TEST(ValueTest, FieldsStoreWhatTheirTypeHolds) {
  EXPECT_EQ(convertForField(Value(), DataType::Boolean, 0), Value(false));
  EXPECT_EQ(convertForField(Value(), DataType::Long, 0), Value());
  EXPECT_EQ(convertForField(Value(2), DataType::Boolean, 0), Value(true));
  EXPECT_EQ(convertForField(Value("255"), DataType::Byte, 0), Value(std::uint8_t{255}));
  EXPECT_EQ(convertForField(Value(812), DataType::Text, 3), Value("812"));
  EXPECT_EQ(convertForField(Value("29/02/2000"), DataType::Date, 0), Value(DateTime{36585}));
  EXPECT_EQ(convertForField(Value(36585), DataType::Date, 0), Value(DateTime{36585}));
  EXPECT_EQ(convertForField(Value(DateTime{36585.5}), DataType::Double, 0), Value(36585.5));

  const auto errorFor = [](const Value& value, DataType type, int size = 0) {
    return errorOf([&] { return convertForField(value, type, size); });
  };
  EXPECT_EQ(errorFor(Value(256), DataType::Byte), err::overflow);
  EXPECT_EQ(errorFor(Value(-1), DataType::Byte), err::overflow);
  EXPECT_EQ(errorFor(Value(HUGE_VAL), DataType::Double), err::overflow);
  EXPECT_EQ(errorFor(Value(2958466.0), DataType::Date), err::overflow);
  EXPECT_EQ(errorFor(Value("29/02/1900"), DataType::Date), err::dbConversion);
  EXPECT_EQ(errorFor(Value(""), DataType::Integer), err::dbConversion);
}

TEST(ValueTest, TextLengthCountsCharacters) {
  const std::string fiveLetters = "é€éÿŽ";
  EXPECT_EQ(convertForField(fiveLetters, DataType::Text, 5), Value(fiveLetters));
  EXPECT_EQ(errorOf([&] { return convertForField(fiveLetters + "x", DataType::Text, 5); }),
            err::dbTextTooLong);
  EXPECT_EQ(errorOf([] { return convertForField(std::string(256, 'x'), DataType::Text, 0); }),
            err::dbTextTooLong);
  EXPECT_EQ(convertForField(std::string(70000, 'x'), DataType::Memo, 0), Value(std::string(70000, 'x')));
}

}  // namespace
}  // namespace voxa
