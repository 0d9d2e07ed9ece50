#include "ui/task_queue.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <array>
#include <memory>
#include <thread>
#include <vector>

#include "ui/wake_pipe.h"

namespace ui {
namespace {

TEST(TaskQueue, RunsTasksInTheOrderTheyWereAppended) {
  TaskQueue queue;
  std::vector<int> ran;
  for (int i = 0; i < 5; ++i) queue.append([&ran, i] { ran.push_back(i); });
  queue.runAll();
  EXPECT_EQ(ran, (std::vector<int>{0, 1, 2, 3, 4}));
  queue.runAll();
  EXPECT_EQ(ran.size(), 5u);
}

TEST(TaskQueue, LeavesTasksAppendedByATaskForTheNextRound) {
  TaskQueue queue;
  int inner = 0;
  queue.append([&] { queue.append([&] { ++inner; }); });
  queue.runAll();
  EXPECT_EQ(inner, 0);
  queue.runAll();
  EXPECT_EQ(inner, 1);
}

TEST(TaskQueue, DestroysTasksOnlyAfterAllOfARoundRan) {
  TaskQueue queue;
  auto token = std::make_shared<int>(0);
  const std::weak_ptr<int> watched = token;
  bool aliveInLaterTask = false;
  queue.append([held = std::move(token)] {});
  queue.append([&] { aliveInLaterTask = !watched.expired(); });
  queue.runAll();
  EXPECT_TRUE(aliveInLaterTask);
  EXPECT_TRUE(watched.expired());
}

TEST(TaskQueue, KeepsTheOrderOfEachThreadThatAppends) {
  constexpr int kThreads = 4;
  constexpr int kTasks = 500;
  TaskQueue queue;
  std::array<std::vector<int>, kThreads> ran;
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        for (int i = 0; i < kTasks; ++i) {
          queue.append([&ran, t, i] { ran[static_cast<std::size_t>(t)].push_back(i); });
        }
      });
    }
    for (int i = 0; i < 100; ++i) queue.runAll();
  }
  queue.runAll();
  for (const std::vector<int>& order : ran) {
    ASSERT_EQ(order.size(), static_cast<std::size_t>(kTasks));
    for (int i = 0; i < kTasks; ++i) ASSERT_EQ(order[static_cast<std::size_t>(i)], i);
  }
}

bool isReadable(const WakePipe& pipe) {
  pollfd descriptor{pipe.readEnd(), POLLIN, 0};
  return poll(&descriptor, 1, 0) == 1;
}

TEST(WakePipe, IsReadableAfterAWakeUpUntilDrained) {
  const WakePipe pipe;
  EXPECT_FALSE(isReadable(pipe));
  for (int i = 0; i < 1000; ++i) pipe.wake();
  EXPECT_TRUE(isReadable(pipe));
  pipe.drain();
  EXPECT_FALSE(isReadable(pipe));
}

TEST(WakePipe, DoesNotBlockWhenFull) {
  const WakePipe pipe;
  for (int i = 0; i < 100'000; ++i) pipe.wake();  // a pipe holds 65,536 bytes
  pipe.drain();
  EXPECT_FALSE(isReadable(pipe));
}

}  // namespace
}  // namespace ui
