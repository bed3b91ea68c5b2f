#include "platform/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/files_platform.h"
#include "platform/full_disk.h"
#include "temporary_folder.h"

namespace voxa {
namespace {

using files::Stream;

class FilesTest : public testing::Test {
 protected:
  [[nodiscard]] static unsigned modeOf(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 0777U : 0U;
  }

  TemporaryFolder folder_;
};

TEST_F(FilesTest, FindsExistingNamesInAnyCase) {
  std::filesystem::create_directories(folder_ / "Data/Journal");
  put(folder_ / "Data/Journal/J00305.DAT", "x");
  EXPECT_EQ(files::native(folder_ / "DATA\\journal\\j00305.Dat"), folder_ / "Data/Journal/J00305.DAT");
  EXPECT_EQ(files::native(folder_ / "data\\New.Txt"), folder_ / "Data/New.Txt");
  EXPECT_EQ(files::native(folder_ / "data\\NoSuch\\JOURNAL"), folder_ / "Data/NoSuch/JOURNAL");
  EXPECT_EQ(files::native(folder_ / "data\\"), folder_ / "Data/");
  put(folder_ / "Data/Journal/J00305.dat", "y");
  put(folder_ / "Data/Journal/j00305.DAT", "z");
  EXPECT_EQ(files::native(folder_ / "data/journal/J00305.dat"), folder_ / "Data/Journal/J00305.dat");
  EXPECT_EQ(files::native(folder_ / "data/journal/J00305.Dat"), folder_ / "Data/Journal/J00305.DAT");
  EXPECT_TRUE(files::folderExists(folder_ / "DATA"));
  EXPECT_FALSE(files::exists(""));
}

TEST_F(FilesTest, AFolderWhoseNameHasABackslashIsItself) {
  std::filesystem::create_directories(folder_ / "pl/ant");
  std::filesystem::create_directories(folder_ / "pl\\ant");
  put(folder_ / "pl/ant/KRV.mdb", "composed");
  EXPECT_EQ(files::native(folder_ / "pl\\ant\\krv.MDB"), folder_ / "pl\\ant/krv.MDB");
  put(folder_ / "pl\\ant/KRV.mdb", "literal");
  EXPECT_EQ(files::native(folder_ / "pl\\ant\\krv.MDB"), folder_ / "pl\\ant/KRV.mdb");
  EXPECT_EQ(files::native(folder_ / "pl/ant\\krv.MDB"), folder_ / "pl/ant/KRV.mdb");
}

TEST_F(FilesTest, NothingIsOpenedThroughALinkAndNoPipeIsWaitedFor) {
  put(folder_ / "mine.txt", "mine");
  std::filesystem::create_symlink(folder_ / "mine.txt", folder_ / "S001.ini");
  std::filesystem::create_symlink(folder_ / "none.txt", folder_ / "COM.LOG");
  ASSERT_EQ(::mkfifo((folder_ / "COMMAND.TXT").c_str(), 0600), 0);
  for (const char* name : {"S001.ini", "COM.LOG", "COMMAND.TXT"}) {
    for (const auto mode : {Stream::Mode::read, Stream::Mode::write, Stream::Mode::append}) {
      EXPECT_EQ(errorOf([&] { return Stream(folder_ / name, mode), 0; }), err::pathAccess) << name;
    }
    EXPECT_FALSE(files::isPlain(folder_ / name));
  }
  EXPECT_EQ(bytesOf(folder_ / "mine.txt"), "mine");
  EXPECT_FALSE(files::exists(folder_ / "none.txt"));
  EXPECT_EQ(Stream(folder_ / "S001.ini", Stream::Mode::read, Stream::Kind::any).readLine(), "mine");
}

TEST_F(FilesTest, AFolderIsTakenWhereOneAccountAloneCanWrite) {
  const std::string inner = folder_ / "plant";
  files::makeFolders(inner + "/a/b");
  EXPECT_EQ(modeOf(inner + "/a"), 0700U);
  EXPECT_EQ(files::folderFault(inner, false), "");
  const std::pair<const char*, mode_t> wider[] = {{"everybody can write", 0707},
                                                  {"the group can write", 0770}};
  for (const auto& [fault, mode] : wider) {
    for (const std::string& changed : {inner, std::string(folder_.path())}) {
      ASSERT_EQ(::chmod(changed.c_str(), mode), 0);
      EXPECT_NE(files::folderFault(inner, false).find(fault), std::string::npos) << changed;
      EXPECT_EQ(files::folderFault(inner, true).empty(), mode == 0770);
      ASSERT_EQ(::chmod(changed.c_str(), 0700), 0);
    }
  }
  if (::geteuid() != 0) return;
  // The administrator may work in an operator's folder, and the files there stay the operator's. Below a
  // stranger's folder he may not.
  constexpr uid_t operatorId = 4711;
  ASSERT_EQ(::chown(inner.c_str(), operatorId, operatorId), 0);
  EXPECT_EQ(files::folderFault(inner, false), "");
  put(folder_ / "saved.mdb", "saved");
  files::copy(folder_ / "saved.mdb", inner + "/KRV.mdb");
  files::makeFolder(inner + "/Backup");
  for (const char* made : {"/KRV.mdb", "/Backup"}) {
    struct stat info {};
    ASSERT_EQ(::stat((inner + made).c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, operatorId) << made;
  }
  ASSERT_EQ(::chown((inner + "/a").c_str(), operatorId + 1, operatorId), 0);
  EXPECT_NE(files::folderFault(inner + "/a/b", false), "");
}

TEST_F(FilesTest, RelativePathsStartAtTheCurrentFolder) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  put("Command.TXT", "x");
  const std::string found = files::native("COMMAND.txt");
  const std::string current = files::currentFolder();
  std::filesystem::current_path(before);
  EXPECT_EQ(found, "Command.TXT");
  EXPECT_EQ(current, std::filesystem::canonical(folder_.path()));
}

TEST_F(FilesTest, MovesAndDeletes) {
  put(folder_ / "a.txt", "a");
  put(folder_ / "B.txt", "b");
  EXPECT_EQ(errorOf([&] { return files::rename(folder_ / "a.txt", folder_ / "b.TXT"), 0; }), err::fileExists);
  EXPECT_EQ(bytesOf(folder_ / "B.txt"), "b");
  EXPECT_EQ(errorOf([&] { return files::rename(folder_ / "none", folder_ / "c"), 0; }), err::fileNotFound);
  EXPECT_EQ(errorOf([&] { return files::rename(folder_ / "a.txt", folder_ / "no/c"), 0; }),
            err::pathNotFound);
  files::rename(folder_ / "A.TXT", folder_ / "c");
  EXPECT_EQ(files::list(folder_.path()), (std::vector<std::string>{"B.txt", "c"}));
  files::remove(folder_ / "C");
  EXPECT_EQ(errorOf([&] { return files::remove(folder_ / "c"), 0; }), err::fileNotFound);
  files::makeFolder(folder_ / "sub");
  EXPECT_EQ(errorOf([&] { return files::makeFolder(folder_ / "SUB"), 0; }), err::pathAccess);
  EXPECT_EQ(errorOf([&] { return files::makeFolder(folder_ / "no/sub"), 0; }), err::pathNotFound);
  EXPECT_EQ(errorOf([&] { return files::remove(folder_ / "sub"), 0; }), err::pathAccess);
  EXPECT_EQ(errorOf([&] { return files::list(folder_ / "no"); }), err::pathNotFound);
}

TEST_F(FilesTest, NewFilesAreTheirOwnersAlone) {
  files::createNew(folder_ / "new.mdb");
  EXPECT_EQ(modeOf(folder_ / "new.mdb"), 0600U);
  EXPECT_EQ(errorOf([&] { return files::createNew(folder_ / "NEW.MDB"), 0; }), err::fileExists);
  Stream(folder_ / "cards.txt", Stream::Mode::write).close();
  EXPECT_EQ(modeOf(folder_ / "cards.txt"), 0600U);
  files::copy(folder_ / "cards.txt", folder_ / "copy.txt");
  EXPECT_EQ(modeOf(folder_ / "copy.txt"), 0600U);
}

TEST_F(FilesTest, AFailedCopyLeavesTheTargetAsItWas) {
  put(folder_ / "from", std::string(200000, 'n'));
  put(folder_ / "To", "old");
  {
    const test::FullDisk full(100000);
    EXPECT_EQ(errorOf([&] { return files::copy(folder_ / "from", folder_ / "to"), 0; }), err::diskFull);
  }
  EXPECT_EQ(bytesOf(folder_ / "To"), "old");
  EXPECT_EQ(files::list(folder_.path()), (std::vector<std::string>{"To", "from"}));

  files::copy(folder_ / "FROM", folder_ / "to");
  EXPECT_EQ(bytesOf(folder_ / "To"), std::string(200000, 'n'));
  EXPECT_EQ(errorOf([&] { return files::copy(folder_ / "none", folder_ / "to"), 0; }), err::fileNotFound);
  EXPECT_EQ(errorOf([&] { return files::copy(folder_ / "from", folder_ / "no/to"), 0; }), err::pathNotFound);
  EXPECT_EQ(errorOf([&] { return files::copy(folder_ / "from", folder_.path()), 0; }), err::pathAccess);
}

TEST_F(FilesTest, TheNextCopyDeletesWhatKilledOnesLeft) {
  put(folder_ / "from", "new");
  int error = 0;
  std::FILE* underWay = files::openOwned(folder_ / "to~3", error);  // another process is copying
  ASSERT_NE(underWay, nullptr);
  for (int n = 0; n < 1000; ++n) {
    if (n != 3) put(folder_ / ("to~" + std::to_string(n)), "half");
  }
  for (const char* name : {"to~new", "to~", "to~1x", "toe~1"}) put(folder_ / name, "somebody's");
  std::filesystem::create_symlink("from", (folder_ / "to~1000"));
  files::copy(folder_ / "from", folder_ / "to");
  EXPECT_EQ(bytesOf(folder_ / "to"), "new");
  EXPECT_EQ(files::list(folder_.path()),
            (std::vector<std::string>{"from", "to", "toe~1", "to~", "to~1000", "to~1x", "to~3", "to~new"}));
  std::fclose(underWay);
}

TEST_F(FilesTest, ReadsLinesWhateverEndsThem) {
  // A CR LF across the reading block, NUL and Ctrl-Z, a last line without an end.
  const std::string longLine(65535, '0');
  put(folder_ / "f", longLine + "\r\none\rtwo\n\r\n" + std::string("a\0\x1A", 3));
  Stream in(folder_ / "f", Stream::Mode::read);
  EXPECT_EQ(in.readLine(), longLine);
  for (const char* line : {"one", "two", ""}) EXPECT_EQ(in.readLine(), line);
  EXPECT_FALSE(in.atEnd());
  EXPECT_EQ(in.readLine(), std::string("a\0\x1A", 3));
  EXPECT_TRUE(in.atEnd());
  EXPECT_EQ(errorOf([&] { return in.readLine(); }), err::readPastEnd);

  std::string zeros;
  zeros.resize(10'000'000);
  put(folder_ / "zeros", zeros);
  EXPECT_EQ(Stream(folder_ / "zeros", Stream::Mode::read).readLine().size(), zeros.size());
}

TEST_F(FilesTest, ReadsItems) {
  put(folder_ / "f", " 12 , \"a, b\" ,x\"y,z\"\r\n,\"\"\n\"open, end\nlast");
  Stream in(folder_ / "f", Stream::Mode::read);
  for (const char* item : {"12", "a, b", "x\"y", "z\"", "", "", "\"open, end", "last"})
    EXPECT_EQ(in.readItem(), item);
  EXPECT_EQ(errorOf([&] { return in.readItem(); }), err::readPastEnd);
}

TEST_F(FilesTest, StreamsAppendAndEmpty) {
  Stream(folder_ / "log", Stream::Mode::append).write("one\r\n");
  Stream(folder_ / "LOG", Stream::Mode::append).write("two\r\n");
  EXPECT_EQ(bytesOf(folder_ / "log"), "one\r\ntwo\r\n");
  Stream(folder_ / "Log", Stream::Mode::write).write("x");
  EXPECT_EQ(bytesOf(folder_ / "log"), "x");
}

TEST_F(FilesTest, StreamFailuresAreRaised) {
  Stream full("/dev/full", Stream::Mode::write, Stream::Kind::any);
  full.write("x");
  EXPECT_EQ(errorOf([&] { return full.close(), 0; }), err::diskFull);
  EXPECT_EQ(errorOf([&] { return full.write("x"), 0; }), err::badFileNumber);
  EXPECT_EQ(errorOf([&] { return full.close(), 0; }), 0);

  Stream out(folder_ / "f", Stream::Mode::write);
  EXPECT_EQ(errorOf([&] { return out.readLine(); }), err::badFileMode);
  Stream in(folder_ / "f", Stream::Mode::read);
  EXPECT_EQ(errorOf([&] { return in.write("x"), 0; }), err::badFileMode);
  const auto open = [&](const char* name, Stream::Mode mode) {
    return errorOf([&] { return Stream(folder_ / name, mode).atEnd(); });
  };
  EXPECT_EQ(open("none", Stream::Mode::read), err::fileNotFound);
  EXPECT_EQ(open("", Stream::Mode::read), err::pathAccess);
  EXPECT_EQ(open("no/f", Stream::Mode::append), err::pathNotFound);
}

}  // namespace
}  // namespace voxa
