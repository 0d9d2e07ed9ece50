#include "app/model/scan_session.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "base/detached_threads.h"
#include "sizewalk/scan_history.h"
#include "tests/app/held_folder.h"
#include "tests/support/blocking_file_system.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/posted_tasks.h"
#include "tests/support/scarcity.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

using test::eventually;
using test::HeldFolder;

/// A session whose clock stands still, and whose tasks are run when the test says so. What it scans
/// holds a file, and a folder "held" with another.
class Session : public testing::Test {
 protected:
  Session() {
    test::writeFile(folder_ + "/seen", "12345");
    test::writeFile(folder_ + "/held/late", "123");
    session_.onPathFound = [this] { events_.push_back("path"); };
    session_.onGrown = [this] { events_.push_back("grown"); };
    session_.onEnded = [this] { events_.push_back("ended"); };
  }
  // What a scan that was left reads is still there while it does.
  ~Session() override {
    session_.leave();
    EXPECT_TRUE(scansHaveEnded());
  }

  static bool scansHaveEnded() {
    return base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20));
  }
  void awaitPost() {
    ASSERT_TRUE(eventually([&] { return tasks_.count() == 1; }));
  }
  void scanToTheEnd(const std::string& path) {
    session_.start(path);
    awaitPost();
    tasks_.run();
  }
  void scanUntil(const std::string& path, const HeldFolder& held) {
    session_.start(path);
    ASSERT_TRUE(held.waitUntilReached());
  }
  sizewalk::NodeId nodes() const { return session_.tree()->nodeCount(); }

  using Events = std::vector<std::string>;

  test::PrivateHome home_;
  test::TempDirectory dir_;
  const std::string folder_ = dir_ / "folder";
  Events events_;
  ScanSession::Clock::time_point time_ = ScanSession::Clock::now();
  test::PostedTasks tasks_;
  ScanSession session_{tasks_.post(), [this] { return time_; }};
};

TEST_F(Session, HasNothingBeforeItsFirstScan) {
  EXPECT_EQ(session_.phase(), ScanPhase::None);
  EXPECT_FALSE(session_.underWay());
  EXPECT_EQ(session_.path(), "");
  EXPECT_EQ(session_.tree(), nullptr);
  session_.follow();
  session_.stop();
  session_.leave();
  EXPECT_EQ(session_.phase(), ScanPhase::None);
  EXPECT_EQ(events_, Events{});
}

TEST_F(Session, TellsOfTheEndOnce) {
  session_.start(folder_);
  EXPECT_EQ(session_.phase(), ScanPhase::Scanning);
  EXPECT_TRUE(session_.status().scanning);
  awaitPost();
  EXPECT_EQ(session_.phase(), ScanPhase::Scanning) << "until the window thread is told";
  tasks_.run();
  EXPECT_EQ(session_.phase(), ScanPhase::Ended);
  EXPECT_FALSE(session_.underWay());
  session_.follow();
  EXPECT_EQ(events_, Events{"ended"});
  EXPECT_FALSE(session_.status().scanning);
  EXPECT_FALSE(session_.status().stopped);
  EXPECT_EQ(session_.status().elapsedSeconds, session_.summary().elapsedSeconds);
  EXPECT_EQ(session_.summary().files, 2u);
  EXPECT_EQ(session_.path(), folder_);
}

TEST_F(Session, KnowsWhetherTheFolderWasScannedBefore) {
  scanToTheEnd(folder_);
  EXPECT_EQ(session_.status().scannedBefore, false);
  scanToTheEnd(folder_);
  EXPECT_EQ(session_.status().scannedBefore, true);
}

TEST_F(Session, FollowsTheGrowingTree) {
  HeldFolder held("folder");
  session_.start(folder_);
  session_.follow();
  EXPECT_EQ(events_, Events{});
  held.holdInstead("held");
  ASSERT_TRUE(eventually([&] { return nodes() == 3; }));
  session_.follow();
  EXPECT_EQ(events_, Events{"grown"});
  session_.follow();
  EXPECT_EQ(events_, Events{"grown"}) << "nothing more was found";
  held.release();
  awaitPost();
  session_.follow();
  EXPECT_EQ(events_, Events{"grown"}) << "the rest is seen with the end";
  tasks_.run();
  EXPECT_EQ(events_, (Events{"grown", "ended"}));
}

TEST_F(Session, LooksAtTheTreeNoMoreOftenThanThatIsCheap) {
  HeldFolder held("held");
  scanUntil(folder_, held);
  ASSERT_TRUE(eventually([&] { return nodes() == 3; }));
  session_.pacer().pauseAfter(std::chrono::hours(1));
  session_.follow();
  EXPECT_EQ(events_, Events{});
  time_ += std::chrono::hours(3);
  session_.follow();
  EXPECT_EQ(events_, Events{"grown"});
}

TEST_F(Session, ShowsAScanAsStoppedBeforeItsThreadsHaveEnded) {
  HeldFolder held("held");
  scanUntil(folder_, held);
  time_ += std::chrono::seconds(5);
  session_.stop();
  EXPECT_EQ(session_.phase(), ScanPhase::Stopping);
  EXPECT_TRUE(session_.underWay());
  time_ += std::chrono::seconds(5);
  session_.stop();
  EXPECT_FALSE(session_.status().scanning);
  EXPECT_TRUE(session_.status().stopped);
  EXPECT_EQ(session_.status().elapsedSeconds, 5) << "what passes afterwards does not count";
  EXPECT_NE(session_.status().scannedBefore, false) << "its thread may still ask the disk";
  held.release();
  awaitPost();
  tasks_.run();
  EXPECT_EQ(session_.phase(), ScanPhase::Ended);
  EXPECT_TRUE(session_.status().stopped);
  EXPECT_EQ(sizewalk::lastScanTime(folder_), 0u);
}

TEST_F(Session, ReadsAFolderAgainAfterItsEnd) {
  scanToTheEnd(folder_);
  const sizewalk::FileTree& tree = *session_.tree();
  sizewalk::NodeId held = tree.firstChild(sizewalk::kRootNode);
  while (!tree.isDirectory(held)) ++held;
  test::writeFile(folder_ + "/held/new", "1234567");
  EXPECT_FALSE(session_.status().readingAgain);
  session_.readAgain(held);
  EXPECT_EQ(session_.phase(), ScanPhase::Scanning);
  EXPECT_TRUE(session_.status().readingAgain);
  awaitPost();
  tasks_.run();
  EXPECT_EQ(session_.phase(), ScanPhase::Ended);
  EXPECT_EQ(events_, (Events{"ended", "ended"}));
  EXPECT_EQ(session_.summary().files, 3u);
  EXPECT_EQ(tree.apparentSize(held), 3u + 7u);
}

TEST_F(Session, ForgetsAFolderBeforeItIsReadAgain) {
  scanToTheEnd(folder_);
  const sizewalk::FileTree& tree = *session_.tree();
  sizewalk::NodeId node = tree.firstChild(sizewalk::kRootNode);
  while (!tree.isDirectory(node)) ++node;
  const sizewalk::NodeId file = tree.firstChild(node);
  HeldFolder held("held");
  session_.readAgain(node);
  EXPECT_FALSE(tree.isVisible(file)) << "nobody can take it out any more";
  held.release();
  awaitPost();
  tasks_.run();
  session_.readAgain(file);
  EXPECT_EQ(session_.phase(), ScanPhase::Ended) << "it is no folder of the tree";
}

TEST_F(Session, ReadsNoFolderAgainWhileItScans) {
  HeldFolder held("held");
  scanUntil(folder_, held);
  session_.readAgain(sizewalk::kRootNode);
  held.release();
  awaitPost();
  tasks_.run();
  EXPECT_EQ(events_, Events{"ended"});
  EXPECT_EQ(session_.summary().files, 2u);
}

TEST_F(Session, StopsAFolderThatIsReadAgain) {
  scanToTheEnd(folder_);
  HeldFolder held("held");
  const sizewalk::FileTree& tree = *session_.tree();
  sizewalk::NodeId node = tree.firstChild(sizewalk::kRootNode);
  while (!tree.isDirectory(node)) ++node;
  session_.readAgain(node);
  ASSERT_TRUE(held.waitUntilReached());
  session_.stop();
  EXPECT_EQ(session_.phase(), ScanPhase::Stopping);
  held.release();
  awaitPost();
  tasks_.run();
  EXPECT_TRUE(session_.status().stopped);
}

TEST_F(Session, ReadsAFolderAgainOfAScanThatWasStopped) {
  {
    HeldFolder held("held");
    scanUntil(folder_, held);
    session_.stop();
  }
  awaitPost();
  tasks_.run();
  ASSERT_TRUE(session_.summary().cancelled);
  test::writeFile(folder_ + "/new", "1234567");
  session_.readAgain(sizewalk::kRootNode);
  awaitPost();
  tasks_.run();
  EXPECT_EQ(session_.summary().files, 3u);
}

TEST_F(Session, StopsAFolderThatIsAboutToBeReadAgain) {
  for (int i = 0; i < 20; ++i) {
    scanToTheEnd(folder_);
    {
      const HeldFolder held("folder");  // so that it has not been read before it is stopped
      session_.readAgain(sizewalk::kRootNode);
      session_.stop();
    }
    awaitPost();
    tasks_.run();
    ASSERT_TRUE(session_.summary().cancelled);
  }
}

TEST_F(Session, DoesNotTakeTheEndOfTheScanBeforeForItsOwn) {
  session_.start(folder_);
  awaitPost();  // but is not run yet
  HeldFolder held("held");
  scanUntil(folder_, held);
  tasks_.run();
  EXPECT_EQ(session_.phase(), ScanPhase::Scanning);
  EXPECT_EQ(events_, Events{});
}

TEST_F(Session, StartsAtOnceWhileTheScanBeforeHangs) {
  HeldFolder held("held");
  scanUntil(folder_, held);
  const std::string other = dir_ / "other";
  test::writeFile(other + "/file", "x");
  scanToTheEnd(other);
  EXPECT_EQ(session_.phase(), ScanPhase::Ended);
  EXPECT_EQ(session_.summary().files, 1u);
  held.release();
  ASSERT_TRUE(scansHaveEnded());
  EXPECT_EQ(tasks_.count(), 0u) << "nobody is told of the late end";
}

TEST_F(Session, LeavesAtOnceAScanThatHangs) {
  HeldFolder held("held");
  scanUntil(folder_, held);
  session_.leave();
  EXPECT_EQ(session_.phase(), ScanPhase::None);
  EXPECT_EQ(session_.tree(), nullptr);
  EXPECT_EQ(session_.path(), "");
}

TEST_F(Session, IsNotMisledByTheEndOfAScanThatItHasLeft) {
  session_.start(folder_);
  awaitPost();
  session_.leave();
  tasks_.run();
  EXPECT_EQ(session_.phase(), ScanPhase::None);
  EXPECT_EQ(events_, Events{});
}

TEST_F(Session, SaysThatAFolderCannotBeScanned) {
  scanToTheEnd(dir_ / "missing");
  EXPECT_EQ(session_.phase(), ScanPhase::Failed);
  EXPECT_EQ(events_, Events{"ended"});
  EXPECT_EQ(session_.summary().failureText, "No such file or directory");
}

TEST_F(Session, CountsWhatCannotBeRead) {
  test::BlockingFileSystem disk;
  if (!disk.problem().empty()) GTEST_SKIP() << disk.problem();
  disk.breakListing("", 1);
  disk.breakListing("folder", 0);
  scanToTheEnd(disk.path());
  EXPECT_EQ(session_.status().unreadable, 2);
}

TEST_F(Session, KeepsNoTreeOfAScanThatItHasLeft) {
  scanToTheEnd(folder_);
  const std::weak_ptr<const sizewalk::FileTree> first = session_.tree();
  scanToTheEnd(folder_);
  EXPECT_TRUE(eventually([&] { return first.expired(); })) << "its thread may be about to end";
  const std::weak_ptr<const sizewalk::FileTree> second = session_.tree();
  session_.leave();
  EXPECT_TRUE(eventually([&] { return second.expired(); }));
}

TEST_F(Session, KeepsTheTreeOfAScanThatHangsUntilThatHasEnded) {
  HeldFolder held("held");
  scanUntil(folder_, held);
  const std::weak_ptr<const sizewalk::FileTree> tree = session_.tree();
  session_.leave();
  EXPECT_FALSE(tree.expired());
  held.release();
  EXPECT_TRUE(eventually([&] { return tree.expired(); }));
}

TEST_F(Session, CanBeLeftWhenItTellsOfAFailure) {
  session_.onEnded = [this] { session_.leave(); };
  scanToTheEnd(dir_ / "missing");
  EXPECT_EQ(session_.phase(), ScanPhase::None);
}

TEST_F(Session, TellsWhereAPathLeadsThatGoesUp) {
  ASSERT_EQ(symlink("folder/held", (dir_ / "link").c_str()), 0);
  HeldFolder held("held");
  session_.start(dir_ / "link/..");
  ASSERT_TRUE(held.waitUntilReached());
  session_.follow();
  EXPECT_EQ(session_.path(), folder_);
  ASSERT_FALSE(events_.empty());
  EXPECT_EQ(events_[0], "path");
  session_.follow();
  EXPECT_EQ(std::count(events_.begin(), events_.end(), "path"), 1);
}

TEST_F(Session, TellsOfThePathBeforeTheEnd) {
  scanToTheEnd(folder_ + "/held/..");
  EXPECT_EQ(session_.path(), folder_);
  EXPECT_EQ(events_.back(), "ended");
}

TEST_F(Session, FailsWithItsReasonWithoutThreads) {
  // One is the scan's own, the next one the integrator's.
  for (const int left : {0, 1, 2}) {
    const test::FewThreads few(left);
    session_.start(folder_);
    awaitPost();
    tasks_.run();
    EXPECT_EQ(session_.phase(), ScanPhase::Failed) << left;
    EXPECT_EQ(session_.summary().failureText, "No more threads can be started");
    EXPECT_EQ(sizewalk::lastScanTime(folder_), 0U);
    ASSERT_TRUE(scansHaveEnded());
  }
  scanToTheEnd(folder_);
  EXPECT_EQ(session_.phase(), ScanPhase::Ended) << "there are threads again";
}

TEST_F(Session, FailsWithItsReasonWithoutMemory) {
  constexpr int kOfTheRoot = 14;
  test::makeDirectory(folder_ + "/many");
  for (int i = 0; i < 4300; ++i) {  // their names take a second page
    std::string name = std::to_string(i);
    name.resize(250, 'x');
    test::writeFile(folder_ + "/many/" + name);
  }
  const auto scanWithPages = [&](int left) {
    const test::FewPages few(left);
    session_.start(folder_);
    awaitPost();
    tasks_.run();
    EXPECT_EQ(session_.summary().failureText, "Out of memory");
    EXPECT_EQ(sizewalk::lastScanTime(folder_), 0U);
  };
  scanWithPages(0);
  EXPECT_EQ(session_.phase(), ScanPhase::Failed);
  scanWithPages(kOfTheRoot);
  EXPECT_EQ(session_.phase(), ScanPhase::Ended) << "something was found";
  EXPECT_TRUE(session_.status().stopped);
  EXPECT_GT(session_.tree()->nodeCount(), 1U);
  scanToTheEnd(folder_);
  EXPECT_EQ(session_.phase(), ScanPhase::Ended) << "there is memory again";
}

TEST_F(Session, IsStoppedWhenAFolderFindsNoThreadsToBeReadAgain) {
  scanToTheEnd(folder_);
  const auto again = [&](int left) {
    const test::FewThreads few(left);
    session_.readAgain(sizewalk::kRootNode);
    awaitPost();
    tasks_.run();
  };
  for (const int left : {0, 1, 2}) {
    again(left);
    EXPECT_EQ(session_.phase(), ScanPhase::Ended) << left;
    EXPECT_TRUE(session_.status().stopped) << left;
  }
}

}  // namespace
}  // namespace app
