#include "sizewalk/tree_scanner.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "tests/app/held_folder.h"
#include "tests/sizewalk/tree_model.h"
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
using test::TempDirectory;
using test::writeFile;

ScanOptions withThreads(int threads) {
  ScanOptions options;
  options.threads = threads;
  return options;
}

/// A scan of one folder, from start to end.
struct Scan {
  explicit Scan(const std::string& path, int threads = 4) : scanner(withThreads(threads)) {
    scanner.setRoot(path);
    scanner.walk(kRootNode);
  }
  const FileTree& tree() const { return scanner.tree(); }
  TreeScanner scanner;
};

/// Everything that a tree says of each path, free of the order in which directories were read.
using Entry = std::tuple<std::int16_t, std::uint8_t, std::uint64_t, std::uint64_t, std::int32_t>;
std::map<std::string, Entry> describe(const FileTree& tree) {
  std::map<std::string, Entry> result;
  for (NodeId node = 0; node < tree.nodeCount(); ++node) {
    result[tree.path(node)] = {tree.kind(node), tree.flags(node).bits(), tree.apparentSize(node),
                               tree.allocatedSize(node), tree.itemCount(node)};
  }
  return result;
}

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

NodeId nodeOf(const FileTree& tree, const std::string& path) {
  for (NodeId node = 0; node < tree.nodeCount(); ++node) {
    if (tree.path(node) == path) return node;
  }
  ADD_FAILURE() << path << " is not in the tree";
  return kRootNode;
}

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

TEST(TreeScanner, ReportsProgressUntilItsEnd) {
  const TempDirectory dir;
  test::makeBushyTree(dir.path(), 5, 50, 5);
  TreeScanner scanner(withThreads(1));
  scanner.setRoot(dir.path());
  std::vector<ScanProgress> reports;
  scanner.onProgress = [&](const ScanProgress& progress) { reports.push_back(progress); };
  scanner.walk(kRootNode);
  ASSERT_FALSE(reports.empty());
  for (const ScanProgress& report : reports) {
    EXPECT_LE(report.files + report.folders, scanner.tree().nodeCount());
    EXPECT_LE(report.bytes, scanner.tree().allocatedSize(kRootNode));
    EXPECT_EQ(report.folders, report.nodes - report.files);
  }
}

TEST(TreeScanner, GivesAnEmptyRootPathNothingToRead) {
  TreeScanner scanner(withThreads(0));
  scanner.setRoot("");
  scanner.walk(kRootNode);
  EXPECT_TRUE(scanner.tree().flags(kRootNode).has(NodeFlag::Unreadable));
  EXPECT_EQ(scanner.tree().totals().errors, 1u);
}

TEST(TreeScanner, TellsWhereItsTimeWent) {
  const TempDirectory dir;
  test::makeBushyTree(dir.path(), 6, 100, 8);
  const Scan scan(dir.path(), 2);
  const WalkStatistics statistics = scan.scanner.statistics();
  EXPECT_GT(statistics.listNs, 0u);
  EXPECT_GT(statistics.pathNs, 0u);
  EXPECT_GT(statistics.openNs, 0u);
  EXPECT_GT(statistics.handOverNs, 0u);
  EXPECT_GT(statistics.integratorBusyNs, 0u);
  EXPECT_GE(statistics.integratorElapsedNs, statistics.integratorBusyNs);
}

TEST(ReaderCount, IsWhatWasAskedFor) {
  EXPECT_EQ(chooseReaderCount(
                1, [] { return 30; }, 64),
            1);
  EXPECT_EQ(chooseReaderCount(100, nullptr, 2), 100);
}

TEST(ReaderCount, FollowsTheStorageWhereItIsKnown) {
  EXPECT_EQ(chooseReaderCount(
                0, [] { return 4; }, 64),
            4);
  EXPECT_EQ(chooseReaderCount(
                -3, [] { return 4; }, 64),
            4);
}

TEST(ReaderCount, LeavesTwoProcessorsToOthers) {
  EXPECT_EQ(chooseReaderCount(0, nullptr, 6), 4);
  EXPECT_EQ(chooseReaderCount(0, nullptr, 64), 8);
  EXPECT_EQ(chooseReaderCount(0, nullptr, 1), 1);
  EXPECT_EQ(chooseReaderCount(0, nullptr, 2), 1);
  EXPECT_EQ(chooseReaderCount(
                0, [] { return 0; }, 6),
            4);
}

TEST(ReaderCount, IsTwoWhenNothingIsKnown) { EXPECT_EQ(chooseReaderCount(0, nullptr, 0), 2); }

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

/// A walk of a folder with the folder "held" in it, which stays open to be read until it is let go.
class HeldWalk {
 public:
  explicit HeldWalk(int threads) : scanner(withThreads(threads)) {
    writeFile(dir_ / "held/file", "x");
    scanner.setRoot(dir_.path());
  }
  /// Walks until `held` has been reached, `until` holds then, and all is read.
  void run(const std::function<bool()>& until) {
    const auto start = Clock::now();
    std::thread walking([&] { scanner.walk(kRootNode); });
    EXPECT_TRUE(held_.waitUntilReached());
    EXPECT_TRUE(test::eventually(until));
    held_.release();
    walking.join();
    took = Clock::now() - start;
  }

  using Clock = std::chrono::steady_clock;
  TreeScanner scanner;
  Clock::duration took{};

 private:
  const TempDirectory dir_;
  test::HeldFolder held_{"held"};
};

TEST(TreeScanner, RestsBetweenItsReports) {
  struct Report {
    HeldWalk::Clock::time_point time;
    std::int64_t processorNs;  // of the thread that reports
  };
  std::mutex mutex;  // guards the reports
  std::vector<Report> reports;
  HeldWalk walk(1);
  walk.scanner.onProgress = [&](const ScanProgress&) {
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    const std::lock_guard lock(mutex);
    reports.push_back(
        {HeldWalk::Clock::now(), std::int64_t{used.tv_sec} * 1'000'000'000 + used.tv_nsec});
  };
  walk.run([&] {
    const std::lock_guard lock(mutex);
    return reports.size() >= 4;
  });
  for (std::size_t i = 1; i < 4; ++i) {
    EXPECT_GE(reports[i].time - reports[i - 1].time, std::chrono::milliseconds(99));
  }
  // Of three pauses of a tenth of a second.
  EXPECT_LT(reports[3].processorNs - reports[0].processorNs, 100'000'000);
}

TEST(TreeScanner, CountsTheTimeOfAFolderThatOpensSlowlyAsThat) {
  HeldWalk walk(2);
  constexpr std::chrono::milliseconds kSlow{60};
  const auto start = HeldWalk::Clock::now();
  auto reached = start;
  walk.run([&] {
    if (reached == start) reached = HeldWalk::Clock::now();
    return HeldWalk::Clock::now() - reached >= kSlow;
  });
  constexpr auto kSlowNs = static_cast<std::uint64_t>(std::chrono::nanoseconds(kSlow).count());
  const WalkStatistics times = walk.scanner.statistics();
  EXPECT_GE(times.openNs, kSlowNs);
  EXPECT_GE(times.idleNs, kSlowNs) << "the other reader has nothing to read meanwhile";
  EXPECT_GE(times.integratorElapsedNs, times.integratorBusyNs + kSlowNs);
  // Nothing counts twice.
  const auto tookNs = static_cast<std::uint64_t>(std::chrono::nanoseconds(walk.took).count());
  EXPECT_LE(times.pathNs + times.openNs + times.listNs + times.handOverNs + times.idleNs,
            2 * tookNs);
  EXPECT_LE(times.openNs, tookNs) << "of one of the two";
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

TEST(TreeScanner, GoesOnWithTheReadersThatFindThreads) {
  const TempDirectory dir;
  test::makeBushyTree(dir.path(), 2, 50, 4);
  const auto whole = describe(Scan(dir.path(), 4).tree());
  for (int left = 2; left < 6; ++left) {
    TreeScanner scanner(withThreads(4));
    scanner.setRoot(dir.path());
    const test::FewThreads few(left);
    EXPECT_EQ(scanner.walk(kRootNode), 0) << left;
    EXPECT_EQ(describe(scanner.tree()), whole) << left;
  }
}

TEST(TreeScanner, NeedsNoThreadForItsReports) {
  const TempDirectory dir;
  writeFile(dir / "file", "12345");
  TreeScanner scanner(withThreads(1));
  scanner.setRoot(dir.path());
  scanner.onProgress = [](const ScanProgress&) {};
  const test::FirstThreadFails first;
  EXPECT_EQ(scanner.walk(kRootNode), 0);
  EXPECT_EQ(scanner.tree().apparentSize(kRootNode), 5U);
}

TEST(TreeScanner, SaysThatItFoundNoThreads) {
  const TempDirectory dir;
  writeFile(dir / "file", "12345");
  for (const int left : {0, 1}) {  // one is the integrator's
    TreeScanner scanner(withThreads(4));
    scanner.setRoot(dir.path());
    {
      const test::FewThreads few(left);
      EXPECT_EQ(scanner.walk(kRootNode), EAGAIN) << left;
    }
    EXPECT_EQ(scanner.tree().nodeCount(), 1U);
    EXPECT_EQ(scanner.walk(kRootNode), 0) << "there are threads again";
    EXPECT_EQ(scanner.tree().apparentSize(kRootNode), 5U);
  }
}

/// So many names that they need a second map of memory.
void makeManyNames(const std::string& path, int folders = 20) {
  constexpr int kNames = 4300;
  for (int i = 0; i < kNames; ++i) {
    std::string name = std::to_string(i);
    name.resize(250, 'x');
    writeFile(path + "/folder" + std::to_string(i % folders) + "/" + name);
  }
}

TEST(TreeScanner, SaysThatMemoryRanOut) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  makeManyNames(dir.path());
  TreeScanner scanner(withThreads(4));
  scanner.setRoot(dir.path());
  {
    const test::FewPages none(0);
    EXPECT_EQ(scanner.walk(kRootNode), ENOMEM);
  }
  EXPECT_GE(scanner.tree().nodeCount(), 1U);
}

TEST(TreeScanner, KeepsWhatItReadBeforeMemoryRanOut) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  makeManyNames(dir.path(), 1);
  const std::string linked = dir / "folder0/" + std::string(250, 'y');
  for (int i = 0; i < 300; ++i) {  // of those that are listed last and first
    const std::string name = linked.substr(0, linked.size() - 3) + std::to_string(100 + i);
    writeFile(name, "12345");
    ASSERT_EQ(
        link(name.c_str(), (name.substr(0, name.size() - 3) + "z" + std::to_string(i)).c_str()), 0);
  }
  TreeScanner scanner(withThreads(2));
  scanner.setRoot(dir.path());
  {
    const test::FewPages none(0);
    ASSERT_EQ(scanner.walk(kRootNode), ENOMEM);
  }
  const FileTree& tree = scanner.tree();
  EXPECT_GT(tree.nodeCount(), 3000U);
  EXPECT_EQ(tree.childCount(1), tree.nodeCount() - 2);
  test::expectSumsMatchRecount(tree);
  EXPECT_EQ(scanner.walk(kRootNode), 0) << "there is memory again";
  EXPECT_EQ(describe(tree), describe(Scan(dir.path()).tree()));
  test::expectSumsMatchRecount(tree);
}

TEST(TreeScanner, SaysThatAReaderFoundNoMemory) {
#ifdef HEAPGAUGE_SANITIZED
  GTEST_SKIP() << "the sanitizers end a program that runs out of memory";
#else
  const TempDirectory dir;
  writeFile(dir / "file");
  ScanOptions options = withThreads(2);
  options.readBufferSize = std::uint64_t{1} << 46;
  TreeScanner scanner(options);
  scanner.setRoot(dir.path());
  EXPECT_EQ(scanner.walk(kRootNode), ENOMEM);
#endif
}

TEST(TreeScanner, GoesOnWhereItsReportsFindNoMemory) {
  const TempDirectory dir;
  writeFile(dir / "file", "12345");
  TreeScanner scanner(withThreads(1));
  scanner.setRoot(dir.path());
  scanner.onProgress = [](const ScanProgress&) { throw std::bad_alloc(); };
  EXPECT_EQ(scanner.walk(kRootNode), 0);
  EXPECT_EQ(scanner.tree().apparentSize(kRootNode), 5U);
}

TEST(TreeScanner, ReportsAgainOnceThereIsMemory) {
  const TempDirectory dir;
  writeFile(dir / "held/file", "12345");
  TreeScanner scanner(withThreads(1));
  scanner.setRoot(dir.path());
  std::optional<test::HeldFolder> held("held");
  std::atomic<int> reports = 0;
  scanner.onProgress = [&](const ScanProgress&) {
    if (++reports == 1) throw std::bad_alloc();
  };
  std::thread walking([&] { EXPECT_EQ(scanner.walk(kRootNode), 0); });
  EXPECT_TRUE(test::eventually([&] { return reports > 1; }));
  held.reset();
  walking.join();
}

/// This process gets no more than 8 GiB of addresses.
class FewAddresses {
 public:
  FewAddresses() {
    getrlimit(RLIMIT_AS, &usual_);
    rlimit limit = usual_;
    limit.rlim_cur = std::min<rlim_t>(rlim_t{8} << 30, usual_.rlim_max);
    setrlimit(RLIMIT_AS, &limit);
  }
  ~FewAddresses() { setrlimit(RLIMIT_AS, &usual_); }
  FewAddresses(const FewAddresses&) = delete;
  FewAddresses& operator=(const FewAddresses&) = delete;

 private:
  rlimit usual_{};
};

TEST(TreeScanner, TellsWantOfMemoryForItsReadersFromWantOfThreads) {
#ifdef HEAPGAUGE_SANITIZED
  GTEST_SKIP() << "the sanitizers need more addresses";
#else
  const TempDirectory dir;
  TreeScanner scanner(withThreads(std::numeric_limits<int>::max()));  // 16 GiB to list them
  scanner.setRoot(dir.path());
  const FewAddresses few;
  EXPECT_EQ(scanner.walk(kRootNode), ENOMEM);
#endif
}

TEST(ScanOptions, LookBackAMonthAndHalfAYear) {
  const ScanOptions options(1000000000);
  EXPECT_EQ(options.monthThreshold, 1000000000u - 2592000);
  EXPECT_EQ(options.sixMonthThreshold, 1000000000u - 15724800);
  EXPECT_FALSE(options.hasLastScan);
  EXPECT_EQ(options.lastScanTime, 0u);
  EXPECT_EQ(options.readBufferSize, 262144u);
}

TEST(ScanOptions, DoNotLookBackBeyondTheEpoch) {
  const ScanOptions options(2592001);
  EXPECT_EQ(options.monthThreshold, 1u);
  EXPECT_EQ(options.sixMonthThreshold, 0u);
}

TEST(ScanOptions, NameTheirStrategies) {
  EXPECT_STREQ(listingStrategyName(0), "auto");
  EXPECT_STREQ(listingStrategyName(1), "enum");
  EXPECT_STREQ(listingStrategyName(2), "mft");
  EXPECT_STREQ(listingStrategyName(3), "auto");
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
