#include "app/actions/trash_directory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "base/file_descriptor.h"
#include "base/file_lock.h"
#include "tests/app/actions/rename_hook.h"
#include "tests/app/actions/trash_fixture.h"
#include "tests/support/file_access.h"
#include "tests/support/real_tree.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

using Names = std::vector<std::string>;

/// A trash and items beside it, on one file system.
struct TrashIntoTest : testing::Test {
  test::TempDirectory work;
  std::string trash = work / "Trash";
  std::string error;

  std::string inFiles(const std::string& name) const { return trash + "/files/" + name; }
  std::string inInfo(const std::string& name) const { return trash + "/info/" + name; }
  Names files() const { return test::namesIn(trash + "/files"); }
  Names records() const { return test::namesIn(trash + "/info"); }

  /// Makes the file, which holds `content`, and trashes it.
  bool trashNew(const std::string& name, const std::string& content = {}) {
    test::writeFile(work / name, content);
    return trashPath(work / name);
  }
  bool trashPath(const std::string& path) {
    error.clear();
    return trashInto(trash, {path}, path, &error);
  }
};

TEST(NameInTrash, HasItsCounterBeforeTheLastDot) {
  EXPECT_EQ(nameInTrash("report.pdf", 0), "report.pdf");
  EXPECT_EQ(nameInTrash("report.pdf", 1), "report.1.pdf");
  EXPECT_EQ(nameInTrash("report.pdf", 9999), "report.9999.pdf");
  EXPECT_EQ(nameInTrash("a.tar.gz", 2), "a.tar.2.gz");
  EXPECT_EQ(nameInTrash("ends.", 1), "ends.1.");
  EXPECT_EQ(nameInTrash(".a.b", 1), ".a.1.b");
}

TEST(NameInTrash, HasItsCounterAtTheEndWhenNoDotStandsInside) {
  EXPECT_EQ(nameInTrash("notes", 0), "notes");
  EXPECT_EQ(nameInTrash("notes", 1), "notes.1");
  EXPECT_EQ(nameInTrash(".bashrc", 1), ".bashrc.1");
}

TEST_F(TrashIntoTest, MovesTheItemAndWritesWhereItLay) {
  ASSERT_TRUE(trashNew("a b.txt", "content"));
  EXPECT_EQ(error, "");
  EXPECT_FALSE(test::exists(work / "a b.txt"));
  EXPECT_EQ(test::readFile(inFiles("a b.txt")), "content");
  EXPECT_EQ(test::pathInRecord(inInfo("a b.txt.trashinfo")), work / "a b.txt");
}

TEST_F(TrashIntoTest, MakesTheTrashForTheUserAlone) {
  ASSERT_TRUE(trashNew("a"));
  for (const std::string& made : {trash, trash + "/files", trash + "/info"}) {
    struct stat status {};
    ASSERT_EQ(stat(made.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u) << made;
  }
}

TEST_F(TrashIntoTest, RecordsThePathItIsTold) {
  test::writeFile(work / "x/y");
  ASSERT_TRUE(trashInto(trash, {work / "x/y"}, "x/\xc3\xa9", &error));
  const std::string record = test::readFile(inInfo("y.trashinfo"));
  EXPECT_TRUE(record.starts_with("[Trash Info]\nPath=x/%C3%A9\nDeletionDate=2")) << record;
}

TEST_F(TrashIntoTest, CountsOnWhenANameIsTaken) {
  for (const char* content : {"0", "1", "2"}) ASSERT_TRUE(trashNew("a b.txt", content));
  EXPECT_EQ(files(), (Names{"a b.1.txt", "a b.2.txt", "a b.txt"}));
  EXPECT_EQ(records(), (Names{"a b.1.txt.trashinfo", "a b.2.txt.trashinfo", "a b.txt.trashinfo"}));
  EXPECT_EQ(test::readFile(inFiles("a b.txt")), "0");
  EXPECT_EQ(test::readFile(inFiles("a b.1.txt")), "1");
  EXPECT_EQ(test::readFile(inFiles("a b.2.txt")), "2");
}

TEST_F(TrashIntoTest, TakesTheFirstNameThatIsFree) {
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(trashNew("notes"));
  ASSERT_EQ(unlink(inFiles("notes.1").c_str()), 0);
  ASSERT_TRUE(trashNew("notes", "new"));
  EXPECT_EQ(test::readFile(inFiles("notes.1")), "new");
}

TEST_F(TrashIntoTest, CountsALinkThatLeadsNowhereAsTaken) {
  test::makeDirectory(trash + "/files");
  ASSERT_EQ(symlink("nowhere", inFiles("a").c_str()), 0);
  ASSERT_TRUE(trashNew("a"));
  EXPECT_EQ(files(), (Names{"a", "a.1"}));
}

TEST_F(TrashIntoTest, WritesOverARecordThatHasNoItem) {
  test::writeFile(inInfo("a.trashinfo"), std::string(1000, 'x'));
  ASSERT_TRUE(trashNew("a"));
  EXPECT_EQ(files(), Names{"a"});
  EXPECT_EQ(test::pathInRecord(inInfo("a.trashinfo")), work / "a");
  EXPECT_LT(test::readFile(inInfo("a.trashinfo")).size(), 200u);
}

TEST_F(TrashIntoTest, MovesFoldersAndLinksThemselves) {
  test::writeFile(work / "folder/inside", "content");
  ASSERT_TRUE(trashPath(work / "folder"));
  EXPECT_EQ(test::readFile(inFiles("folder/inside")), "content");
  test::writeFile(work / "target");
  ASSERT_EQ(symlink((work / "target").c_str(), (work / "link").c_str()), 0);
  ASSERT_TRUE(trashPath(work / "link"));
  EXPECT_TRUE(test::exists(work / "target"));
  struct stat status {};
  ASSERT_EQ(lstat(inFiles("link").c_str(), &status), 0);
  EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(TrashIntoTest, KeepsNamesThatAreNotText) {
  const std::string name = "\xff\n%41 \xc3\xa9";
  ASSERT_TRUE(trashNew(name));
  EXPECT_EQ(files(), Names{name});
  EXPECT_EQ(test::pathInRecord(inInfo(name + ".trashinfo")), work / name);
}

TEST_F(TrashIntoTest, TakesPathsLongerThanTheKernelTakes) {
  const test::TempDirectory memory(test::TempDirectory::Place::Memory);
  trash = memory / "Trash";
  test::makeDeepTree(memory.path(), 2100, 7);
  std::string deep = memory.path();
  for (int i = 0; i < 2100; ++i) deep += "/d";
  ASSERT_TRUE(trashPath(deep + "/bottom")) << error;
  EXPECT_EQ(test::readFile(inFiles("bottom")).size(), 7u);
  EXPECT_EQ(test::pathInRecord(inInfo("bottom.trashinfo")), deep + "/bottom");
  EXPECT_FALSE(trashPath(deep + "/bottom"));
  EXPECT_EQ(error, "No such file or directory");
}

TEST_F(TrashIntoTest, GivesUpAfterTenThousandNames) {
  const test::TempDirectory memory(test::TempDirectory::Place::Memory);
  trash = memory / "Trash";
  test::makeDirectory(trash + "/files");
  for (int counter = 0; counter <= 9999; ++counter) {
    const base::FileDescriptor taken(
        open(inFiles(nameInTrash("a.txt", counter)).c_str(), O_CREAT | O_WRONLY, 0600));
    ASSERT_TRUE(taken.valid());
  }
  test::writeFile(memory / "a.txt", "mine");
  EXPECT_FALSE(trashPath(memory / "a.txt"));
  EXPECT_EQ(error, "There is already something in the trash with that name.");
  EXPECT_EQ(test::readFile(memory / "a.txt"), "mine");
  EXPECT_EQ(records(), Names{});
  // The last one of them is tried.
  ASSERT_EQ(unlink(inFiles("a.9999.txt").c_str()), 0);
  EXPECT_TRUE(trashPath(memory / "a.txt")) << error;
  EXPECT_EQ(test::readFile(inFiles("a.9999.txt")), "mine");
}

TEST_F(TrashIntoTest, SaysWhichDirectoryItCouldNotMake) {
  test::writeFile(trash);
  EXPECT_FALSE(trashNew("a"));
  EXPECT_EQ(error, "Could not create the trash directory at " + trash + ".");
  EXPECT_TRUE(test::exists(work / "a"));
  const test::OrdinaryFileAccess ordinary;
  test::makeDirectory(work / "closed");
  ASSERT_EQ(chmod((work / "closed").c_str(), 0500), 0);
  trash = work / "closed/Trash";
  EXPECT_FALSE(trashPath(work / "a"));
  EXPECT_EQ(error, "Could not create the trash directory at " + trash + ".");
  EXPECT_TRUE(test::exists(work / "a"));
}

TEST_F(TrashIntoTest, SaysSoWhenTheRecordCannotBeWritten) {
  const test::OrdinaryFileAccess ordinary;
  test::makeDirectory(trash + "/info");
  ASSERT_EQ(chmod((trash + "/info").c_str(), 0500), 0);
  EXPECT_FALSE(trashNew("a"));
  EXPECT_EQ(error, "Could not write the trash record.");
  EXPECT_TRUE(test::exists(work / "a"));
  EXPECT_EQ(files(), Names{});
}

TEST_F(TrashIntoTest, SaysSoWhenTheInfoDirectoryIsAFile) {
  test::writeFile(trash + "/info");
  EXPECT_FALSE(trashNew("a"));
  EXPECT_EQ(error, "Could not write the trash record.");
  EXPECT_TRUE(test::exists(work / "a"));
}

TEST_F(TrashIntoTest, SaysSoWhenTheRecordHasTooLongAName) {
  const std::string name(250, 'x');  // room for itself, not for ".trashinfo"
  EXPECT_FALSE(trashNew(name));
  EXPECT_EQ(error, "Could not write the trash record.");
  EXPECT_TRUE(test::exists(work / name));
}

TEST_F(TrashIntoTest, LeavesNoPartOfARecordOnAFullDisk) {
  test::makeDirectory(work / "volume");
  test::expectInPrivateMounts([&] {
    test::mountMemory(work / "volume", "size=16k,nr_inodes=20");
    trash = work / "volume/Trash";
    const std::string item = work / "volume/a";
    test::writeFile(inFiles("fill"));
    test::writeFile(item);
    const base::FileDescriptor fill(open(inFiles("fill").c_str(), O_WRONLY | O_APPEND));
    const std::string page(4096, 'x');
    while (write(fill.get(), page.data(), page.size()) > 0) {
    }
    test::makeDirectory(trash + "/info");
    if (trashPath(item)) return std::string("trashed on a full disk");
    if (error != "Could not write the trash record.") return "said: " + error;
    if (!records().empty()) return std::string("left a record");
    return std::string(test::exists(item) ? "" : "lost the item");
  });
}

TEST_F(TrashIntoTest, RemovesTheRecordWhenTheItemCannotBeMoved) {
  const test::OrdinaryFileAccess ordinary;
  test::writeFile(work / "closed/a");
  ASSERT_EQ(chmod((work / "closed").c_str(), 0500), 0);
  EXPECT_FALSE(trashPath(work / "closed/a"));
  EXPECT_EQ(error, "Permission denied");
  EXPECT_EQ(records(), Names{});
  EXPECT_TRUE(test::exists(work / "closed/a"));
  ASSERT_EQ(chmod((work / "closed").c_str(), 0700), 0);
}

TEST_F(TrashIntoTest, SaysSoWhenTheItemIsGone) {
  EXPECT_FALSE(trashPath(work / "missing"));
  EXPECT_EQ(error, "No such file or directory");
  EXPECT_EQ(records(), Names{});
}

TEST_F(TrashIntoTest, SaysSoWhenTheFilesDirectoryIsAFile) {
  test::writeFile(trash + "/files");
  EXPECT_FALSE(trashNew("a"));
  EXPECT_EQ(error, "Not a directory");
  EXPECT_EQ(records(), Names{});
  EXPECT_TRUE(test::exists(work / "a"));
}

TEST_F(TrashIntoTest, DoesNotMoveAFolderIntoItself) {
  EXPECT_FALSE(trashPath(work.path()));
  EXPECT_EQ(error, "Invalid argument");
  EXPECT_EQ(records(), Names{});
}

TEST_F(TrashIntoTest, IsSilentWhenTheItemLiesOnAnotherFileSystem) {
  test::makeDirectory(work / "volume");
  test::expectInPrivateMounts([&] {
    test::mountMemory(work / "volume");
    test::writeFile(work / "volume/a");
    if (trashPath(work / "volume/a")) return std::string("moved");
    if (!error.empty()) return "said: " + error;
    return std::string(records().empty() ? "" : "left a record");
  });
}

TEST_F(TrashIntoTest, TakesNoErrorText) {
  EXPECT_FALSE(trashInto(trash, {work / "missing"}, "", nullptr));
}

// The name is free when it is looked for, and taken when the item is moved.
TEST_F(TrashIntoTest, DestroysNothingThatTookTheNameInBetween) {
  const test::RenameHook hook([&](int call) {
    if (call == 1) test::writeFile(inFiles("a.txt"), "theirs");
    if (call == 2) test::writeFile(inFiles("a.1.txt"), "theirs too");
    return 0;
  });
  ASSERT_TRUE(trashNew("a.txt", "mine"));
  EXPECT_EQ(test::readFile(inFiles("a.txt")), "theirs");
  EXPECT_EQ(test::readFile(inFiles("a.1.txt")), "theirs too");
  EXPECT_EQ(test::readFile(inFiles("a.2.txt")), "mine");
  EXPECT_EQ(records(), Names{"a.2.txt.trashinfo"});
}

TEST_F(TrashIntoTest, GivesTheRecordBackToWhatTookTheNameInBetween) {
  // As another program does it: the record first, then the item.
  test::writeFile(inInfo("a.trashinfo"), "their record");
  const test::RenameHook hook([&](int call) {
    if (call == 1) test::writeFile(inFiles("a"), "theirs");
    return 0;
  });
  ASSERT_TRUE(trashNew("a", "mine"));
  EXPECT_EQ(test::readFile(inInfo("a.trashinfo")), "their record");
  EXPECT_EQ(test::readFile(inFiles("a")), "theirs");
  EXPECT_EQ(test::readFile(inFiles("a.1")), "mine");
  EXPECT_EQ(test::pathInRecord(inInfo("a.1.trashinfo")), work / "a");
}

TEST_F(TrashIntoTest, MovesPlainlyWhereTheFileSystemKnowsNoBetter) {
  for (const int unknown : {EINVAL, ENOSYS}) {
    const test::RenameHook hook([&](int) { return unknown; });
    ASSERT_TRUE(trashNew("a", std::to_string(unknown))) << error;
  }
  EXPECT_EQ(test::readFile(inFiles("a")), std::to_string(EINVAL));
  EXPECT_EQ(test::readFile(inFiles("a.1")), std::to_string(ENOSYS));
}

TEST_F(TrashIntoTest, LooksAgainBeforeItMovesPlainly) {
  const test::RenameHook hook([&](int call) {
    if (call == 1) test::writeFile(inFiles("a"), "theirs");
    return EINVAL;
  });
  ASSERT_TRUE(trashNew("a", "mine"));
  EXPECT_EQ(test::readFile(inFiles("a")), "theirs");
  EXPECT_EQ(test::readFile(inFiles("a.1")), "mine");
  EXPECT_EQ(records(), Names{"a.1.trashinfo"});
}

TEST_F(TrashIntoTest, DoesNotTryOtherNamesForOtherFailures) {
  int calls = 0;
  const test::RenameHook hook([&](int call) {
    calls = call;
    return EIO;
  });
  EXPECT_FALSE(trashNew("a"));
  EXPECT_EQ(error, "Input/output error");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(records(), Names{});
}

TEST_F(TrashIntoTest, MovesWhatWasIdentifiedThoughItsContentChanged) {
  test::writeFile(work / "a", "before");
  const TrashItem item{work / "a", identify(work / "a")};
  test::writeFile(work / "a", "after");
  EXPECT_TRUE(trashInto(trash, item, item.path, &error)) << error;
  EXPECT_EQ(test::readFile(inFiles("a")), "after");
}

TEST_F(TrashIntoTest, LeavesSomethingElseUnderTheSamePathAlone) {
  test::writeFile(work / "a", "old");
  const TrashItem item{work / "a", identify(work / "a")};
  test::writeFile(work / "new", "new");
  ASSERT_EQ(rename((work / "new").c_str(), (work / "a").c_str()), 0);
  EXPECT_FALSE(trashInto(trash, item, item.path, &error));
  EXPECT_EQ(error, "It has changed since it was put on the list: something else lies there now.");
  EXPECT_EQ(test::readFile(work / "a"), "new");
  EXPECT_EQ(records(), Names{});
  EXPECT_EQ(files(), Names{});
}

TEST_F(TrashIntoTest, LooksAgainForEachNameItTries) {
  test::writeFile(work / "a", "old");
  const TrashItem item{work / "a", identify(work / "a")};
  test::writeFile(work / "new", "new");
  const test::RenameHook hook([&](int call) {
    if (call > 1) return 0;
    test::writeFile(inFiles("a"), "theirs");
    EXPECT_EQ(rename((work / "new").c_str(), (work / "a").c_str()), 0);
    return EEXIST;
  });
  EXPECT_FALSE(trashInto(trash, item, item.path, &error));
  EXPECT_EQ(test::readFile(work / "a"), "new");
  EXPECT_EQ(records(), Names{});
}

TEST_F(TrashIntoTest, SaysSoWhenWhatWasIdentifiedIsGone) {
  test::writeFile(work / "a");
  const TrashItem item{work / "a", identify(work / "a")};
  ASSERT_EQ(unlink((work / "a").c_str()), 0);
  EXPECT_FALSE(trashInto(trash, item, item.path, &error));
  EXPECT_EQ(error, "No such file or directory");
}

TEST_F(TrashIntoTest, HoldsTheLockForOneItemOnly) {
  ASSERT_TRUE(trashNew("a"));
  const base::FileDescriptor info(open((trash + "/info").c_str(), O_PATH | O_DIRECTORY));
  EXPECT_TRUE(base::FileLock::ofDirectory(info.get()).held());
  bool heldMeanwhile = false;
  {
    const test::RenameHook hook([&](int) {
      heldMeanwhile = !base::FileLock::ofDirectory(info.get()).held();
      return 0;
    });
    ASSERT_TRUE(trashNew("b"));
  }
  EXPECT_TRUE(heldMeanwhile);
  EXPECT_TRUE(base::FileLock::ofDirectory(info.get()).held());
}

TEST_F(TrashIntoTest, DoesWithoutALockThatAnotherProcessKeeps) {
  test::makeDirectory(trash + "/info");
  const base::FileDescriptor info(open((trash + "/info").c_str(), O_PATH | O_DIRECTORY));
  const base::FileLock kept = base::FileLock::ofDirectory(info.get());
  ASSERT_TRUE(kept.held());
  EXPECT_TRUE(trashNew("a")) << error;
  EXPECT_EQ(files(), Names{"a"});
}

}  // namespace
}  // namespace app
