#include "base/detached_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <utility>

#include "tests/support/scarcity.h"

namespace base {
namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point longTime() { return Clock::now() + std::chrono::seconds(20); }

TEST(DetachedThreads, AreNotWaitedForLongerThanUntilTheDeadline) {
  std::promise<void> letGo;
  ASSERT_TRUE(startDetached([wait = letGo.get_future()] { wait.wait(); }));
  EXPECT_FALSE(awaitDetachedThreads(Clock::now() + std::chrono::milliseconds(1)));
  EXPECT_FALSE(awaitDetachedThreads(Clock::now() - std::chrono::seconds(1)));
  letGo.set_value();
  EXPECT_TRUE(awaitDetachedThreads(longTime()));
}

TEST(DetachedThreads, HaveEndedOnlyWhenAllThatTheyOwnedIsGone) {
  std::atomic<bool> gone = false;
  const auto leave = [&gone](const int* number) {
    gone = true;
    std::default_delete<const int>()(number);
  };
  std::unique_ptr<const int, decltype(leave)> owned(std::make_unique<const int>(1).release(),
                                                    leave);
  ASSERT_TRUE(startDetached([owned = std::move(owned)] {}));
  EXPECT_TRUE(awaitDetachedThreads(longTime()));
  EXPECT_TRUE(gone);
}

TEST(DetachedThreads, AreAwaitedAllOfThem) {
  std::promise<void> letGo;
  const std::shared_future<void> wait = letGo.get_future().share();
  std::atomic<int> ended = 0;
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(startDetached([&ended, wait] {
      wait.wait();
      ++ended;
    }));
  }
  letGo.set_value();
  EXPECT_TRUE(awaitDetachedThreads(longTime()));
  EXPECT_EQ(ended, 5);
}

TEST(DetachedThreads, AreNotStartedWhereNoneIsToBeHad) {
  const auto owned = std::make_shared<int>(7);
  {
    const test::FewThreads none(0);
    EXPECT_FALSE(startDetached([owned] { FAIL() << "there is a thread"; }));
  }
  EXPECT_EQ(owned.use_count(), 1);
  EXPECT_TRUE(awaitDetachedThreads(Clock::now())) << "none is counted";
}

/// Writes down which thread destroys it.
struct TellsItsEnd {
  explicit TellsItsEnd(std::thread::id* endedOn) : where(endedOn) {}
  TellsItsEnd(TellsItsEnd&& other) noexcept : where(std::exchange(other.where, nullptr)) {}
  ~TellsItsEnd() {
    if (where) *where = std::this_thread::get_id();
  }
  std::thread::id* where;
};

TEST(DestroyElsewhere, LeavesTheDestructionToAnotherThread) {
  std::thread::id endedOn;
  destroyElsewhere(TellsItsEnd(&endedOn));
  ASSERT_TRUE(awaitDetachedThreads(longTime()));
  EXPECT_NE(endedOn, std::thread::id());
  EXPECT_NE(endedOn, std::this_thread::get_id());
}

TEST(DestroyElsewhere, DestroysOnTheSpotWhereNoThreadIsToBeHad) {
  std::thread::id endedOn;
  const test::FewThreads none(0);
  destroyElsewhere(TellsItsEnd(&endedOn));
  EXPECT_EQ(endedOn, std::this_thread::get_id());
}

TEST(DetachedThreads, AreNoneBeforeTheFirst) { EXPECT_TRUE(awaitDetachedThreads(Clock::now())); }

}  // namespace
}  // namespace base
