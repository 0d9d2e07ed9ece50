#include "app/actions/trash.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/app/actions/trash_fixture.h"
#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

using Names = std::vector<std::string>;

constexpr const char* kNowhere = "It is on a filesystem with nowhere to put a trash directory.";

std::string userTrash() { return "/.Trash-" + std::to_string(getuid()); }

/// A home directory and a place beside it on the same file system.
struct MoveToTrashTest : testing::Test {
  test::PrivateHome home;
  test::ScopedEnvironment environment;
  test::TempDirectory work;
  std::string trash = home.path() + "/.local/share/Trash";
  std::string error = "what it held before";

  /// Trashes the path and says what is wrong with the outcome: another failure than expected.
  std::string outcome(const std::string& path, const std::string& expected = {}) {
    const bool moved = moveToTrash(path, &error);
    if (moved != expected.empty() || error != expected) return "said: " + error;
    if (moved == test::exists(path)) return "the item is in the wrong place";
    return {};
  }
  Names records() const { return test::namesIn(trash + "/info"); }
};

TEST_F(MoveToTrashTest, PutsTheItemIntoTheTrashOfTheDataDirectory) {
  environment.set("XDG_DATA_HOME", home.path() + "/data");
  test::writeFile(work / "a b.txt", "content");
  EXPECT_EQ(outcome(work / "a b.txt"), "");
  EXPECT_EQ(test::readFile(home.path() + "/data/Trash/files/a b.txt"), "content");
  EXPECT_EQ(test::pathInRecord(home.path() + "/data/Trash/info/a b.txt.trashinfo"),
            work / "a b.txt");
}

TEST_F(MoveToTrashTest, FindsTheDataDirectoryBelowTheHomeDirectory) {
  environment.unset("XDG_DATA_HOME");
  test::writeFile(home.path() + "/a b.txt");
  EXPECT_EQ(outcome(home.path() + "/a b.txt"), "");
  const std::string record = test::readFile(trash + "/info/a b.txt.trashinfo");
  EXPECT_TRUE(record.starts_with("[Trash Info]\nPath=" + home.path() + "/a%20b.txt\nDeletionDate="))
      << record;
}

TEST_F(MoveToTrashTest, TakesAnEmptyDataDirectoryForNone) {
  environment.set("XDG_DATA_HOME", "");
  test::writeFile(work / "a");
  EXPECT_EQ(outcome(work / "a"), "");
  EXPECT_TRUE(test::exists(trash + "/files/a"));
}

TEST_F(MoveToTrashTest, RefusesNothingAndTheRoot) {
  for (const char* path : {"", "/"}) {
    EXPECT_FALSE(moveToTrash(path, &error));
    EXPECT_EQ(error, "That is not something that can be moved to the trash.");
  }
  EXPECT_FALSE(test::exists(trash));
}

TEST_F(MoveToTrashTest, ClearsTheErrorAndNeedsNone) {
  test::writeFile(work / "a");
  test::writeFile(work / "b");
  EXPECT_TRUE(moveToTrash(work / "a", &error));
  EXPECT_EQ(error, "");
  EXPECT_TRUE(moveToTrash(work / "b", nullptr));
  EXPECT_FALSE(moveToTrash(work / "b", nullptr));
}

TEST_F(MoveToTrashTest, GoesNoFurtherWhenTheHomeTrashFailsAloud) {
  const std::string volume = work / "disk";
  test::makeDirectory(volume);
  test::expectInPrivateMounts([&] {
    test::mountMemory(volume);
    test::writeFile(volume + "/a");
    test::writeFile(trash);  // a file, where the directory would be
    const std::string wrong =
        outcome(volume + "/a", "Could not create the trash directory at " + trash + ".");
    if (!wrong.empty()) return wrong;
    return std::string(test::exists(volume + userTrash()) ? "tried the volume" : "");
  });
}

TEST_F(MoveToTrashTest, SaysSoWhenTheItemIsGone) {
  EXPECT_FALSE(moveToTrash(work / "missing", &error));
  EXPECT_EQ(error, "No such file or directory");
  EXPECT_EQ(records(), Names{});
}

TEST_F(MoveToTrashTest, MovesOnlyWhatWasIdentified) {
  test::writeFile(work / "a", "old");
  test::writeFile(work / "b", "other");
  const ItemIdentity identity = identify(work / "a").value();
  EXPECT_FALSE(moveToTrash(work / "b", identity, &error));
  EXPECT_EQ(error, "It has changed since it was put on the list: something else lies there now.");
  EXPECT_TRUE(test::exists(work / "b"));
  EXPECT_TRUE(moveToTrash(work / "a", identity, &error));
  EXPECT_EQ(error, "");
}

TEST_F(MoveToTrashTest, PutsItemsOfAVolumeIntoTheVolumesTrash) {
  const std::string volume = work / "disk";
  test::makeDirectory(volume);
  test::expectInPrivateMounts([&] {
    test::mountMemory(volume);
    test::writeFile(volume + "/x/y", "content");
    if (const std::string wrong = outcome(volume + "/x/y"); !wrong.empty()) return wrong;
    if (!records().empty()) return std::string("left a record in the home trash");
    const std::string there = volume + userTrash();
    if (test::readFile(there + "/files/y") != "content") return std::string("lost the content");
    const std::string record = test::readFile(there + "/info/y.trashinfo");
    if (!record.starts_with("[Trash Info]\nPath=x/y\nDeletionDate=")) return record;
    struct stat status {};
    stat(there.c_str(), &status);
    return std::string((status.st_mode & 07777) == 0700 ? "" : "others may look into it");
  });
}

TEST_F(MoveToTrashTest, PutsWhatLiesAtTheTopOfAVolumeIntoItsTrashToo) {
  const std::string volume = work / "disk";
  test::makeDirectory(volume);
  test::expectInPrivateMounts([&] {
    test::mountMemory(volume);
    test::writeFile(volume + "/\xc3\xa9");
    if (const std::string wrong = outcome(volume + "/\xc3\xa9"); !wrong.empty()) return wrong;
    return test::pathInRecord(volume + userTrash() + "/info/\xc3\xa9.trashinfo") == "\xc3\xa9"
               ? std::string()
               : std::string("recorded something else");
  });
}

TEST_F(MoveToTrashTest, ChoosesTheInnerOneOfTwoVolumes) {
  const std::string outer = work / "outer";
  test::makeDirectory(outer);
  test::expectInPrivateMounts([&] {
    test::mountMemory(outer);
    test::makeDirectory(outer + "/inner");
    test::mountMemory(outer + "/inner");
    test::writeFile(outer + "/inner/a/b");
    if (const std::string wrong = outcome(outer + "/inner/a/b"); !wrong.empty()) return wrong;
    return std::string(
        test::exists(outer + "/inner" + userTrash() + "/files/b") ? "" : "went elsewhere");
  });
}

TEST_F(MoveToTrashTest, GoesByTheVolumeAloneWithoutAHomeDirectory) {
  const std::string volume = work / "disk";
  test::makeDirectory(volume);
  environment.unset("XDG_DATA_HOME");
  environment.unset("HOME");
  test::expectInPrivateMounts([&] {
    test::mountMemory(volume);
    test::writeFile(volume + "/a");
    if (const std::string wrong = outcome(volume + "/a"); !wrong.empty()) return wrong;
    return std::string(test::exists(volume + userTrash() + "/files/a") ? "" : "went elsewhere");
  });
}

TEST_F(MoveToTrashTest, CountsNamesOnAVolumeToo) {
  const std::string volume = work / "disk";
  test::makeDirectory(volume);
  test::expectInPrivateMounts([&] {
    test::mountMemory(volume);
    for (const char* folder : {"/p", "/q"}) {
      test::writeFile(volume + folder + "/report.pdf", folder);
      const std::string wrong = outcome(volume + folder + "/report.pdf");
      if (!wrong.empty()) return wrong;
    }
    return test::pathInRecord(volume + userTrash() + "/info/report.1.pdf.trashinfo") ==
                   "q/report.pdf"
               ? std::string()
               : std::string("recorded something else");
  });
}

TEST_F(MoveToTrashTest, SaysSoWhenTheVolumesTrashCannotBeMade) {
  const std::string volume = work / "disk";
  test::makeDirectory(volume);
  test::expectInPrivateMounts([&] {
    test::mountMemory(volume);
    test::writeFile(volume + userTrash());  // a file, where the directory would be
    test::writeFile(volume + "/a");
    return outcome(volume + "/a",
                   "Could not create the trash directory at " + volume + userTrash() + ".");
  });
}

TEST_F(MoveToTrashTest, FindsSomethingElseOnAVolume) {
  const std::string volume = work / "disk";
  test::makeDirectory(volume);
  test::expectInPrivateMounts([&] {
    test::mountMemory(volume);
    test::writeFile(volume + "/a");
    test::writeFile(volume + "/b");
    const ItemIdentity identity = identify(volume + "/a").value();
    if (moveToTrash(volume + "/b", identity, &error)) return std::string("moved");
    if (error.find("has changed") == std::string::npos) return "said: " + error;
    if (!moveToTrash(volume + "/a", identity, &error)) return "said: " + error;
    return std::string(test::exists(volume + userTrash() + "/files/a") ? "" : "went elsewhere");
  });
}

// The root directory of the process is a temporary one, so that nothing of the machine is touched.
TEST_F(MoveToTrashTest, MakesNoTrashAtTheTopOfTheRootFileSystem) {
  test::expectInPrivateMounts([&] {
    test::makeDirectory(work / "home");
    test::writeFile(work / "var/a");
    test::mountMemory(work / "home");
    if (chroot(work.path().c_str()) != 0) return std::string("cannot change the root");
    environment.set("XDG_DATA_HOME", "/home/data");
    if (const std::string wrong = outcome("/var/a", kNowhere); !wrong.empty()) return wrong;
    if (!test::namesIn("/home/data/Trash/info").empty()) return std::string("left a record");
    return std::string(test::exists(userTrash()) ? "made a trash at the top" : "");
  });
}

// Renames between mounts fail even when both show one file system, and device numbers do not tell.
TEST_F(MoveToTrashTest, FindsNoTrashInAPartOfTheRootFileSystemMountedElsewhere) {
  test::expectInPrivateMounts([&] {
    test::makeDirectory(work / "home");
    test::makeDirectory(work / "part");
    test::writeFile(work / "var/a");
    if (mount((work / "var").c_str(), (work / "part").c_str(), nullptr, MS_BIND, nullptr) != 0) {
      return std::string("cannot mount");
    }
    if (chroot(work.path().c_str()) != 0) return std::string("cannot change the root");
    environment.set("XDG_DATA_HOME", "/home/data");
    if (const std::string wrong = outcome("/part/a", kNowhere); !wrong.empty()) return wrong;
    if (!test::namesIn("/home/data/Trash/info").empty()) return std::string("left a record");
    return outcome("/var/a");
  });
}

TEST_F(MoveToTrashTest, PutsItemsOfAMountedPartIntoTheTrashOfThatPart) {
  test::expectInPrivateMounts([&] {
    test::makeDirectory(work / "disk");
    test::makeDirectory(work / "memory");
    test::mountMemory(work / "memory");
    test::writeFile(work / "memory/part/a");
    if (mount((work / "memory/part").c_str(), (work / "disk").c_str(), nullptr, MS_BIND, nullptr)) {
      return std::string("cannot mount");
    }
    if (const std::string wrong = outcome(work / "disk/a"); !wrong.empty()) return wrong;
    return std::string(test::exists(work / ("disk" + userTrash() + "/files/a")) ? "" : "elsewhere");
  });
}

TEST_F(MoveToTrashTest, FindsNoTrashForAVolumeItself) {
  test::expectInPrivateMounts([&] {
    test::makeDirectory(work / "home");
    test::makeDirectory(work / "outer");
    test::mountMemory(work / "outer");
    test::makeDirectory(work / "outer/disk");
    test::mountMemory(work / "outer/disk");
    return outcome(work / "outer/disk", kNowhere);
  });
}

TEST_F(MoveToTrashTest, LeavesAVolumeBesideTheTrashInUse) {
  test::expectInPrivateMounts([&] {
    test::makeDirectory(work / "disk");
    test::mountMemory(work / "disk");
    return outcome(work / "disk", "Device or resource busy");
  });
}

}  // namespace
}  // namespace app
