#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "tests/ui/window_test_base.h"
#include "ui/x11.h"

namespace test {
namespace {

using namespace std::chrono_literals;

class EventLoopTest : public WindowTest {};

TEST_F(EventLoopTest, RunsTasksInTheOrderOfTheirPosting) {
  std::vector<int> ran;
  for (int i = 0; i < 1000; ++i) window.post([&ran, i] { ran.push_back(i); });
  window.post([&] { window.quit(); });
  window.run();
  ASSERT_EQ(ran.size(), 1000u);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(ran[static_cast<std::size_t>(i)], i);
}

/// Notes on which thread it ends.
struct Token {
  explicit Token(std::thread::id& ended) : endedOn(ended) {}
  ~Token() { endedOn = std::this_thread::get_id(); }
  std::thread::id& endedOn;
};

TEST_F(EventLoopTest, RunsTasksPostedByOtherThreadsOnItsOwnThreadAndDestroysThemThere) {
  show();
  std::thread::id ranOn;
  std::thread::id destroyedOn;
  std::jthread poster([&] {
    auto token = std::make_shared<Token>(destroyedOn);
    window.post([&, held = std::move(token)] {
      ranOn = std::this_thread::get_id();
      window.quit();
    });
  });
  window.run();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  EXPECT_EQ(destroyedOn, std::this_thread::get_id());
}

TEST_F(EventLoopTest, WithoutATickAPostEndsTheWait) {
  show();
  settle();
  std::jthread poster([&] { window.post([&] { window.quit(); }); });
  window.run();  // returns
}

TEST_F(EventLoopTest, ATaskMayPostATask) {
  std::vector<int> ran;
  window.post([&] {
    window.post([&] {
      ran.push_back(2);
      window.quit();
    });
    ran.push_back(1);
  });
  window.run();
  EXPECT_EQ(ran, (std::vector<int>{1, 2}));
}

/// How often this thread went to sleep, and how long it computed.
rusage threadUsage() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return usage;
}

std::chrono::microseconds cpuTime(const rusage& usage) {
  return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

TEST_F(EventLoopTest, SleepsUntilSomethingHappens) {
  show();
  settle();
  for (int i = 0; i < 1000; ++i) window.post([] {});
  window.setTick(400, [&] { window.quit(); });
  const rusage before = threadUsage();
  window.run();
  const rusage after = threadUsage();
  EXPECT_LT(cpuTime(after) - cpuTime(before), 100ms);
  EXPECT_LT(after.ru_nvcsw - before.ru_nvcsw, 20);  // no interval at which it looks around
}

TEST_F(EventLoopTest, TicksOnceForAllTheTimeItWasBusy) {
  show();
  settle();
  std::vector<std::int64_t> ticks;
  std::int64_t freeAgain = 0;
  window.setTick(100, [&] {
    ticks.push_back(ui::Window::now());
    if (ticks.size() == 2) window.quit();
  });
  window.post([&] {
    const std::int64_t busyUntil = ui::Window::now() + 350;
    do {
      freeAgain = ui::Window::now();
    } while (freeAgain < busyUntil);
  });
  window.run();
  ASSERT_EQ(ticks.size(), 2u);
  EXPECT_GE(ticks[0], freeAgain);
  EXPECT_GE(ticks[1], ticks[0] + 99);  // the clock is read just before the tick is called
}

TEST_F(EventLoopTest, StoppedTickIsNotCalled) {
  show();
  int ticks = 0;
  window.setTick(1, [&] { ++ticks; });
  window.stopTick();
  const std::int64_t enough = ui::Window::now() + 50;
  const std::function<void()> turn = [&] {  // keeps the loop turning past many intervals
    if (ui::Window::now() > enough) return window.quit();
    window.post(turn);
  };
  window.post(turn);
  window.run();
  EXPECT_EQ(ticks, 0);
}

TEST_F(EventLoopTest, EndsWhenItsTickStopsItselfAndQuits) {
  show();
  settle();
  window.setTick(1, [&] {
    window.stopTick();
    window.quit();
  });
  window.run();  // returns although nothing would wake it any more
}

TEST_F(EventLoopTest, PaintsAfterTheTickAndBeforeTheNextTask) {
  show();
  settle();
  std::vector<std::string> order;
  window.onPaint = [&](ui::Canvas&) { order.push_back("paint"); };
  window.setTick(1, [&] {
    order.push_back("tick");
    window.invalidate();
    window.post([&] {
      order.push_back("task");
      window.quit();
    });
    window.stopTick();
  });
  window.run();
  EXPECT_EQ(order, (std::vector<std::string>{"tick", "paint", "task"}));
}

TEST_F(EventLoopTest, RunsWhatAnEventPostedBeforeTheRepaint) {
  show();
  settle();
  std::vector<std::string> order;
  window.onPaint = [&](ui::Canvas&) {
    order.push_back("paint");
    window.quit();
  };
  window.onResize = [&](int, int) { window.post([&] { order.push_back("task"); }); };
  other.resizeWindow(window.xid(), 90, 90);
  window.run();
  EXPECT_EQ(order, (std::vector<std::string>{"task", "paint"}));
}

TEST_F(EventLoopTest, HandlesNoFurtherEventAfterQuit) {
  show();
  settle();
  int resizes = 0;
  window.onResize = [&](int, int) {
    ++resizes;
    window.quit();
  };
  other.resizeWindow(window.xid(), 90, 90);
  other.resizeWindow(window.xid(), 91, 91);
  window.run();
  EXPECT_EQ(resizes, 1);
}

TEST_F(EventLoopTest, HandlesEventsThatXlibReadWhileItWaitedForAnAnswer) {
  show();
  settle();
  constexpr int kAsleepMs = 5000;
  bool handled = false;
  window.onResize = [&](int, int) {
    handled = true;
    window.quit();
  };
  window.setTick(1, [&] {
    other.resizeWindow(window.xid(), 90, 90);
    XSync(connection->native().display, False);
    window.setTick(kAsleepMs, [&] { window.quit(); });
  });
  const std::int64_t start = ui::Window::now();
  window.run();
  EXPECT_TRUE(handled);
  EXPECT_LT(ui::Window::now() - start, kAsleepMs) << "only the tick woke the loop";
}

TEST_F(EventLoopTest, DestroysTasksThatDidNotRunWithTheWindow) {
  std::thread::id destroyedOn;
  bool ran = false;
  {
    ui::Window brief(*connection);
    std::jthread poster([&] {
      auto token = std::make_shared<Token>(destroyedOn);
      brief.post([&ran, held = std::move(token)] { ran = true; });
    });
    poster.join();
    EXPECT_EQ(destroyedOn, std::thread::id());
  }
  EXPECT_EQ(destroyedOn, std::this_thread::get_id());
  EXPECT_FALSE(ran);
}

TEST_F(EventLoopTest, CanRunAgain) {
  show();
  for (int i = 0; i < 2; ++i) {
    bool ran = false;
    window.post([&] {
      ran = true;
      window.quit();
    });
    window.run();
    EXPECT_TRUE(ran);
  }
}

std::atomic<int> signalsTaken{0};

TEST_F(EventLoopTest, GoesOnAfterASignal) {
  show();
  settle();
  struct sigaction action {};
  action.sa_handler = [](int) { ++signalsTaken; };  // without SA_RESTART: the wait fails
  struct sigaction old {};
  sigaction(SIGUSR1, &action, &old);
  const pthread_t loop = pthread_self();
  std::jthread disturber([&] {
    for (int i = 1; i <= 200; ++i) {
      pthread_kill(loop, SIGUSR1);
      while (signalsTaken < i) std::this_thread::yield();  // one at a time
    }
    window.post([&] { window.quit(); });
  });
  window.run();
  disturber.join();
  sigaction(SIGUSR1, &old, nullptr);
}

/// Lets the process open no descriptor at or above `limit` for a scope.
class DescriptorLimit {
 public:
  explicit DescriptorLimit(rlim_t limit) {
    getrlimit(RLIMIT_NOFILE, &old_);
    const rlimit lowered{limit, old_.rlim_max};
    set_ = setrlimit(RLIMIT_NOFILE, &lowered) == 0;
  }
  ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &old_); }
  bool set() const { return set_; }

 private:
  rlimit old_{};
  bool set_ = false;
};

TEST_F(EventLoopTest, WithoutAWakePipeTasksRunWithTheTick) {
  std::optional<ui::Window> pipeless;
  {
    const int next = dup(STDOUT_FILENO);
    close(next);
    const DescriptorLimit limit(static_cast<rlim_t>(next));
    pipeless.emplace(*connection);
  }
  ASSERT_TRUE(pipeless->create("No pipe", 50, 50));
  int ticks = 0;
  pipeless->setTick(1, [&] {
    if (++ticks == 3) pipeless->post([&] { pipeless->quit(); });
  });
  pipeless->run();
  EXPECT_GE(ticks, 3);
}

TEST(EventLoopWithManyDescriptors, WaitsOnDescriptorsThatSelectCannotTake) {
  const DescriptorLimit limit(FD_SETSIZE + 200);
  if (!limit.set()) GTEST_SKIP() << "the limit of descriptors cannot be raised here";
  XServer server;
  std::vector<int> held;
  while (held.empty() || held.back() < FD_SETSIZE) held.push_back(open("/dev/null", O_RDONLY));
  {
    const auto connection = ui::Connection::open();
    ASSERT_TRUE(connection);
    ui::Window window(*connection);
    ASSERT_TRUE(window.create("High descriptors", 50, 50));
    bool painted = false;
    window.onPaint = [&](ui::Canvas&) {
      painted = true;
      window.post([&] { window.quit(); });
    };
    window.show();
    window.run();
    EXPECT_TRUE(painted);
  }
  for (const int descriptor : held) close(descriptor);
}

}  // namespace
}  // namespace test
