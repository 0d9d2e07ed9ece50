#include "app/model/scan_turns.h"

#include <gtest/gtest.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>

#include "tests/support/eventually.h"
#include "tests/support/held_locks.h"
#include "tests/support/waiting_thread.h"

namespace app {
namespace {

const std::string kFolder = "/folder";

class ScanTurnsTest : public testing::Test {
 protected:
  void takeAll() {
    for (int i = 0; i < kScansOfAFolder; ++i) ASSERT_TRUE(turns_.take(kFolder, scanner_));
  }

  ScanTurns turns_;
  sizewalk::TreeScanner scanner_{sizewalk::ScanOptions()};
};

/// A scan of the folder whose turn has not come, on a thread of its own.
class Waiting {
 public:
  Waiting(ScanTurns* turns, sizewalk::TreeScanner* scanner)
      : turns_(*turns), scanner_(*scanner), thread_([this] {
          id_ = gettid();
          hasTurn_ = turns_.take(kFolder, scanner_);
          ended_ = true;
        }) {}
  /// Whoever still waits is let go.
  ~Waiting() {
    scanner_.cancel();
    if (!ended_) turns_.giveBack(kFolder);
    thread_.join();
  }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

  bool waits() const {
    return test::eventually([&] { return id_ != 0 && test::waits(id_); }) && !ended_;
  }
  bool ends() const {
    return test::eventually([&] { return ended_.load(); });
  }
  bool hasTurn() const { return hasTurn_; }

 private:
  ScanTurns& turns_;
  sizewalk::TreeScanner& scanner_;
  std::atomic<pid_t> id_{0};
  std::atomic<bool> hasTurn_{false};
  std::atomic<bool> ended_{false};
  std::thread thread_;  // below what it uses
};

TEST_F(ScanTurnsTest, HoldNoOtherFolderUp) {
  takeAll();
  EXPECT_TRUE(turns_.take("/other", scanner_));
}

TEST_F(ScanTurnsTest, ComeWhenOneOfThoseBeforeHasEnded) {
  takeAll();
  Waiting next(&turns_, &scanner_);
  ASSERT_TRUE(next.waits());
  turns_.giveBack(kFolder);
  EXPECT_TRUE(next.ends());
  EXPECT_TRUE(next.hasTurn());
}

TEST_F(ScanTurnsTest, AreNotTakenByAScanThatWasCancelledBefore) {
  scanner_.cancel();
  EXPECT_FALSE(turns_.take(kFolder, scanner_));
}

TEST_F(ScanTurnsTest, AreGivenUpByAScanThatIsCancelledWhileItWaits) {
  takeAll();
  sizewalk::TreeScanner waiting{sizewalk::ScanOptions()};
  Waiting next(&turns_, &waiting);
  ASSERT_TRUE(next.waits());
  waiting.cancel();
  turns_.cancelled();
  EXPECT_TRUE(next.ends());
  EXPECT_FALSE(next.hasTurn());
}

TEST_F(ScanTurnsTest, HoldOneMutexAtATime) {
  if (!test::HeldLocks::kCounts) GTEST_SKIP() << "a sanitizer has the mutexes";
  const test::HeldLocks locks;
  takeAll();
  {
    Waiting next(&turns_, &scanner_);
    ASSERT_TRUE(next.waits());
    turns_.cancelled();
    turns_.giveBack(kFolder);
    ASSERT_TRUE(next.ends());
  }
  EXPECT_EQ(locks.most(), 1);
}

TEST_F(ScanTurnsTest, CanBeTakenOftenOneAfterTheOther) {
  for (int i = 0; i < 3 * kScansOfAFolder; ++i) {
    ASSERT_TRUE(turns_.take(kFolder, scanner_));
    turns_.giveBack(kFolder);
  }
}

}  // namespace
}  // namespace app
