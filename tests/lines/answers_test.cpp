// What comes back over a line, from text to values.

#include <gtest/gtest.h>

#include <new>

#include "lines/station_result.h"
#include "lines/transaction.h"
#include "platform/datetime.h"

namespace voxa {
namespace {

const DateTime today = toDateTime({2026, 12, 24});

TEST(StationResultLines, ADateLineOfNoControllerWritesNowhere) {
  // Made where a date of controller 0 would stand in the statuses, and one of 17 behind the object.
  alignas(StationResult) std::array<unsigned char, sizeof(StationResult) + 16> memory{};
  auto* const result = new (memory.data()) StationResult;
  result->takeStatuses("12X6");
  for (const char* line : {"    0   0130290224", "    17  0130290224", "    -1  0130290224", "    2", ""}) {
    result->takeDate(line, today);
  }
  EXPECT_TRUE(result->answered(1) && result->failed(2) && result->failed(4));
  EXPECT_FALSE(result->answered(3) || result->failed(3) || result->failed(5));
  EXPECT_TRUE(
      std::none_of(result->dates.begin(), result->dates.end(), [](const auto& date) { return date; }));
  EXPECT_TRUE(
      std::all_of(memory.begin() + sizeof(StationResult), memory.end(), [](int b) { return b == 0; }));
}

TEST(StationResultLines, TheFirstDateOfAControllerCounts) {
  StationResult result;
  for (const char* line : {"    16  1805241226 and more", "    16  0000010126", "    1   2460241226"}) {
    result.takeDate(line, today);
  }
  EXPECT_EQ(shortDate(*result.date(16)) + " " + shortTime(*result.date(16)), "24/12/2026 18:05:00");
  EXPECT_FALSE(result.date(1)) << "there is no such time";
}

TEST(TransactionLines, TheDoorOfAType) {
  const std::pair<const char*, int> doors[] = {
      {"00", 1}, {"01", 3}, {"02", 2}, {"03", 4}, {"10", 1}, {"11", 3}, {"12", 2}, {"13", 4},
      {"20", 1}, {"21", 3}, {"22", 2}, {"23", 4}, {"24", 1}, {"25", 3}, {"26", 2}, {"27", 4},
      {"30", 1}, {"04", 0}, {"05", 0}, {"14", 0}, {"19", 0}, {"28", 0}, {"31", 0}, {"99", 0}};
  for (const auto& [type, door] : doors) {
    TransactionLine line;
    const std::string text = "05 " + std::string(type) + "241226180500081200";
    EXPECT_EQ(decodeLine(text, today, line), "") << type;
    EXPECT_EQ(line.position, door) << type;
    EXPECT_EQ(line.ofCard, door != 0 && type[0] != '1' && type[0] != '3') << type;
    EXPECT_EQ(line.cardNumber(), "0812");
  }
}

}  // namespace
}  // namespace voxa
