#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <string>
#include <vector>

#include "app/actions/process.h"
#include "app/actions/trash.h"
#include "tests/app/actions/trash_fixture.h"
#include "tests/support/child.h"
#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"

// Another program of the same specification reads what is written here: trash-list and
// trash-restore of trash-cli. It takes paths for UTF-8, so others are left to the records' own
// tests.

namespace app {
namespace {

const std::vector<std::string> kNames = {"plain.txt",
                                         "a b.txt",
                                         "\xc3\xa9t\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac",
                                         "100%41 #?&=:;+",
                                         "two\nlines",
                                         ".hidden",
                                         "it's \"quoted\" \\ $HOME",
                                         "tab\there",
                                         "-n"};

/// What may not change on the way into the trash and back.
struct ItemState {
  ItemIdentity identity;
  mode_t mode = 0;
  timespec changed{};
  std::string content;

  explicit ItemState(const std::string& path) : identity(identify(path).value()) {
    struct stat status {};
    lstat(path.c_str(), &status);
    mode = status.st_mode;
    changed = status.st_mtim;
    content = test::readFile(path);
  }
  friend bool operator==(const ItemState& a, const ItemState& b) {
    return a.identity == b.identity && a.mode == b.mode && a.content == b.content &&
           a.changed.tv_sec == b.changed.tv_sec && a.changed.tv_nsec == b.changed.tv_nsec;
  }
};

struct TrashReadersTest : testing::Test {
  void SetUp() override {
    for (const char* program : {"trash-list", "trash-restore"}) {
      if (!isOnPath(program)) GTEST_SKIP() << program << " is not installed (trash-cli)";
    }
    environment.set("LC_ALL", "C.UTF-8");
  }

  /// What trash-list prints.
  std::string listed() const {
    test::Child list({"trash-list"}, "/dev/null", work / "listed");
    EXPECT_EQ(list.wait(), 0);
    return test::readFile(work / "listed");
  }
  /// Has trash-restore put back what lay at `path`, which no other path in the trash begins with.
  void restore(const std::string& path) const {
    test::writeFile(work / "answer", "0\n");
    test::Child program({"trash-restore", path}, work / "answer", work / "asked");
    EXPECT_EQ(program.wait(), 0) << path;
  }

  test::PrivateHome home;
  test::ScopedEnvironment environment;
  test::TempDirectory work;
};

TEST_F(TrashReadersTest, ListAndRestoreByteForByteWhatWasTrashed) {
  std::vector<ItemState> before;
  std::string content;
  for (const std::string& name : kNames) {
    content += std::string("\0\xff\n", 3) + name;
    const std::string path = work / ("items/" + name);
    test::writeFile(path, content);
    ASSERT_EQ(chmod(path.c_str(), 0751), 0);
    before.emplace_back(path);
    std::string error;
    ASSERT_TRUE(moveToTrash(path, &error)) << error;
  }
  const std::string list = listed();
  for (const std::string& name : kNames) {
    EXPECT_NE(list.find(" " + (work / ("items/" + name)) + "\n"), std::string::npos) << list;
  }
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    const std::string path = work / ("items/" + kNames[i]);
    restore(path);
    ASSERT_TRUE(test::exists(path)) << path;
    EXPECT_TRUE(ItemState(path) == before[i]) << path;
  }
  EXPECT_EQ(test::namesIn(home.path() + "/.local/share/Trash/files"), std::vector<std::string>{});
  EXPECT_EQ(test::namesIn(home.path() + "/.local/share/Trash/info"), std::vector<std::string>{});
}

TEST_F(TrashReadersTest, TellItemsOfTheSameNameApart) {
  for (const char* folder : {"p", "q", "r"}) {
    test::writeFile(work / (std::string(folder) + "/report.pdf"), folder);
    ASSERT_TRUE(moveToTrash(work / (std::string(folder) + "/report.pdf"), nullptr));
  }
  for (const char* folder : {"q", "r", "p"}) {
    restore(work / (std::string(folder) + "/report.pdf"));
    EXPECT_EQ(test::readFile(work / (std::string(folder) + "/report.pdf")), folder);
  }
}

TEST_F(TrashReadersTest, RestoreAFolderWithAllItHolds) {
  test::writeFile(work / "folder/a/b", "content");
  ASSERT_EQ(symlink("a/b", (work / "folder/link").c_str()), 0);
  ASSERT_TRUE(moveToTrash(work / "folder", nullptr));
  ASSERT_FALSE(test::exists(work / "folder"));
  restore(work / "folder");
  EXPECT_EQ(test::readFile(work / "folder/link"), "content");
}

TEST_F(TrashReadersTest, ShowTheTimeOfDeletion) {
  environment.set("TZ", "XYZ-2");
  test::writeFile(work / "a");
  const std::time_t before = std::time(nullptr);
  ASSERT_TRUE(moveToTrash(work / "a", nullptr));
  const std::string list = listed();
  std::tm when{};
  ASSERT_NE(strptime(list.c_str(), "%Y-%m-%d %H:%M:%S", &when), nullptr) << list;
  const std::time_t shown = timegm(&when) - 2 * 60 * 60;
  EXPECT_GE(shown, before);
  EXPECT_LE(shown, std::time(nullptr));
}

TEST_F(TrashReadersTest, FindTheTrashOfAVolume) {
  const std::string volume = work / "disk";
  test::makeDirectory(volume);
  test::expectInPrivateMounts([&] {
    test::mountMemory(volume);
    const std::string path = volume + "/x y/\xc3\xa9";
    test::writeFile(path, "content");
    std::string error;
    if (!moveToTrash(path, &error)) return "said: " + error;
    const std::string list = listed();
    if (list.find(" " + path + "\n") == std::string::npos) return "listed: " + list;
    restore(path);
    return std::string(test::exists(path) && test::readFile(path) == "content" ? "" : "lost it");
  });
}

}  // namespace
}  // namespace app
