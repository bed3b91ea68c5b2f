// What a person and a program get of the same cells.

#include <gtest/gtest.h>

#include <sstream>

#include "output/table_layout.h"
#include "output/table_output.h"
#include "output/text_width.h"
#include "platform/datetime.h"

using namespace voxa;
using namespace voxa::cli;

namespace {

std::vector<std::string> nobody() {
  return {};
}

TEST(Output, ProgramsGetNumbersArraysAndIsoDates) {
  const DateTime day = toDateTime({2026, 12, 24, 0, 0, 0});
  const DateTime minute = toDateTime({2026, 12, 24, 18, 5, 0});
  TableOutput table({"Number", "Doors", "Until", "Last contact", "At", "None", "Pin"});
  table.add({std::int16_t{12}, std::vector<std::string>{"Front", "Back \"2\""}, day, minute,
             Cell::moment(day), nobody(), Value()});
  std::ostringstream forPrograms;
  table.print(forPrograms, true);
  EXPECT_EQ(forPrograms.str(), R"([
  {
    "Number": 12,
    "Doors": ["Front","Back \"2\""],
    "Until": "2026-12-24",
    "LastContact": "2026-12-24T18:05:00",
    "At": "2026-12-24T00:00:00",
    "None": [],
    "Pin": null
  }
]
)");
  std::ostringstream forPeople;
  table.print(forPeople, false);
  EXPECT_EQ(forPeople.str(),
            "Number  Doors            Until       Last contact         At                None  Pin\n"
            "    12  Front, Back \"2\"  24/12/2026  24/12/2026 18:05:00  24/12/2026 00:00  -     -\n");
}

TEST(Output, OneThingHasALineForEachField) {
  std::ostringstream out;
  printOne(out, {"Name", "In doubt", "Doors"}, {"Ada", true, "Front\nBack"}, false);
  EXPECT_EQ(out.str(), "Name      Ada\nIn doubt  yes\nDoors     Front\n          Back\n");
}

TEST(Output, WideAndCombiningCharactersCountByTheirPlaces) {
  EXPECT_EQ(textWidth("Zo\xc3\xab"), 3U);
  EXPECT_EQ(textWidth("Zoe\xcc\x88"), 3U);
  EXPECT_EQ(textWidth("\xe9\x96\x80 1"), 4U);
}

TEST(Output, WrappedTextLosesNothing) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(wrapped("Front door, Back door", 11), (Lines{"Front door,", "Back door"}));
  EXPECT_EQ(wrapped("Warehouse ramp", 5), (Lines{"Wareh", "ouse", "ramp"}));
  EXPECT_EQ(wrapped("\xe9\x96\x80\xe9\x96\x80\xe9\x96\x80", 5),
            (Lines{"\xe9\x96\x80\xe9\x96\x80", "\xe9\x96\x80"}));
  EXPECT_EQ(wrapped("", 5), (Lines{""}));
}

TEST(Output, ATableFitsTheTerminalOrIsNone) {
  const std::vector<std::vector<std::string>> columns = {{"Controller", "1"},
                                                         {"Readers", "Main entrance, Back door"},
                                                         {"ToSend", "yes"},
                                                         {"First", "00:00-12:00 13:00-24:00"}};
  std::vector<ColumnNeed> needs(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    needs[i].addHeading(columns[i][0]);
    needs[i].addCell(columns[i][1]);
  }
  using Widths = std::vector<std::size_t>;
  const std::pair<std::size_t, Widths> fitting[] = {{80, {10, 24, 6, 23}}, {60, {10, 15, 6, 23}},
                                                    {56, {10, 12, 5, 23}}, {42, {10, 11, 4, 11}},
                                                    {38, {10, 10, 4, 11}}, {36, {}}};
  for (const auto& [places, widths] : fitting) EXPECT_EQ(tableLayout(needs, places).widths, widths) << places;
  EXPECT_EQ(headingLines("ToSendNow", 6), (std::vector<std::string>{"ToSend", "Now"}));
}

}  // namespace
