#include "files/seq_file.h"

#include <filesystem>

#include "comm/com.h"
#include "files/command_file.h"
#include "files/conversions.h"
#include "platform/full_disk.h"
#include "support/installation_test.h"

namespace voxa {
namespace {

class SeqFileTest : public test::InstallationTest {
 protected:
  void SetUp() override {
    createInstallation();
    file.Name("f.txt");
  }
  template <typename Work>
  static Error raisedBy(Work&& work) {
    try {
      work();
    } catch (const Error& e) {
      return e;
    }
    return {0, "nothing was raised"};
  }
  SeqFile file{*library};
};

TEST_F(SeqFileTest, LinesAreWrittenAppendedAndRead) {
  file.fopen("w");
  file.fprint("\xc3\xa9,7");  // the é is one byte in the file
  file.fopen("R");            // closes, then appends like any mode but "r" and "w"
  write("other", "b\n40000,True\nx,2.5,4,70000,1.5,2/1/2026");
  file.appendFile("other");
  write("other", "");
  file.appendFile("other");
  EXPECT_EQ(raisedBy([&] { file.appendFile("missing"); }).number(), err::badFileNumber);
  {
    SeqFile second(*library);
    second.Name("other");
    second.fopen();
    EXPECT_NE(second.ch(), file.ch());
    second.fprint("closed by its end");
  }
  EXPECT_EQ(textOf("other"), "closed by its end\r\n");
  file.fclose();
  EXPECT_EQ(file.ch(), 0);
  EXPECT_EQ(textOf("f.txt"), "\xe9,7\r\nb\r\n40000,True\r\nx,2.5,4,70000,1.5,2/1/2026\r\n");

  file.fopen("r");
  const Value wanted[] = {"\xc3\xa9",      std::int16_t{7},     "b", std::int32_t{40000}, true, "x", 2.5,
                          std::uint8_t{4}, std::int32_t{70000}, 1.5, DateTime{46024}};
  const Value variables[] = {"",  std::int16_t{0}, "", {}, false, {}, {}, std::uint8_t{0}, std::int32_t{0},
                             0.0, DateTime{}};
  for (std::size_t i = 0; i < std::size(wanted); ++i) {
    Value item = variables[i];
    EXPECT_FALSE(file.fEOF());
    file.finput(item);
    EXPECT_EQ(item, wanted[i]);
  }
  EXPECT_TRUE(file.fEOF());
}

TEST_F(SeqFileTest, FailuresNameTheFileAndWhatFailed) {
  std::filesystem::create_directory("folder");
  write("empty", "");
  const struct {
    const char *name, *mode;
    int number;
    const char* start;
  } cases[] = {
      {"missing", "r", err::badFileNumber, "Can't read from file missing\r\nBad file name or number"},
      {"empty", "r", err::readPastEnd, "Can't read from file empty\r\n"},
      {"no\\f", "w", err::badFileNumber, "Can't write into file no\\f\r\nBad file name or number"},
      {"folder", "", err::badFileNumber, "Can't write into file folder\r\nBad file name or number"},
      {"full", "w", err::diskFull, "Can't write into file full\r\n"}};
  for (const auto& c : cases) {
    file.Name(c.name);
    ASSERT_NO_THROW(file.fopen(c.mode)) << c.name;
    EXPECT_NE(file.ch(), 0);
    const test::FullDisk full;
    const Error raised = raisedBy([&] {
      if (*c.mode == 'r') (void)file.flineInput();
      file.fprint("xx");
      file.fclose();
    });
    EXPECT_EQ(raised.number(), c.number) << c.name;
    EXPECT_TRUE(raised.description().starts_with(c.start)) << raised.description();
  }
}

TEST_F(SeqFileTest, TheCommandFileEndsInAnEmptyLine) {
  std::filesystem::create_directory("work");
  glob->Com().Chemin = folder + "\\work";
  CommandFile& commands = library->CommandFile();
  glob->Com().Chemin = folder;  // this is too late, the file has its place
  commands.fopen();
  commands.fprint("");
  EXPECT_FALSE(commands.isFull);
  commands.fprint("A");
  commands.fprint("B");
  commands.fclose();
  commands.fclose();
  EXPECT_TRUE(commands.isFull);
  EXPECT_EQ(textOf("work/COMMAND.TXT"), "A\r\nB\r\n\r\n");
  commands.fopen();
  EXPECT_FALSE(commands.isFull);
  commands.fclose();
  EXPECT_EQ(textOf("work/COMMAND.TXT"), "\r\n");

  // A full disk breaks off a write. The next download must not fail because of that.
  const test::FullDisk full;
  commands.fopen();
  commands.fprint(std::string(1000000, '3'));
  EXPECT_EQ(raisedBy([&] { commands.fclose(); }).number(), err::diskFull);
  ASSERT_NO_THROW(commands.fopen());
}

TEST(Conversions, NumbersAndBits) {
  EXPECT_EQ(nullToInt({}), 0);
  EXPECT_EQ(nullToInt(std::int32_t{-32768}), -32768);
  EXPECT_THROW((void)nullToInt(std::int32_t{32768}), Error);
  EXPECT_EQ(hexToBin("0123456789ABCDEF"), "0000000100100011010001010110011110001001101010111100110111101111");
  for (const char* bad : {"", "a", "1a", "G0", " 1"}) EXPECT_THROW((void)hexToBin(bad), Error) << bad;
  const std::int32_t toggled[][2] = {{-1, 65535},     {65535, -1},      {-32768, 32768},
                                     {32768, -32768}, {100, 100},       {0, 0},
                                     {32767, 32767},  {-32769, -98305}, {70000, 4464}};
  for (const auto& [value, other] : toggled) EXPECT_EQ(toggleSign16(value), other);
  EXPECT_THROW((void)toggleSign16(INT32_MIN), Error);
}

}  // namespace
}  // namespace voxa
