#include "sizewalk/scan_history.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/blocking_file_system.h"
#include "tests/support/environment.h"
#include "tests/support/file_access.h"
#include "tests/support/temp_directory.h"

namespace sizewalk {
namespace {

namespace fs = std::filesystem;

unsigned modeOf(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

void writeHistoryFile(std::string_view text) { test::writeFile(historyPath(), text); }

TEST(HistoryPath, LiesInTheDataDirectory) {
  const test::PrivateHome home;
  test::ScopedEnvironment environment;
  environment.set("XDG_DATA_HOME", "/data");
  EXPECT_EQ(historyPath(), "/data/heapgauge/scan-history.txt");
}

TEST(HistoryPath, IgnoresADataDirectoryThatIsNotAbsolute) {
  const test::PrivateHome home;
  const std::string inHome = home.path() + "/.local/share/heapgauge/scan-history.txt";
  test::ScopedEnvironment environment;
  environment.set("XDG_DATA_HOME", "data");
  EXPECT_EQ(historyPath(), inHome);
  environment.set("XDG_DATA_HOME", "");
  EXPECT_EQ(historyPath(), inHome);
  environment.unset("XDG_DATA_HOME");
  EXPECT_EQ(historyPath(), inHome);
}

TEST(HistoryPath, FallsBackToTheHomeOfTheAccount) {
  const passwd* account = getpwuid(geteuid());
  if (!account) GTEST_SKIP() << "the user running the tests has no account entry";
  test::ScopedEnvironment environment;
  environment.unset("XDG_DATA_HOME");
  environment.set("HOME", "");
  EXPECT_EQ(historyPath(),
            std::string(account->pw_dir) + "/.local/share/heapgauge/scan-history.txt");
}

TEST(LoadHistory, IsEmptyWithoutAFile) {
  const test::PrivateHome home;
  EXPECT_TRUE(loadHistory().empty());
  fs::create_directories(historyPath());  // opens, but cannot be read
  EXPECT_TRUE(loadHistory().empty());
}

TEST(LoadHistory, ReadsTimesAndPaths) {
  const test::PrivateHome home;
  writeHistoryFile("1700000000\t/home/u\n4294967295\t/\n7\t/a\tb\n");
  const ScanHistory expected = {{"/home/u", 1700000000}, {"/", 4294967295}, {"/a\tb", 7}};
  EXPECT_EQ(loadHistory(), expected);
}

TEST(LoadHistory, DropsEveryLineEndAndAcceptsAMissingOne) {
  const test::PrivateHome home;
  writeHistoryFile("1\t/a\r\n2\t/b\r\r\n\r\n\n3\t/c");
  const ScanHistory expected = {{"/a", 1}, {"/b", 2}, {"/c", 3}};
  EXPECT_EQ(loadHistory(), expected);
}

TEST(LoadHistory, SkipsLinesWithoutATab) {
  const test::PrivateHome home;
  writeHistoryFile("123 /a\nnothing\n\xff\xfe\n5\t/b\n");
  const ScanHistory expected = {{"/b", 5}};
  EXPECT_EQ(loadHistory(), expected);
}

TEST(LoadHistory, TakesATimeItCannotReadForUnknown) {
  const test::PrivateHome home;
  writeHistoryFile(
      "soon\t/a\n-5\t/b\n4294967296\t/c\n99999999999999999999999\t/d\n\t/e\n12x\t/f\n");
  const ScanHistory expected = {{"/a", 0}, {"/b", 0}, {"/c", 0}, {"/d", 0}, {"/e", 0}, {"/f", 12}};
  EXPECT_EQ(loadHistory(), expected);
}

TEST(LoadHistory, LetsTheLaterOfTwoLinesCount) {
  const test::PrivateHome home;
  writeHistoryFile("1\t/a\n2\t/a\n");
  const ScanHistory expected = {{"/a", 2}};
  EXPECT_EQ(loadHistory(), expected);
}

TEST(LoadHistory, NeverCutsALongLine) {
  const test::PrivateHome home;
  // Tabs and digits at every place where a fixed buffer could break the line.
  std::string path = "/";
  for (int i = 0; i < 20000; ++i) path += "1\t";
  writeHistoryFile("1\t/a\n2\t" + path + "\n3\t/b\n");
  const ScanHistory expected = {{"/a", 1}, {path, 2}, {"/b", 3}};
  EXPECT_EQ(loadHistory(), expected);
}

TEST(LoadHistory, SurvivesBinaryBytes) {
  const test::PrivateHome home;
  std::string bytes;
  for (unsigned i = 0; i < 100000; ++i) bytes += static_cast<char>(i * i * 31 + i * 7 + i / 256);
  writeHistoryFile(bytes + std::string("\n4\t/a\0b\n", 8));
  EXPECT_EQ(loadHistory()[std::string("/a\0b", 4)], 4u);
}

TEST(SaveHistory, WritesOneLinePerPathInBytewiseOrder) {
  const test::PrivateHome home;
  saveHistory({{"/b", 10}, {"/a\xff", 3}, {"/a", 0}, {"/a/b", 1}, {"/a\tb", 2}});
  EXPECT_EQ(test::readFile(historyPath()), "0\t/a\n2\t/a\tb\n1\t/a/b\n3\t/a\xff\n10\t/b\n");
}

TEST(SaveHistory, LeavesNoTemporaryFile) {
  const test::PrivateHome home;
  saveHistory({{"/a", 1}});
  EXPECT_FALSE(fs::exists(historyPath() + ".tmp"));
}

TEST(SaveHistory, CreatesTheDirectoriesForTheUserAlone) {
  const test::PrivateHome home;
  const mode_t old = umask(0);
  saveHistory({{"/a", 1}});
  umask(old);
  EXPECT_EQ(modeOf(home.path() + "/.local"), 0700u);
  EXPECT_EQ(modeOf(home.path() + "/.local/share"), 0700u);
  EXPECT_EQ(modeOf(home.path() + "/.local/share/heapgauge"), 0700u);
  EXPECT_EQ(modeOf(historyPath()), 0600u);
}

TEST(SaveHistory, LeavesOutPathsThatALineCannotHold) {
  const test::PrivateHome home;
  saveHistory({{"/a\n7\t/stolen", 1}, {"/a\r", 2}, {"/b\r/c", 3}});
  const ScanHistory expected = {{"/b\r/c", 3}};
  EXPECT_EQ(loadHistory(), expected);
}

TEST(SaveHistory, KeepsTheOldFileWhenTheDiskIsFull) {
  const test::PrivateHome home;
  saveHistory({{"/a", 1}});
  fs::create_symlink("/dev/full", historyPath() + ".tmp");
  saveHistory({{"/a", 2}});
  EXPECT_EQ(lastScanTime("/a"), 1u);
  EXPECT_FALSE(fs::is_symlink(historyPath() + ".tmp"));
}

TEST(SaveHistory, DoesNothingWhenTheTemporaryFileCannotBeOpened) {
  const test::PrivateHome home;
  saveHistory({{"/a", 1}});
  fs::create_directory(historyPath() + ".tmp");
  saveHistory({{"/a", 2}});
  EXPECT_EQ(lastScanTime("/a"), 1u);
  EXPECT_TRUE(fs::is_directory(historyPath() + ".tmp"));
}

TEST(SaveHistory, LeavesNothingBesideWhatIsNoFile) {
  const test::PrivateHome home;
  test::writeFile(historyPath() + "/in-the-way");
  saveHistory({{"/a", 1}});
  EXPECT_FALSE(fs::exists(historyPath() + ".tmp"));
}

TEST(SaveHistory, LeavesAloneWhatItCannotRead) {
  const test::PrivateHome home;
  recordScan("/a", 1);
  fs::permissions(historyPath(), fs::perms::none);
  {
    const test::OrdinaryFileAccess ordinary;
    EXPECT_TRUE(loadHistory().empty());
    recordScan("/b", 2);
    saveHistory({{"/c", 3}});
  }
  fs::permissions(historyPath(), fs::perms::owner_all);
  EXPECT_EQ(test::readFile(historyPath()), "1\t/a\n");
}

TEST(SaveHistory, LeavesAloneWhatADiskDoesNotGive) {
  test::BlockingFileSystem disk;
  if (!disk.problem().empty()) GTEST_SKIP() << disk.problem();
  const test::PrivateHome home;
  test::makeDirectory(fs::path(historyPath()).parent_path());
  fs::create_symlink(disk.path() + "/top", historyPath());
  recordScan("/a", 1);  // it opens, and no read succeeds
  disk.fail();
  recordScan("/a", 1);
  EXPECT_TRUE(fs::is_symlink(historyPath()));
}

TEST(SaveHistory, LeavesAHugeFileAlone) {
  const test::PrivateHome home;
  test::writeSparseFile(historyPath(), 200'000'000'000);
  EXPECT_EQ(lastScanTime("/a"), 0u);
  recordScan("/a", 1);
  EXPECT_EQ(fs::file_size(historyPath()), 200'000'000'000U);
}

TEST(LastScanTime, IsUnknownBeforeTheFirstScan) {
  const test::PrivateHome home;
  EXPECT_EQ(lastScanTime("/a"), 0u);
}

TEST(LastScanTime, BelongsToExactlyThePath) {
  const test::PrivateHome home;
  recordScan("/a/b", 5);
  EXPECT_EQ(lastScanTime("/a/b"), 5u);
  EXPECT_EQ(lastScanTime("/a"), 0u);
  EXPECT_EQ(lastScanTime("/a/b/"), 0u);
}

TEST(RecordScan, ReplacesTheTimeOfTheSamePath) {
  const test::PrivateHome home;
  recordScan("/b", 3);
  recordScan("/a", 5);
  recordScan("/a", 6);
  EXPECT_EQ(test::readFile(historyPath()), "6\t/a\n3\t/b\n");
}

TEST(RecordScan, TakesTimeZeroForNow) {
  const test::PrivateHome home;
  const auto before = static_cast<std::uint32_t>(std::time(nullptr));
  recordScan("/a", 0);
  const auto after = static_cast<std::uint32_t>(std::time(nullptr));
  EXPECT_GE(lastScanTime("/a"), before);
  EXPECT_LE(lastScanTime("/a"), after);
}

// Of the program's own in two processes, as a capture beside the window, and in two threads of
// each, as a scan that ends just as another that was given up does.
TEST(RecordScan, LosesNothingThatOthersNoteAtTheSameTime) {
  constexpr int kScans = 100;
  const test::PrivateHome home;
  const auto note = [](const std::string& name) {
    for (int i = 0; i < kScans; ++i) recordScan(name + std::to_string(i), 1);
  };
  const pid_t child = fork();
  if (child == 0) {
    note("/child/");
    _exit(0);
  }
  {
    const std::jthread other([&] { note("/thread/"); });
    note("/parent/");
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(loadHistory().size(), 3U * kScans);
  EXPECT_FALSE(fs::exists(historyPath() + ".tmp"));
}

TEST(RecordScan, DoesNotAttributeAPathWithALineFeedToAnotherFolder) {
  const test::PrivateHome home;
  recordScan("/a", 1);
  recordScan("/a\n9\t/b", 5);
  recordScan("/a\r", 6);
  EXPECT_EQ(lastScanTime("/a\n9\t/b"), 0u);
  EXPECT_EQ(lastScanTime("/a\r"), 0u);
  EXPECT_EQ(lastScanTime("/a"), 1u);
  EXPECT_EQ(lastScanTime("/b"), 0u);
}

}  // namespace
}  // namespace sizewalk
