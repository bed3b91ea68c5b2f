#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/driver/library_driver.h"
#include "temporary_folder.h"

namespace voxa {
namespace {

/// Sets VOXA_DRIVER for a test.
class NamedDriver {
 public:
  explicit NamedDriver(const std::string& path) { ::setenv("VOXA_DRIVER", path.c_str(), 1); }
  ~NamedDriver() { ::unsetenv("VOXA_DRIVER"); }
  NamedDriver(const NamedDriver&) = delete;
  NamedDriver& operator=(const NamedDriver&) = delete;
};

std::string failure(LibraryDriver& driver, ComCommandsEnum command, int number) {
  try {
    driver.call(command, 1, 41);
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), number);
    return e.description();
  }
  ADD_FAILURE() << "no error";
  return {};
}

TEST(DriverTest, CallsTheLibraryBesideTheProgram) {
  LibraryDriver driver("TwoExports");
  EXPECT_EQ(driver.call(CmReadDate, 3, -95), 205);
  EXPECT_EQ(driver.lastError(), 5);
  EXPECT_EQ(driver.call(CmConnect, INT16_MIN, 7), INT16_MIN);
  EXPECT_EQ(driver.lastError(), 0);
  EXPECT_EQ(failure(driver, CmReadStatus, err::entryPointNotFound),
            "Can't find entry point RDSTAT in TwoExports");
  EXPECT_EQ(failure(driver, CmDisconnect, err::entryPointNotFound),
            "Can't find entry point DISNNECT in TwoExports");
  failure(driver, static_cast<ComCommandsEnum>(9), err::invalidArgument);
}

TEST(DriverTest, AMissingLibraryIsNamedWithWhereItWasLookedFor) {
  LibraryDriver driver("NoSuchDriver");
  const std::string text = failure(driver, CmReadDate, err::fileNotFound);
  EXPECT_NE(text.find("libNoSuchDriver.so"), std::string::npos) << text;
  EXPECT_NE(text.find(std::filesystem::current_path().string()), std::string::npos) << text;
}

TEST(DriverTest, TheEnvironmentNamesTheOnlyPlace) {
  const TemporaryFolder folder;
  const std::string path = folder / "driver.so";
  const NamedDriver named(path);
  LibraryDriver driver("TwoExports");
  EXPECT_NE(failure(driver, CmReadDate, err::fileNotFound).find(path), std::string::npos);
  put(path, "no library");
  EXPECT_NE(failure(driver, CmReadDate, err::fileNotFound).find("file too short"), std::string::npos);
  // Somebody puts the library in its place.
  const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  std::filesystem::copy_file(program / "libTwoExports.so", path,
                             std::filesystem::copy_options::overwrite_existing);
  EXPECT_EQ(driver.call(CmReadDate, 1, 2), 102);
  const NamedDriver relative("driver.so");
  LibraryDriver another("TwoExports");
  EXPECT_NE(failure(another, CmReadDate, err::fileNotFound).find("whole path"), std::string::npos);
}

TEST(DriverTest, AWorkingFolderThatOthersCanWriteGivesNoLibrary) {
  const TemporaryFolder folder;
  const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::string path = folder / "libWorkingFolder.so";
  std::filesystem::copy_file(program / "libTwoExports.so", path);
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  LibraryDriver driver("WorkingFolder");
  using std::filesystem::perms;
  for (const std::string& open : {path, folder.path()}) {
    for (const perms wider : {perms::others_write, perms::group_write}) {
      const auto rights = std::filesystem::status(open).permissions();
      std::filesystem::permissions(open, wider, std::filesystem::perm_options::add);
      EXPECT_NE(failure(driver, CmReadDate, err::fileNotFound).find("others can write"), std::string::npos)
          << open;
      std::filesystem::permissions(open, rights);
    }
  }
  std::filesystem::create_symlink(path, folder / "libLinked.so");
  LibraryDriver linked("Linked");
  EXPECT_NE(failure(linked, CmReadDate, err::fileNotFound).find("a link"), std::string::npos);
  EXPECT_EQ(driver.call(CmReadDate, 1, 2), 102);
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace voxa
