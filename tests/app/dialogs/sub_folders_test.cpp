#include "app/dialogs/sub_folders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/file_access.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

using Names = std::vector<std::string>;

class ReadSubFolders : public testing::Test {
 protected:
  void makeFolders(const Names& names) const {
    for (const std::string& name : names) test::makeDirectory(dir_ / name);
  }
  void link(const std::string& target, const std::string& name) const {
    ASSERT_EQ(symlink(target.c_str(), (dir_ / name).c_str()), 0);
  }
  SubFolders subFolders() const { return readSubFolders(dir_.path()); }
  Names names() const {
    Names names;
    for (const SubFolder& folder : subFolders().folders) names.push_back(folder.name);
    return names;
  }

  test::TempDirectory dir_;
};

TEST_F(ReadSubFolders, FindsFoldersAndNothingElse) {
  makeFolders({"a", "b"});
  test::writeFile(dir_ / "file");
  ASSERT_EQ(mkfifo((dir_ / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(names(), (Names{"a", "b"}));
  EXPECT_TRUE(subFolders().readable);
}

TEST_F(ReadSubFolders, LeavesHiddenFoldersOut) {
  makeFolders({".hidden", "..odd", "...", "seen"});
  link("seen", ".link");
  EXPECT_EQ(names(), (Names{"seen"}));
}

TEST_F(ReadSubFolders, FindsNothingWhereAllIsHidden) {
  makeFolders({".a", ".b"});
  EXPECT_TRUE(subFolders().readable);
  EXPECT_EQ(names(), Names{});
}

TEST_F(ReadSubFolders, FollowsLinksToFoldersOnly) {
  makeFolders({"folder"});
  test::writeFile(dir_ / "file");
  link("folder", "to-folder");
  link("to-folder", "to-link");
  link(dir_ / "folder", "to-path");
  link("file", "to-file");
  link("missing", "to-nothing");
  link("to-itself", "to-itself");
  EXPECT_EQ(names(), (Names{"folder", "to-folder", "to-link", "to-path"}));
}

TEST_F(ReadSubFolders, SortsByBytes) {
  makeFolders({"b", "a", "B", "A", "_", "a1", "\xc3\xa9", "\xff", "10", "9"});
  EXPECT_EQ(names(), (Names{"10", "9", "A", "B", "_", "a", "a1", "b", "\xc3\xa9", "\xff"}));
}

TEST_F(ReadSubFolders, KeepsNamesAsTheyAre) {
  makeFolders({"new\nline", "no\xfftext\xc3", " ", std::string(255, 'x')});
  EXPECT_EQ(names(), (Names{" ", "new\nline", "no\xfftext\xc3", std::string(255, 'x')}));
}

TEST_F(ReadSubFolders, CannotReadWhatIsNoFolder) {
  test::writeFile(dir_ / "file");
  for (const std::string& path :
       {dir_ / "file", dir_ / "missing", std::string(), std::string(10'000, '/') + "x"}) {
    const SubFolders result = readSubFolders(path);
    EXPECT_FALSE(result.readable) << path.substr(0, 100);
    EXPECT_TRUE(result.folders.empty());
  }
}

TEST_F(ReadSubFolders, CannotReadAFolderWithoutThePermission) {
  makeFolders({"closed/inner"});
  ASSERT_EQ(chmod((dir_ / "closed").c_str(), 0300), 0);
  bool readable = true;
  test::asOrdinaryUser([&] { readable = readSubFolders(dir_ / "closed").readable; });
  EXPECT_FALSE(readable);
  chmod((dir_ / "closed").c_str(), 0700);
}

TEST_F(ReadSubFolders, TellsWhatMayBeReadAndEntered) {
  makeFolders({"both", "enter", "none", "read"});
  link("none", "to-none");
  link("both", "to-both");
  chmod((dir_ / "read").c_str(), 0400);
  chmod((dir_ / "enter").c_str(), 0100);
  chmod((dir_ / "none").c_str(), 0000);
  std::vector<SubFolder> found;
  test::asOrdinaryUser([&] { found = subFolders().folders; });
  EXPECT_EQ(found, (std::vector<SubFolder>{{"both", true},
                                           {"enter", false},
                                           {"none", false},
                                           {"read", false},
                                           {"to-both", true},
                                           {"to-none", false}}));
}

TEST(PathInside, PutsOneSlashBetween) {
  EXPECT_EQ(pathInside("/home/u", "x"), "/home/u/x");
  EXPECT_EQ(pathInside("/", "usr"), "/usr");
  EXPECT_EQ(pathInside("/a\xff", "b\xfe"), "/a\xff/b\xfe");
}

TEST(PathAround, LosesTheLastComponent) {
  EXPECT_EQ(pathAround("/home/u/x"), "/home/u");
  EXPECT_EQ(pathAround("/home/u/"), "/home");
  EXPECT_EQ(pathAround("/home//u"), "/home");
}

TEST(PathAround, IsTheRootWhenNothingElseIsLeft) {
  for (const char* path : {"/home", "//home", "/home/", "/", "//", "home", ""}) {
    EXPECT_EQ(pathAround(path), "/") << path;
  }
}

}  // namespace
}  // namespace app
