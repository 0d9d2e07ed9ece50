#include "sizewalk/tree_scanner.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/sizewalk/tree_model.h"
#include "tests/sizewalk/whole_scan.h"
#include "tests/support/blocking_file_system.h"
#include "tests/support/eventually.h"
#include "tests/support/file_access.h"
#include "tests/support/held_locks.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/real_tree.h"
#include "tests/support/scarcity.h"
#include "tests/support/temp_directory.h"

namespace sizewalk {
namespace {

namespace fs = std::filesystem;
using test::describe;
using test::nodeOf;
using test::Scan;
using test::TempDirectory;
using test::withThreads;
using test::writeFile;

/// The sums of the files below `path`, asked of the file system by other means.
struct Expected {
  explicit Expected(const std::string& path) {
    for (const auto& entry : fs::recursive_directory_iterator(path)) {
      struct stat status;
      if (lstat(entry.path().c_str(), &status) != 0) continue;
      ++entries;
      if (S_ISDIR(status.st_mode)) continue;
      ++files;
      apparent += static_cast<std::uint64_t>(status.st_size);
      allocated += static_cast<std::uint64_t>(status.st_blocks) * 512;
    }
  }
  std::uint64_t entries = 0, files = 0, apparent = 0, allocated = 0;
};

TEST(TreeScanner, CountsARealTreeAsTheFileSystemDoes) {
  const TempDirectory dir;
  test::makeBushyTree(dir.path(), 1, 200, 8);
  const Expected expected(dir.path());
  const Scan scan(dir.path());
  EXPECT_EQ(scan.tree().nodeCount(), expected.entries + 1);
  EXPECT_EQ(scan.tree().apparentSize(kRootNode), expected.apparent);
  EXPECT_EQ(scan.tree().allocatedSize(kRootNode), expected.allocated);
  EXPECT_EQ(scan.tree().itemCount(kRootNode), static_cast<std::int32_t>(expected.files));
  EXPECT_EQ(scan.tree().addedLastMonth(kRootNode), expected.allocated) << "all was just made";
  test::expectSumsMatchRecount(scan.tree());
}

TEST(TreeScanner, FindsTheSameWithAnyNumberOfReaders) {
  const TempDirectory dir;
  test::makeBushyTree(dir.path(), 2, 150, 6);
  const auto serial = describe(Scan(dir.path(), 1).tree());
  EXPECT_GT(serial.size(), 500u);
  EXPECT_EQ(describe(Scan(dir.path(), 2).tree()), serial);
  EXPECT_EQ(describe(Scan(dir.path(), 8).tree()), serial);
}

TEST(TreeScanner, ReadsAFolderWithoutSubfolders) {
  const TempDirectory dir;
  writeFile(dir / "a", "12345");
  const Scan scan(dir.path());
  EXPECT_EQ(scan.tree().nodeCount(), 2u);
  EXPECT_EQ(scan.tree().apparentSize(kRootNode), 5u);
  EXPECT_EQ(scan.tree().totals().directories, 0u);
}

TEST(TreeScanner, ReadsAnEmptyFolder) {
  const TempDirectory dir;
  EXPECT_EQ(Scan(dir.path()).tree().nodeCount(), 1u);
}

TEST(TreeScanner, GoesFiveThousandLevelsDown) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  test::makeDeepTree(dir.path(), 5000, 12345);
  const Scan scan(dir.path());
  EXPECT_EQ(scan.tree().nodeCount(), 5002u);
  EXPECT_EQ(scan.tree().apparentSize(kRootNode), 12345u);
  EXPECT_EQ(scan.tree().totals().errors, 0u);
  EXPECT_EQ(scan.tree().countSubtree(kRootNode), 5002u);
}

TEST(TreeScanner, MarksWhatItMayNotReadAndGoesOn) {
  const TempDirectory dir;
  writeFile(dir / "locked/inside", "x");
  writeFile(dir / "open/inside", "yy");
  ASSERT_EQ(chmod((dir / "locked").c_str(), 0), 0);
  const test::OrdinaryFileAccess ordinary;
  const Scan scan(dir.path());
  const NodeId locked = nodeOf(scan.tree(), dir / "locked");
  EXPECT_TRUE(scan.tree().flags(locked).has(NodeFlag::Unreadable));
  EXPECT_EQ(scan.tree().childCount(locked), 0u);
  EXPECT_EQ(scan.tree().apparentSize(kRootNode), 2u);
  EXPECT_EQ(scan.tree().totals().errors, 1u);
}

TEST(TreeScanner, CountsAFileWithSeveralNamesOnce) {
  const TempDirectory dir;
  writeFile(dir / "a/first", std::string(10000, 'x'));
  test::makeDirectory(dir / "b");
  ASSERT_EQ(link((dir / "a/first").c_str(), (dir / "b/second").c_str()), 0);
  const Scan scan(dir.path());
  EXPECT_EQ(scan.tree().apparentSize(kRootNode), 10000u);
  EXPECT_EQ(scan.tree().totals().hardLinks, 1u);
  EXPECT_GT(scan.tree().totals().hardLinkBytes, 0u);
  EXPECT_EQ(scan.tree().itemCount(kRootNode), 1);
}

TEST(TreeScanner, NeverFollowsASymbolicLink) {
  const TempDirectory dir;
  writeFile(dir / "elsewhere/big", std::string(10000, 'x'));
  test::makeDirectory(dir / "scanned");
  ASSERT_EQ(symlink("../elsewhere", (dir / "scanned/link").c_str()), 0);
  ASSERT_EQ(symlink(".", (dir / "scanned/loop").c_str()), 0);
  EXPECT_EQ(Scan(dir / "scanned").tree().nodeCount(), 3u);
}

TEST(TreeScanner, LeavesTheStartAloneWhenCancelledBeforehand) {
  const TempDirectory dir;
  writeFile(dir / "file", "x");
  TreeScanner scanner(withThreads(2));
  scanner.setRoot(dir.path());
  scanner.cancel();
  scanner.walk(kRootNode);
  EXPECT_TRUE(scanner.cancelRequested());
  EXPECT_EQ(scanner.tree().nodeCount(), 1u);
  EXPECT_EQ(scanner.tree().totals().systemCalls, 0u);
}

TEST(TreeScanner, EndsAWalkInTheMiddleWithRightSums) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  test::makeBushyTree(dir.path(), 3, 400, 10);
  const std::uint64_t all = Expected(dir.path()).entries + 1;
  // A cancel may come too late on a fast machine; repeat until one came in time.
  for (int attempt = 0;; ++attempt) {
    ASSERT_LT(attempt, 200) << "no walk was caught in the middle";
    TreeScanner scanner(withThreads(2));
    scanner.setRoot(dir.path());
    std::thread watcher([&] {
      while (scanner.tree().nodeCount() < 50) std::this_thread::yield();
      scanner.cancel();
    });
    scanner.walk(kRootNode);
    watcher.join();
    test::expectSumsMatchRecount(scanner.tree());
    EXPECT_TRUE(scanner.cancelRequested());
    if (scanner.tree().nodeCount() < all) break;
  }
}

TEST(TreeScanner, WalksAgainAfterALateCancel) {
  const TempDirectory dir;
  writeFile(dir / "sub/file", "x");
  Scan scan(dir.path());
  scan.scanner.cancel();
  writeFile(dir / "sub/second", "yy");
  scan.scanner.walk(nodeOf(scan.tree(), dir / "sub"));
  EXPECT_FALSE(scan.scanner.cancelRequested());
  EXPECT_EQ(scan.tree().apparentSize(kRootNode), 3u);
}

TEST(TreeScanner, ForgetsACancelWithAWalkThatComesToNothing) {
  const TempDirectory dir;
  writeFile(dir / "file", "x");
  TreeScanner scanner(withThreads(2));
  scanner.setRoot(dir.path());
  scanner.walk(1);  // there is no such node yet, and no walk comes of it
  scanner.walk(kRootNode);
  ASSERT_EQ(scanner.tree().apparentSize(kRootNode), 1u);
  scanner.cancel();
  scanner.walk(500);
  scanner.walk(kRootNode);
  EXPECT_FALSE(scanner.cancelRequested()) << "the cancel came before a walk that came to nothing";
  EXPECT_EQ(scanner.tree().apparentSize(kRootNode), 1u);
}

TEST(TreeScanner, EntersAMountPointThatItIsToldToWalk) {
  const TempDirectory dir;
  test::makeDirectory(dir / "mounted");
  const std::string outcome = test::inPrivateMounts([&]() -> std::string {
    if (mount("tmpfs", (dir / "mounted").c_str(), "tmpfs", 0, nullptr) != 0) return "cannot mount";
    writeFile(dir / "mounted/inside", "12345");
    Scan scan(dir.path());
    if (scan.tree().apparentSize(kRootNode) != 0) return "it was entered unasked";
    scan.scanner.walk(1);
    return scan.tree().apparentSize(kRootNode) == 5 ? "" : "it was not entered";
  });
  if (outcome.starts_with("cannot")) GTEST_SKIP() << outcome;
  EXPECT_EQ(outcome, "");
}

TEST(TreeScanner, LetsOthersReadAndChangeTheTreeWhileItWalks) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  test::makeBushyTree(dir.path(), 8, 300, 6);
  const Expected expected(dir.path());
  TreeScanner scanner(withThreads(4));
  scanner.setRoot(dir.path());
  std::thread walking([&] { scanner.walk(kRootNode); });
  FileTree& tree = scanner.tree();
  std::vector<RemovedSubtree> records;
  for (NodeId next = 1; tree.nodeCount() < expected.entries + 1;) {
    ASSERT_LE(tree.countSubtree(kRootNode), expected.entries + 1);
    if (next >= tree.nodeCount()) continue;
    const RemovedSubtree record = tree.removeSubtree(next);
    if (record.valid) records.push_back(record);
    next += 1 + next / 3;
    if (records.size() > 4) {
      tree.restoreSubtree(records.front());
      records.erase(records.begin());
    }
  }
  walking.join();
  test::expectSumsMatchRecount(tree);
  for (const RemovedSubtree& record : records) tree.restoreSubtree(record);
  test::expectSumsMatchRecount(tree);
  EXPECT_EQ(tree.allocatedSize(kRootNode), expected.allocated);
}

TEST(TreeScanner, ReadsOneFolderAnewAndLeavesTheRest) {
  const TempDirectory dir;
  writeFile(dir / "changed/old", std::string(100, 'x'));
  writeFile(dir / "changed/deep/er", std::string(50, 'x'));
  writeFile(dir / "same/file", std::string(7, 'x'));
  Scan scan(dir.path());
  const NodeId same = nodeOf(scan.tree(), dir / "same/file");
  const NodeId changed = nodeOf(scan.tree(), dir / "changed");
  fs::remove_all(dir / "changed/deep");
  writeFile(dir / "changed/new", std::string(1000, 'x'));
  writeFile(dir / "same/unseen", std::string(9, 'x'));

  scan.scanner.walk(changed);
  EXPECT_EQ(scan.tree().apparentSize(changed), 1100u);
  EXPECT_EQ(scan.tree().apparentSize(kRootNode), 1107u);
  EXPECT_EQ(scan.tree().name(same), "file");
  EXPECT_EQ(scan.tree().countSubtree(kRootNode), 6u);
  test::expectSumsMatchRecount(scan.tree());
}

TEST(TreeScanner, ReadsTheWholeTreeAnewTheSame) {
  const TempDirectory dir;
  test::makeBushyTree(dir.path(), 4, 60, 5);
  writeFile(dir / "linked", "0123456789");
  ASSERT_EQ(link((dir / "linked").c_str(), (dir / "twin").c_str()), 0);
  Scan scan(dir.path());
  const ScanTotals before = scan.tree().totals();
  const std::uint64_t bytes = scan.tree().allocatedSize(kRootNode);
  scan.scanner.walk(kRootNode);
  ScanTotals after = scan.tree().totals();
  EXPECT_GT(after.systemCalls, before.systemCalls);
  after.systemCalls = before.systemCalls;
  EXPECT_EQ(after, before);
  EXPECT_EQ(scan.tree().allocatedSize(kRootNode), bytes);
  test::expectSumsMatchRecount(scan.tree());
}

TEST(TreeScanner, WalksNothingButAVisibleFolder) {
  const TempDirectory dir;
  writeFile(dir / "file", "x");
  Scan scan(dir.path());
  scan.scanner.walk(1);
  scan.scanner.walk(500);
  EXPECT_EQ(scan.tree().nodeCount(), 2u);
}

TEST(TreeScanner, GivesAnEmptyRootPathNothingToRead) {
  TreeScanner scanner(withThreads(0));
  scanner.setRoot("");
  scanner.walk(kRootNode);
  EXPECT_TRUE(scanner.tree().flags(kRootNode).has(NodeFlag::Unreadable));
  EXPECT_EQ(scanner.tree().totals().errors, 1u);
}

TEST(TreeScanner, StartsExactlyTheReadersAskedFor) {
  const TempDirectory dir;
  writeFile(dir / "file");
  for (const int readers : {1, 2, 7}) {
    const test::ThreadStarts starts;
    const Scan scan(dir.path(), readers);
    EXPECT_EQ(starts.count(), readers + 1) << "and the integrator";
  }
}

TEST(TreeScanner, WaitsForNoBatchWhenThereIsNothingElseToRead) {
  const TempDirectory dir;
  test::makeDeepTree(dir.path(), 20, 1);
  TreeScanner scanner(withThreads(2), std::chrono::hours(1));
  scanner.setRoot(dir.path());
  std::atomic<bool> ended{false};
  std::thread walking([&] {
    scanner.walk(kRootNode);
    ended = true;
  });
  EXPECT_TRUE(test::eventually([&] { return ended.load(); }));
  scanner.cancel();
  walking.join();
  EXPECT_EQ(scanner.tree().nodeCount(), 22U);
}

TEST(TreeScanner, HoldsOneMutexAtATime) {
  if (!test::HeldLocks::kCounts) GTEST_SKIP() << "a sanitizer has the mutexes";
  const TempDirectory dir(TempDirectory::Place::Memory);
  test::makeBushyTree(dir.path(), 9, 300, 6);
  TreeScanner scanner(withThreads(4));
  scanner.setRoot(dir.path());
  scanner.onProgress = [](const ScanProgress&) {};
  const test::HeldLocks locks;
  scanner.walk(kRootNode);
  scanner.onProgress = [&](const ScanProgress&) { scanner.cancel(); };
  scanner.walk(kRootNode);
  scanner.statistics();
  EXPECT_EQ(locks.most(), 1);
}

TEST(TreeScanner, MarksAFolderWhoseListingFailsInTheMiddle) {
  test::BlockingFileSystem disk;
  if (!disk.problem().empty()) GTEST_SKIP() << disk.problem();
  disk.breakListing("", 1);
  const Scan scan(disk.path());
  const FileTree& tree = scan.tree();
  EXPECT_TRUE(tree.flags(kRootNode).has(NodeFlag::Unreadable));
  ASSERT_EQ(tree.childCount(kRootNode), 1u) << "what was listed before stays";
  const NodeId folder = tree.firstChild(kRootNode);
  EXPECT_EQ(tree.name(folder), "folder");
  EXPECT_FALSE(tree.flags(folder).has(NodeFlag::Unreadable));
  EXPECT_EQ(tree.apparentSize(kRootNode), 1000u);
  EXPECT_EQ(tree.totals().errors, 1u);
}

}  // namespace
}  // namespace sizewalk
