#include "app/actions/directory_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "base/file_descriptor.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

using Clock = std::chrono::steady_clock;

base::FileDescriptor opened(const test::TempDirectory& directory) {
  return base::FileDescriptor(open(directory.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

TEST(DirectoryLock, IsHadAtOnceWhenNobodyHoldsIt) {
  const test::TempDirectory directory;
  const base::FileDescriptor fd = opened(directory);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(DirectoryLock(fd.get()).held());
}

TEST(DirectoryLock, GoesOnWithoutAfterASecond) {
  const test::TempDirectory directory;
  const base::FileDescriptor fd = opened(directory);
  const DirectoryLock first(fd.get());
  ASSERT_TRUE(first.held());
  const Clock::time_point start = Clock::now();
  EXPECT_FALSE(DirectoryLock(fd.get()).held());
  EXPECT_GE(Clock::now() - start, DirectoryLock::kLongestWait);
  EXPECT_LT(Clock::now() - start, DirectoryLock::kLongestWait + std::chrono::seconds(5));
}

TEST(DirectoryLock, ThatWasNotHadLetsNobodyElseIn) {
  const test::TempDirectory directory;
  const base::FileDescriptor fd = opened(directory);
  const DirectoryLock first(fd.get());
  EXPECT_FALSE(DirectoryLock(fd.get()).held());
  EXPECT_FALSE(DirectoryLock(fd.get()).held());
}

TEST(DirectoryLock, HasOneHolderAtATime) {
  const test::TempDirectory directory;
  const base::FileDescriptor fd = opened(directory);
  std::atomic<int> holders = 0;
  std::atomic<int> most = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
      threads.emplace_back([&] {
        for (int round = 0; round < 20; ++round) {
          const DirectoryLock lock(fd.get());
          if (!lock.held()) continue;
          const int now = ++holders;
          if (now > most) most = now;
          std::this_thread::yield();
          --holders;
        }
      });
    }
  }
  EXPECT_EQ(most, 1);
}

TEST(DirectoryLock, DoesWithoutWhereThereIsNothingToLock) {
  EXPECT_FALSE(DirectoryLock(-1).held());
}

}  // namespace
}  // namespace app
