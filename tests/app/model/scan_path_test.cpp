#include "app/model/scan_path.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "tests/support/temp_directory.h"

namespace app {
namespace {

using test::TempDirectory;

TEST(AbsolutePath, LeavesOutWhatMeansNothing) {
  EXPECT_EQ(absolutePath("/a/./b//c/"), "/a/b/c");
  EXPECT_EQ(absolutePath("/"), "/");
  EXPECT_EQ(absolutePath("///"), "/");
  EXPECT_EQ(absolutePath("//a"), "/a");
  EXPECT_EQ(absolutePath("/."), "/");
  EXPECT_EQ(absolutePath(""), "");
}

TEST(AbsolutePath, StartsAtTheWorkingDirectory) {
  const std::string here = std::filesystem::current_path().string();
  EXPECT_EQ(absolutePath("x"), here + "/x");
  EXPECT_EQ(absolutePath("."), here);
}

TEST(AbsolutePath, LeavesTheWayUpToTheFileSystem) {
  EXPECT_EQ(absolutePath("/a//link/./../b/"), "/a/link/../b");
  EXPECT_EQ(absolutePath("/.."), "/..");
}

TEST(WithoutWaysUp, GoesUpFromWhereALinkLeads) {
  const TempDirectory dir;
  test::makeDirectory(dir / "a/deep");
  ASSERT_EQ(symlink("a/deep", (dir / "link").c_str()), 0);
  EXPECT_EQ(withoutWaysUp(dir / "link/.."), dir / "a");
  EXPECT_EQ(withoutWaysUp("/.."), "/");
}

TEST(WithoutWaysUp, LeavesEveryOtherPathAlone) {
  const TempDirectory dir;
  test::makeDirectory(dir / "a");
  ASSERT_EQ(symlink("a", (dir / "link").c_str()), 0);
  EXPECT_EQ(withoutWaysUp(dir / "link"), dir / "link");
  EXPECT_EQ(withoutWaysUp(dir / "missing/..b"), dir / "missing/..b");
  EXPECT_EQ(withoutWaysUp(""), "");
}

TEST(WithoutWaysUp, LeavesAPathThatLeadsNowhere) {
  const TempDirectory dir;
  EXPECT_EQ(withoutWaysUp(dir / "missing/../x"), dir / "missing/../x");
}

TEST(ResolveFolder, FollowsEveryLink) {
  const TempDirectory dir;
  test::makeDirectory(dir / "a/b");
  ASSERT_EQ(symlink("a", (dir / "link").c_str()), 0);
  const ResolvedFolder folder = resolveFolder(dir / "link/b");
  EXPECT_EQ(folder.error, 0);
  EXPECT_EQ(folder.path, dir / "a/b");
  EXPECT_GT(folder.birthTime, 0u);
}

TEST(ResolveFolder, SaysWhyThereIsNone) {
  const TempDirectory dir;
  test::writeFile(dir / "file");
  EXPECT_EQ(resolveFolder(dir / "missing").error, ENOENT);
  EXPECT_EQ(resolveFolder(dir / "file").error, ENOTDIR);
  EXPECT_EQ(resolveFolder("").error, ENOENT);
}

}  // namespace
}  // namespace app
