#include "base/directories.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "tests/support/temp_directory.h"

namespace base {
namespace {

class ScopedUmask {
 public:
  explicit ScopedUmask(mode_t mask) : before_(umask(mask)) {}
  ~ScopedUmask() { umask(before_); }

 private:
  mode_t before_;
};

unsigned modeOf(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777u : 0;
}

TEST(MakeDirectories, MakesEveryMissingOneForTheOwnerAlone) {
  const test::TempDirectory home;
  ASSERT_TRUE(makeDirectories(home / ".local/share/Trash/files"));
  for (const char* made :
       {".local", ".local/share", ".local/share/Trash", ".local/share/Trash/files"}) {
    EXPECT_EQ(modeOf(home / made), 0700u) << made;
  }
}

TEST(MakeDirectories, GivesTheSameRightsUnderEveryUmask) {
  for (const mode_t mask : {0u, 022u, 077u, 0277u, 0777u}) {
    const test::TempDirectory home;
    const ScopedUmask umask(mask);
    ASSERT_TRUE(makeDirectories(home / "a/b")) << mask;
    EXPECT_EQ(modeOf(home / "a"), 0700u) << mask;
    EXPECT_EQ(modeOf(home / "a/b"), 0700u) << mask;
  }
}

TEST(MakeDirectories, LeavesWhatExistsAsItIs) {
  const test::TempDirectory home;
  ASSERT_EQ(mkdir((home / "a").c_str(), 0700), 0);
  ASSERT_EQ(chmod((home / "a").c_str(), 0755), 0);
  EXPECT_TRUE(makeDirectories(home / "a/b"));
  EXPECT_TRUE(makeDirectories(home / "a/b"));  // done twice
  EXPECT_EQ(modeOf(home / "a"), 0755u);
}

TEST(MakeDirectories, FollowsALinkOnTheWay) {
  const test::TempDirectory home;
  ASSERT_EQ(mkdir((home / "real").c_str(), 0700), 0);
  ASSERT_EQ(symlink("real", (home / "link").c_str()), 0);
  EXPECT_TRUE(makeDirectories(home / "link/inside"));
  EXPECT_EQ(modeOf(home / "real/inside"), 0700u);
}

TEST(MakeDirectories, SucceedsForNoPathTheRootAndSlashesToSpare) {
  const test::TempDirectory home;
  EXPECT_TRUE(makeDirectories(""));
  EXPECT_TRUE(makeDirectories("/"));
  EXPECT_TRUE(makeDirectories(home / "a//b/"));
  EXPECT_EQ(modeOf(home / "a/b"), 0700u);
}

TEST(MakeDirectories, StopsAtTheFirstFailureAndKeepsWhatItMade) {
  const test::TempDirectory home;
  const std::string tooLong(300, 'x');
  EXPECT_FALSE(makeDirectories(home / "a/" + tooLong + "/b"));
  EXPECT_EQ(errno, ENAMETOOLONG);
  EXPECT_EQ(modeOf(home / "a"), 0700u);
}

TEST(MakeDirectories, FailsBelowAFile) {
  const test::TempDirectory home;
  test::writeFile(home / "file");
  EXPECT_FALSE(makeDirectories(home / "file/inside"));
  EXPECT_EQ(errno, ENOTDIR);
}

}  // namespace
}  // namespace base
