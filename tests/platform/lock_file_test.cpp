#include "platform/lock_file.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "platform/files.h"
#include "temporary_folder.h"

namespace voxa {
namespace {

using Outcome = LockFile::Outcome;
constexpr std::chrono::milliseconds atOnce{0};

TEST(LockFileTest, OneProcessHoldsItAndItIsFreeWhenThatIsGone) {
  const TemporaryFolder folder;
  const std::string path = folder / "x.lck";
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    LockFile own(path);
    const bool held = own.lock(atOnce) == Outcome::held;
    (void)!::write(ready[1], &held, 1);
    ::pause();
  }
  bool held = false;
  ASSERT_TRUE(::read(ready[0], &held, 1) == 1 && held);
  LockFile file(path);
  EXPECT_EQ(file.lock(std::chrono::milliseconds{5}), Outcome::busy);
  EXPECT_EQ(file.lockForAMoment(), Outcome::busy);
  EXPECT_EQ(file.holder(), "test_platform (process " + std::to_string(child) + ")");
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(file.lock(atOnce), Outcome::held);
  EXPECT_EQ(bytesOf(path), std::to_string(::getpid()) + " test_platform\n");

  // This process holds the file several times, by different names of the folder. It is free after the last
  // unlock.
  std::filesystem::create_directory_symlink(folder.path(), folder / "link");
  LockFile other(folder / "link/x.lck");
  EXPECT_EQ(other.lock(atOnce), Outcome::held);
  file.unlock();
  const auto isFree = [&] { return files::OwnedFile::takeOver(path).has_value(); };
  EXPECT_FALSE(isFree());
  other.unlock();
  EXPECT_TRUE(isFree());

  // A deleted file keeps nobody out. A link is not followed. Where the file cannot be made, there is none.
  std::filesystem::remove(path);
  EXPECT_EQ(file.lock(atOnce), Outcome::held);
  EXPECT_FALSE(isFree());
  EXPECT_EQ(LockFile(folder / "no/x.lck").lock(atOnce), Outcome::noFile);
  put(folder / "precious", "data");
  std::filesystem::create_symlink("precious", folder / "l.lck");
  EXPECT_NE(errorOf([&] { return LockFile(folder / "l.lck").lock(atOnce); }), 0);
  EXPECT_EQ(bytesOf(folder / "precious"), "data");
}

}  // namespace
}  // namespace voxa
