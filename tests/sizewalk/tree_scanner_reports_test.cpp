// What a walk says of itself: how far it is, and where its time went.

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <functional>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "sizewalk/tree_scanner.h"
#include "tests/app/held_folder.h"
#include "tests/sizewalk/whole_scan.h"
#include "tests/support/eventually.h"
#include "tests/support/real_tree.h"
#include "tests/support/scarcity.h"
#include "tests/support/temp_directory.h"
#include "tests/support/waiting_thread.h"

namespace sizewalk {
namespace {

using test::Scan;
using test::TempDirectory;
using test::withThreads;
using test::writeFile;

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

/// Whether there are so many other threads in this process, or more, and all of them wait.
bool othersWait(int atLeast) {
  int others = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    const int id = std::stoi(thread.path().filename());
    if (id == gettid()) continue;
    if (!test::waits(id)) return false;
    ++others;
  }
  return others >= atLeast;
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
  std::optional<HeldWalk::Clock::time_point> reached;
  walk.run([&] {
    // Who walks, the integrator and both readers; the other reader may begin long after the first.
    if (!reached && othersWait(4)) reached = HeldWalk::Clock::now();
    return reached && HeldWalk::Clock::now() - *reached >= kSlow;
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

}  // namespace
}  // namespace sizewalk
