#include <gtest/gtest.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "sizewalk/result_queue.h"
#include "sizewalk/walk_control.h"
#include "sizewalk/work_list.h"
#include "tests/support/eventually.h"
#include "tests/support/held_locks.h"
#include "tests/support/waiting_thread.h"

namespace sizewalk {
namespace {

std::unique_ptr<DirectoryResult> resultFor(NodeId directory) {
  auto result = std::make_unique<DirectoryResult>();
  result->reset(directory);
  return result;
}

TEST(WorkList, HandsOutTheMostRecentlyPushedFirst) {
  WorkList list(0);
  NodeId directory = 99;
  ASSERT_TRUE(list.pop(&directory));
  EXPECT_EQ(directory, 0u);
  list.pushAll(std::vector<NodeId>{1, 2, 3});
  ASSERT_TRUE(list.pop(&directory));
  EXPECT_EQ(directory, 3u);
  list.pushAll(std::vector<NodeId>{7});
  ASSERT_TRUE(list.pop(&directory));
  EXPECT_EQ(directory, 7u);
}

TEST(WorkList, ClosesWhenTheLastDirectoryIsDone) {
  WorkList list(0);
  NodeId directory;
  ASSERT_TRUE(list.pop(&directory));
  list.pushAll(std::vector<NodeId>{1});
  list.done();
  EXPECT_FALSE(list.closedFlag());
  ASSERT_TRUE(list.pop(&directory));
  list.done();
  EXPECT_TRUE(list.closedFlag());
  EXPECT_FALSE(list.pop(&directory));
}

TEST(WorkList, GivesNothingOutOnceClosedEvenWhenDirectoriesRemain) {
  WorkList list(0);
  list.close();
  NodeId directory;
  EXPECT_FALSE(list.pop(&directory));
}

TEST(WorkList, HandsOutEveryDirectoryOnce) {
  WorkList list(0);
  NodeId first;
  ASSERT_TRUE(list.pop(&first));
  std::atomic<int> got{0};
  std::vector<std::thread> readers;
  for (int i = 0; i < 4; ++i) {
    readers.emplace_back([&] {
      NodeId directory;
      while (list.pop(&directory)) {
        ++got;
        list.done();
      }
    });
  }
  std::vector<NodeId> batch(1000, 5);
  list.pushAll(batch);
  list.done();
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(got, 1000);
}

/// Four readers that wait for a directory. Each ends once it has one, but not before it is let go.
class WaitingReaders {
 public:
  explicit WaitingReaders(WorkList* list) : list_(*list) {
    for (Reader& reader : readers_) {
      reader.thread = std::thread([this, &reader] {
        reader.id = gettid();
        NodeId directory;
        const bool has = list_.pop(&directory);
        ++(has ? got_ : sentAway_);
        letGo_.wait(false);
      });
    }
    for (const Reader& reader : readers_) {
      EXPECT_TRUE(test::eventually([&] { return reader.id != 0 && test::waits(reader.id); }));
    }
  }
  /// Those that nobody has woken are, however badly the list wakes.
  ~WaitingReaders() {
    letGo_ = true;
    letGo_.notify_all();
    while (got_ + sentAway_ < kReaders) {
      list_.close();
      std::this_thread::yield();
    }
    for (Reader& reader : readers_) reader.thread.join();
  }
  WaitingReaders(const WaitingReaders&) = delete;
  WaitingReaders& operator=(const WaitingReaders&) = delete;

  /// Whether, in the end, so many have a directory.
  bool get(int count) const {
    return test::eventually([&] { return got_ == count; });
  }
  bool allAreSentAway() const {
    return test::eventually([&] { return sentAway_ == kReaders; });
  }

 private:
  static constexpr int kReaders = 4;
  struct Reader {
    std::thread thread;
    std::atomic<pid_t> id{0};
  };
  WorkList& list_;
  std::array<Reader, kReaders> readers_;
  std::atomic<int> got_{0};
  std::atomic<int> sentAway_{0};
  std::atomic<bool> letGo_{false};
};

TEST(WorkList, WakesAReaderForEachDirectory) {
  for (const int directories : {1, 3, 4}) {
    WorkList list(0);
    NodeId start;
    ASSERT_TRUE(list.pop(&start));
    const WaitingReaders readers(&list);
    list.pushAll(std::vector<NodeId>(static_cast<std::size_t>(directories), 5));
    EXPECT_TRUE(readers.get(directories)) << directories;
  }
}

TEST(WorkList, WakesEveryReaderWhenTheLastDirectoryIsDone) {
  WorkList list(0);
  NodeId start;
  ASSERT_TRUE(list.pop(&start));
  const WaitingReaders readers(&list);
  list.done();
  EXPECT_TRUE(readers.allAreSentAway());
}

TEST(WorkList, WakesEveryReaderWhenItIsClosed) {
  WorkList list(0);
  NodeId start;
  ASSERT_TRUE(list.pop(&start));
  const WaitingReaders readers(&list);
  list.close();
  EXPECT_TRUE(readers.allAreSentAway());
}

TEST(ResultQueue, IsFirstInFirstOutAcrossItsErasures) {
  ResultQueue queue;
  NodeId pushed = 0, popped = 0;
  for (int round = 0; round < 20; ++round) {
    for (int i = 0; i < 700; ++i) queue.push(resultFor(pushed++));
    for (int i = 0; i < 700; ++i) ASSERT_EQ(queue.pop()->directory, popped++);
  }
  EXPECT_EQ(queue.producerWaits(), 0u);
}

TEST(ResultQueue, MakesAProducerWaitForRoomAndCountsIt) {
  ResultQueue queue;
  for (NodeId i = 0; i < ResultQueue::kCapacity; ++i) queue.push(resultFor(i));
  EXPECT_EQ(queue.producerWaits(), 0u);
  std::thread producer([&] { queue.push(resultFor(5000)); });
  while (queue.producerWaits() == 0) std::this_thread::yield();
  EXPECT_EQ(queue.pop()->directory, 0u);
  producer.join();
  for (NodeId i = 1; i < ResultQueue::kCapacity; ++i) ASSERT_EQ(queue.pop()->directory, i);
  EXPECT_EQ(queue.pop()->directory, 5000u);
}

TEST(ResultQueue, CountsOneWaitOfTheIntegratorHoweverLongItTakes) {
  ResultQueue queue;
  std::thread integrator([&] {
    while (queue.pop()) {
    }
  });
  while (queue.consumerWaits() == 0) std::this_thread::yield();
  for (NodeId i = 0; i < ResultQueue::kBatch; ++i) queue.push(resultFor(i));
  while (queue.consumerWaits() == 1) std::this_thread::yield();
  EXPECT_EQ(queue.consumerWaits(), 2u) << "one for the batch, one after it";
  queue.push(resultFor(99));
  queue.flush();
  queue.close();
  integrator.join();
}

/// Starts an integrator that, left alone, would sleep for an hour; has `act` done once it sleeps,
/// and returns the first result that it was woken for.
NodeId wokenFor(const std::function<void(ResultQueue&)>& act) {
  ResultQueue queue(std::chrono::hours(1));
  NodeId first = 0;
  std::thread integrator([&] { first = queue.pop()->directory; });
  while (queue.consumerWaits() == 0) std::this_thread::yield();
  act(queue);
  integrator.join();
  return first;
}

TEST(ResultQueue, WakesTheIntegratorForWhatThereIsWhenItIsFlushed) {
  EXPECT_EQ(wokenFor([](ResultQueue& queue) {
              queue.push(resultFor(42));
              queue.flush();
            }),
            42u);
}

TEST(ResultQueue, WakesTheIntegratorForABatch) {
  EXPECT_EQ(wokenFor([](ResultQueue& queue) {
              for (NodeId i = 0; i < ResultQueue::kBatch; ++i) queue.push(resultFor(7 + i));
            }),
            7u);
}

TEST(ResultQueue, FlushesNothingOutOfAnEmptyQueue) {
  ResultQueue queue;
  queue.flush();
  queue.push(resultFor(1));
  queue.flush();
  EXPECT_EQ(queue.pop()->directory, 1u);
}

TEST(ResultQueue, IsEmptiedBeforeItsEndShows) {
  ResultQueue queue;
  queue.push(resultFor(1));
  queue.close();
  EXPECT_EQ(queue.pop()->directory, 1u);
  EXPECT_EQ(queue.pop(), nullptr);
}

TEST(ResultQueue, LetsAWaitingProducerGoWhenItCloses) {
  ResultQueue queue;
  for (NodeId i = 0; i < ResultQueue::kCapacity; ++i) queue.push(resultFor(i));
  std::thread producer([&] { queue.push(resultFor(9)); });
  while (queue.producerWaits() == 0) std::this_thread::yield();
  queue.close();
  producer.join();
}

TEST(WalkControl, ClosesAListPublishedAfterTheCancel) {
  WalkControl control;
  control.arm();
  control.cancel();
  WorkList list(0);
  control.begin(&list);
  EXPECT_TRUE(list.closedFlag());
  EXPECT_TRUE(control.cancelRequested());
  control.end();
}

TEST(WalkControl, ClosesTheRunningList) {
  WalkControl control;
  WorkList list(0);
  control.begin(&list);
  EXPECT_FALSE(list.closedFlag());
  control.cancel();
  EXPECT_TRUE(list.closedFlag());
  control.end();
}

TEST(WalkControl, KeepsTheListUntilACancelHasLetGoOfIt) {
  WalkControl control;
  WorkList list(0);
  control.begin(&list);
  std::atomic<pid_t> ending{0};
  std::atomic<bool> ended{false};
  {
    test::HeldWakeUps held;  // the cancel stays inside the list
    std::thread cancelling([&] { control.cancel(); });
    EXPECT_TRUE(held.waitUntilReached());
    std::thread end([&] {
      ending = gettid();
      control.end();
      ended = true;
    });
    EXPECT_TRUE(test::eventually([&] { return ended || (ending != 0 && test::waits(ending)); }));
    EXPECT_FALSE(ended);
    held.release();
    cancelling.join();
    end.join();
  }
  EXPECT_TRUE(ended);
}

TEST(WalkControl, ForgetsACancelThatCameAfterTheWalk) {
  WalkControl control;
  WorkList first(0);
  control.begin(&first);
  control.end();
  control.cancel();
  EXPECT_TRUE(control.cancelRequested());
  control.arm();
  EXPECT_FALSE(control.cancelRequested());
  WorkList second(0);
  control.begin(&second);
  EXPECT_FALSE(second.closedFlag());
  control.end();
}

}  // namespace
}  // namespace sizewalk
