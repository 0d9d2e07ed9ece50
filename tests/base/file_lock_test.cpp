#include "base/file_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "base/file_descriptor.h"
#include "tests/support/temp_directory.h"

namespace base {
namespace {

using Clock = std::chrono::steady_clock;

FileDescriptor opened(const test::TempDirectory& directory) {
  return FileDescriptor(open(directory.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

TEST(FileLock, IsHadAtOnceWhenNobodyHoldsIt) {
  const test::TempDirectory directory;
  const FileDescriptor fd = opened(directory);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(FileLock::ofDirectory(fd.get()).held());
}

TEST(FileLock, GoesOnWithoutAfterASecond) {
  const test::TempDirectory directory;
  const FileDescriptor fd = opened(directory);
  const FileLock first = FileLock::ofDirectory(fd.get());
  ASSERT_TRUE(first.held());
  const Clock::time_point start = Clock::now();
  EXPECT_FALSE(FileLock::ofDirectory(fd.get()).held());
  EXPECT_GE(Clock::now() - start, FileLock::kLongestWait);
}

TEST(FileLock, ThatWasNotHadLetsNobodyElseIn) {
  const test::TempDirectory directory;
  const FileDescriptor fd = opened(directory);
  const FileLock first = FileLock::ofDirectory(fd.get());
  EXPECT_FALSE(FileLock::ofDirectory(fd.get()).held());
  EXPECT_FALSE(FileLock::ofDirectory(fd.get()).held());
}

TEST(FileLock, HasOneHolderAtATime) {
  const test::TempDirectory directory;
  const FileDescriptor fd = opened(directory);
  std::atomic<int> holders = 0;
  std::atomic<int> most = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
      threads.emplace_back([&] {
        for (int round = 0; round < 20; ++round) {
          const FileLock lock = FileLock::ofDirectory(fd.get());
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

TEST(FileLock, DoesWithoutWhereThereIsNothingToLock) {
  EXPECT_FALSE(FileLock::ofDirectory(-1).held());
  EXPECT_FALSE(FileLock::ofDirectory(-1).unknownHere());
}

TEST(FileLock, TellsWhoHoldsItFromAFileSystemThatKnowsNone) {
  const test::TempDirectory directory;
  const FileDescriptor fd = opened(directory);
  const FileLock first = FileLock::ofDirectory(fd.get());
  EXPECT_FALSE(first.unknownHere());
  EXPECT_FALSE(FileLock::ofDirectory(fd.get()).unknownHere());
  const FileLock unlockable(FileDescriptor(open(directory.path().c_str(), O_PATH | O_CLOEXEC)));
  EXPECT_FALSE(unlockable.held());
  EXPECT_TRUE(unlockable.unknownHere());
}

}  // namespace
}  // namespace base
