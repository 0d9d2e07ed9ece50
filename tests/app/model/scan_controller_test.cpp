#include "app/model/scan_controller.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "base/detached_threads.h"
#include "sizewalk/scan_history.h"
#include "tests/app/held_folder.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/file_access.h"
#include "tests/support/real_tree.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

using test::HeldFolder;
using test::TempDirectory;
using test::writeFile;

class Controller : public testing::Test {
 protected:
  // What a scan that was left reads is still there while it does.
  ~Controller() override {
    controller_.drop();
    EXPECT_TRUE(allScansHaveEnded());
  }
  /// Waits until the current scan has ended.
  void waitForEnd() {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!controller_.finished()) {
      ASSERT_LT(std::chrono::steady_clock::now(), deadline);
      std::this_thread::yield();
    }
  }
  static bool allScansHaveEnded() {
    return base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(60));
  }
  void scan(const std::string& path) {
    controller_.start(path);
    waitForEnd();
  }

  test::PrivateHome home_;
  TempDirectory dir_;
  std::atomic<int> progressReports_{0};
  std::atomic<int> ends_{0};
  ScanController controller_{[this](const sizewalk::ScanProgress&) { ++progressReports_; },
                             [this] { ++ends_; }};
};

TEST_F(Controller, HasNothingToShowBeforeItsFirstScan) {
  EXPECT_TRUE(controller_.neverStarted());
  EXPECT_FALSE(controller_.running());
  EXPECT_FALSE(controller_.finished());
  EXPECT_EQ(controller_.scanner(), nullptr);
}

TEST_F(Controller, RunsAScanToItsEndAndSumsItUp) {
  writeFile(dir_ / "a/one", std::string(1000, 'x'));
  writeFile(dir_ / "a/two", std::string(500, 'x'));
  ASSERT_EQ(link((dir_ / "a/one").c_str(), (dir_ / "three").c_str()), 0);
  scan(dir_.path());
  EXPECT_FALSE(controller_.neverStarted());
  EXPECT_TRUE(controller_.running()) << "until it is dropped";
  EXPECT_FALSE(controller_.scanning());
  const ScanSummary& summary = controller_.summary();
  EXPECT_EQ(summary.files, 2u);
  EXPECT_EQ(summary.folders, 1u);
  EXPECT_EQ(summary.errors, 0u);
  EXPECT_EQ(summary.hardLinks, 1u);
  EXPECT_GT(summary.hardLinkBytes, 0u);
  EXPECT_GT(summary.elapsedSeconds, 0.0);
  EXPECT_GT(summary.systemCalls, 5u);
  EXPECT_EQ(summary.datedEntries, 4u);
  EXPECT_FALSE(summary.cancelled);
  EXPECT_EQ(summary.lastScanTime, 0u);
  EXPECT_EQ(summary.method, 1u);
  EXPECT_EQ(summary.failure, 0u);
  EXPECT_GT(summary.listSeconds, 0.0);
  EXPECT_GT(summary.integratorElapsedSeconds, 0.0);
  EXPECT_EQ(controller_.scanner()->tree().apparentSize(sizewalk::kRootNode), 1500u);
  EXPECT_GE(progressReports_, 1);
}

TEST_F(Controller, IsUnfinishedWhileAFolderIsReadAgain) {
  writeFile(dir_ / "held/file", "x");
  scan(dir_.path());
  HeldFolder held("held");
  ASSERT_TRUE(controller_.readAgain(sizewalk::kRootNode));
  ASSERT_TRUE(held.waitUntilReached());
  EXPECT_FALSE(controller_.finished());
  EXPECT_TRUE(controller_.scanning());
  EXPECT_EQ(controller_.summary().files, 0U) << "there is none yet";
  EXPECT_FALSE(controller_.readAgain(sizewalk::kRootNode)) << "not before it has ended";
  held.release();
  waitForEnd();
  EXPECT_EQ(controller_.summary().files, 1U);
}

TEST_F(Controller, SumsUpWhereTheTimeWent) {
  test::makeBushyTree(dir_.path(), 1, 30, 5);
  scan(dir_.path());
  const ScanSummary& summary = controller_.summary();
  const sizewalk::WalkStatistics times = controller_.scanner()->statistics();
  const std::pair<double, std::uint64_t> pairs[] = {
      {summary.pathSeconds, times.pathNs},
      {summary.openSeconds, times.openNs},
      {summary.listSeconds, times.listNs},
      {summary.handOverSeconds, times.handOverNs},
      {summary.waitSeconds, times.idleNs},
      {summary.integratorBusySeconds, times.integratorBusyNs},
      {summary.integratorElapsedSeconds, times.integratorElapsedNs}};
  for (const auto& [seconds, ns] : pairs) {
    EXPECT_GT(ns, 0U);
    EXPECT_DOUBLE_EQ(seconds, static_cast<double>(ns) * 1e-9);
  }
  EXPECT_EQ(summary.queueWaits, times.queueWaits);
  EXPECT_EQ(summary.queueCounter, times.emptyQueueWaits);
  // What the walk took, and the way there.
  EXPECT_GE(summary.elapsedSeconds, summary.integratorElapsedSeconds);
}

TEST(ControllersThreads, GiveWayToTheThreadOfTheWindow) {
  const test::PrivateHome home;
  const TempDirectory dir;
  writeFile(dir / "file", "x");
  const int own = getpriority(PRIO_PROCESS, 0);  // on Linux that of the calling thread
  if (own >= 19) GTEST_SKIP() << "runs at the lowest priority already";
  std::atomic<int> ofReports{own};
  std::atomic<int> ofEnd{own};
  {
    ScanController controller(
        [&](const sizewalk::ScanProgress&) { ofReports = getpriority(PRIO_PROCESS, 0); },
        [&] { ofEnd = getpriority(PRIO_PROCESS, 0); });
    controller.start(dir.path());
    ASSERT_TRUE(test::eventually([&] { return ofEnd != own; }));
  }
  EXPECT_GT(ofEnd, own) << "the thread that runs the scan";
  EXPECT_EQ(ofReports, ofEnd) << "a thread of the walk";
  EXPECT_EQ(getpriority(PRIO_PROCESS, 0), own);
}

TEST_F(Controller, DropsAScanThatHasEnded) {
  controller_.drop();
  EXPECT_EQ(controller_.scanner(), nullptr);
  writeFile(dir_ / "file", "x");
  scan(dir_.path());
  controller_.drop();
  EXPECT_EQ(controller_.scanner(), nullptr);
  EXPECT_FALSE(controller_.running());
  EXPECT_FALSE(controller_.finished());
  EXPECT_EQ(controller_.summary().files, 0u);
  scan(dir_.path());
  EXPECT_EQ(controller_.summary().files, 1u) << "it can scan again";
}

TEST_F(Controller, TellsItsOwnerOfTheEndAfterTheSummaryIsInPlace) {
  writeFile(dir_ / "file", "x");
  controller_.start(dir_.path());
  ASSERT_TRUE(test::eventually([&] { return ends_ == 1; }));
  EXPECT_TRUE(controller_.finished());
  EXPECT_EQ(controller_.summary().files, 1u);
}

TEST_F(Controller, RecordsAFinishedScanAndComparesTheNextWithIt) {
  writeFile(dir_ / "file", "x");
  scan(dir_.path());
  const std::uint32_t recorded = sizewalk::lastScanTime(dir_.path());
  EXPECT_NEAR(static_cast<double>(recorded), static_cast<double>(std::time(nullptr)), 60.0);
  scan(dir_.path());
  EXPECT_EQ(controller_.summary().lastScanTime, recorded);
  EXPECT_TRUE(controller_.scanner()->options().hasLastScan);
}

TEST_F(Controller, CountsNothingAsAddedSinceAScanThatIsNotKnown) {
  writeFile(dir_ / "file", "x");
  scan(dir_.path());
  EXPECT_EQ(controller_.scanner()->tree().addedSinceLastScan(sizewalk::kRootNode), 0u);
}

TEST_F(Controller, ScansTheFolderBehindALink) {
  writeFile(dir_ / "real/file", "12345");
  ASSERT_EQ(symlink("real", (dir_ / "link").c_str()), 0);
  scan(dir_ / "link");
  EXPECT_EQ(controller_.scanner()->tree().apparentSize(sizewalk::kRootNode), 5u);
  EXPECT_EQ(controller_.scanner()->rootPath(), dir_ / "real");
}

TEST_F(Controller, SaysWhatIsWrongWithAPath) {
  writeFile(dir_ / "file", "x");
  scan(dir_ / "missing");
  EXPECT_EQ(controller_.summary().failure, static_cast<std::uint32_t>(ENOENT));
  EXPECT_EQ(controller_.summary().failureText, "No such file or directory");
  EXPECT_EQ(controller_.scanner()->tree().nodeCount(), 0u);
  EXPECT_EQ(sizewalk::lastScanTime(dir_ / "missing"), 0u) << "no scan was made";
  scan(dir_ / "file");
  EXPECT_EQ(controller_.summary().failureText, "Not a directory");
  scan("");
  EXPECT_NE(controller_.summary().failure, 0u);
}

TEST_F(Controller, TakesNoWayUpOutOfWhatIsNotThere) {
  writeFile(dir_ / "file", "x");
  scan(dir_ / "missing/..");
  EXPECT_EQ(controller_.summary().failureText, "No such file or directory");
  scan(dir_ / "file/..");
  EXPECT_EQ(controller_.summary().failureText, "Not a directory");
}

TEST_F(Controller, ScansAFolderBeyondTheLongestPathOfTheKernel) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  test::makeDeepTree(dir.path(), 3000, 77);  // each level adds "/d"
  std::string path = dir.path();
  for (int i = 0; i < 2500; ++i) path += "/d";
  scan(path);
  EXPECT_EQ(controller_.summary().failureText, "");
  EXPECT_EQ(controller_.scanner()->tree().apparentSize(sizewalk::kRootNode), 77u);
}

TEST_F(Controller, SaysThatAFolderMayNotBeRead) {
  test::makeDirectory(dir_ / "locked");
  ASSERT_EQ(chmod((dir_ / "locked").c_str(), 0), 0);
  {
    const test::OrdinaryFileAccess ordinary;
    scan(dir_ / "locked");
  }
  EXPECT_EQ(controller_.summary().failureText, "Permission denied");
}

TEST_F(Controller, ForgetsAFailureWithTheNextScan) {
  writeFile(dir_ / "folder/file", "x");
  scan(dir_ / "missing");
  scan(dir_ / "folder");
  EXPECT_EQ(controller_.summary().failure, 0u);
  EXPECT_EQ(controller_.summary().failureText, "");
  EXPECT_EQ(controller_.summary().files, 1u);
}

TEST_F(Controller, RunsOnlyTheSecondOfTwoScansStartedInARow) {
  test::makeBushyTree(dir_ / "first", 1, 300, 8);
  writeFile(dir_ / "second/only", "123");
  controller_.start(dir_ / "first");
  controller_.start(dir_ / "second");
  waitForEnd();
  EXPECT_EQ(controller_.path(), dir_ / "second");
  EXPECT_EQ(controller_.scanner()->tree().apparentSize(sizewalk::kRootNode), 3u);
  EXPECT_FALSE(controller_.summary().cancelled);
}

TEST_F(Controller, DoesNotRecordAScanThatWasStopped) {
  test::makeBushyTree(dir_ / "big", 2, 100, 5);
  for (int attempt = 0; attempt < 200; ++attempt) {
    controller_.start(dir_ / "big");
    controller_.stop();
    waitForEnd();
    if (controller_.summary().cancelled) break;
    sizewalk::saveHistory({});  // it came to its end before it was stopped
  }
  ASSERT_TRUE(controller_.summary().cancelled);
  EXPECT_EQ(sizewalk::lastScanTime(dir_ / "big"), 0u);
}

TEST_F(Controller, StopsARunningScanWhenItIsDestroyed) {
  test::makeBushyTree(dir_ / "big", 3, 300, 8);
  for (int i = 0; i < 5; ++i) {
    ScanController controller({}, {});
    controller.start(dir_ / "big");
  }
  ASSERT_TRUE(allScansHaveEnded());
  EXPECT_EQ(sizewalk::lastScanTime(dir_ / "big"), 0u) << "none of them read everything";
}

TEST_F(Controller, ReportsNothingOnceItIsDestroyed) {
  test::makeBushyTree(dir_ / "big", 2, 100, 5);
  for (int i = 0; i < 50; ++i) {
    std::atomic<bool> alive = true;
    std::atomic<int> late = 0;
    const auto report = [&] { late += alive ? 0 : 1; };
    {
      ScanController controller([&](const auto&) { report(); }, report);
      controller.start(dir_ / "big");
      while (i % 2 == 0 && !controller.finished()) std::this_thread::yield();
    }
    alive = false;
    ASSERT_TRUE(allScansHaveEnded());
    EXPECT_EQ(late, 0);
  }
}

TEST_F(Controller, KnowsWhereAPathLeadsThatGoesUp) {
  writeFile(dir_ / "a/deep/file", "x");
  ASSERT_EQ(symlink("a/deep", (dir_ / "link").c_str()), 0);
  scan(dir_ / "link/..");
  EXPECT_EQ(controller_.path(), dir_ / "a");
  EXPECT_EQ(controller_.scanner()->rootPath(), dir_ / "a");
  EXPECT_GT(sizewalk::lastScanTime(dir_ / "a"), 0u);
}

TEST_F(Controller, LetsItsTreeLiveForAsLongAsSomebodyLooksAtIt) {
  writeFile(dir_ / "file", "12345");
  scan(dir_.path());
  const std::shared_ptr<const sizewalk::FileTree> tree = controller_.tree();
  controller_.drop();
  EXPECT_EQ(controller_.tree(), nullptr);
  ASSERT_TRUE(allScansHaveEnded());
  EXPECT_EQ(tree->apparentSize(sizewalk::kRootNode), 5u);
}

/// Scans of a folder inside which nothing answers.
class HungController : public Controller {
 protected:
  HungController() { writeFile(folder_ + "/held/file", "x"); }
  void startAndHang() {
    controller_.start(folder_);
    ASSERT_TRUE(held_.waitUntilReached());
  }

  const std::string folder_ = dir_ / "hung";
  HeldFolder held_{"held"};
};

TEST_F(HungController, StartsTheNextScanAtOnce) {
  writeFile(dir_ / "other/file", "123");
  startAndHang();
  scan(dir_ / "other");
  EXPECT_EQ(controller_.path(), dir_ / "other");
  EXPECT_EQ(controller_.scanner()->tree().apparentSize(sizewalk::kRootNode), 3u);
  EXPECT_FALSE(controller_.summary().cancelled);
}

TEST_F(HungController, IsNotMisledByTheLateEndOfAScanThatWasReplaced) {
  writeFile(dir_ / "other/file", "123");
  startAndHang();
  scan(dir_ / "other");
  ASSERT_TRUE(test::eventually([&] { return ends_ == 1; }));
  const int reports = progressReports_;
  held_.release();
  ASSERT_TRUE(allScansHaveEnded());
  EXPECT_EQ(ends_, 1);
  EXPECT_EQ(progressReports_, reports);
  EXPECT_EQ(controller_.summary().files, 1u);
  EXPECT_EQ(sizewalk::lastScanTime(folder_), 0u);
}

TEST_F(HungController, StaysWithAScanThatIsStopped) {
  startAndHang();
  controller_.stop();
  EXPECT_TRUE(controller_.scanning());
  EXPECT_EQ(controller_.scanner()->rootPath(), folder_);
  held_.release();
  waitForEnd();
  EXPECT_TRUE(controller_.summary().cancelled);
  EXPECT_EQ(sizewalk::lastScanTime(folder_), 0u);
}

TEST_F(HungController, DropsAScanAtOnce) {
  startAndHang();
  controller_.drop();
  EXPECT_EQ(controller_.scanner(), nullptr);
  EXPECT_FALSE(controller_.running());
  EXPECT_EQ(controller_.path(), "");
}

TEST_F(HungController, IsDestroyedAtOnce) {
  std::atomic<int> ends = 0;
  {
    ScanController controller({}, [&] { ++ends; });
    controller.start(folder_);
    ASSERT_TRUE(held_.waitUntilReached());
  }
  held_.release();
  ASSERT_TRUE(allScansHaveEnded());
  EXPECT_EQ(ends, 0);
}

TEST_F(HungController, DoesNotFillTheMachineWithScansOfOneFolder) {
  for (int i = 0; i < kScansOfAFolder; ++i) {
    controller_.start(folder_);
    ASSERT_TRUE(held_.waitUntilHeld(i + 1));
  }
  for (int i = 0; i < 50; ++i) controller_.start(folder_);
  writeFile(dir_ / "other/file", "123");
  scan(dir_ / "other");
  EXPECT_EQ(held_.held(), kScansOfAFolder);
  controller_.start(folder_);
  held_.release();
  waitForEnd();
  EXPECT_EQ(controller_.summary().files, 1u) << "its turn comes when the others end";
  EXPECT_FALSE(controller_.summary().cancelled);
}

}  // namespace
}  // namespace app
