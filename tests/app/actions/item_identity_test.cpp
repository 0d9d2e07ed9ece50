#include "app/actions/item_identity.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/support/real_tree.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

TEST(Identify, IsTheDeviceAndInodeOfTheItemItself) {
  const test::TempDirectory directory;
  test::writeFile(directory / "file");
  ASSERT_EQ(symlink("file", (directory / "link").c_str()), 0);
  struct stat status {};
  ASSERT_EQ(lstat((directory / "link").c_str(), &status), 0);
  EXPECT_EQ(identify(directory / "link"), (ItemIdentity{status.st_dev, status.st_ino}));
  EXPECT_NE(identify(directory / "link"), identify(directory / "file"));
  EXPECT_EQ(identifyTarget(directory / "link"), identify(directory / "file"));
}

TEST(Identify, StaysWhenTheItemIsWrittenToOrMoved) {
  const test::TempDirectory directory;
  test::writeFile(directory / "file", "a");
  const auto before = identify(directory / "file");
  ASSERT_TRUE(before);
  test::writeFile(directory / "file", "more");
  EXPECT_EQ(identify(directory / "file"), before);
  ASSERT_EQ(rename((directory / "file").c_str(), (directory / "moved").c_str()), 0);
  EXPECT_EQ(identify(directory / "moved"), before);
}

TEST(Identify, IsNothingForWhatIsNotThere) {
  const test::TempDirectory directory;
  EXPECT_EQ(identify(directory / "missing"), std::nullopt);
  ASSERT_EQ(symlink("nowhere", (directory / "link").c_str()), 0);
  EXPECT_TRUE(identify(directory / "link"));
  EXPECT_EQ(identifyTarget(directory / "link"), std::nullopt);
}

TEST(Identify, ReachesPathsLongerThanTheKernelTakes) {
  const test::TempDirectory directory(test::TempDirectory::Place::Memory);
  test::makeDeepTree(directory.path(), 2100, 1);
  std::string deep = directory.path();
  for (int i = 0; i < 2100; ++i) deep += "/d";
  EXPECT_TRUE(identify(deep + "/bottom"));
  EXPECT_EQ(identify(deep + "/missing"), std::nullopt);
}

}  // namespace
}  // namespace app
